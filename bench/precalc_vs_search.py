#!/usr/bin/env python3
"""Checks generated precalculated data against the ordinary search on random positions.

    bench/precalc_vs_search.py BINARY DATA_HOME MATERIAL [--samples N] [--moves M] [--seed S]
                               [--edge-king]

MATERIAL is written as a type is, White's men first (KNNkp). Random legal placements with White to
move are probed in DATA_HOME's data (each probe reads and checks the type's file: about 0.6 s for
a 5-man type); every position the data call a mate in v <= M, and as many
others, are then solved without data (a fresh program folder): a mate in v must be found as #v and
not as #(v-1), any other position must have no mate as #M. Prints the disagreements and exits 1
when there is one.
"""
import argparse
import json
import os
import random
import subprocess
import sys
import tempfile

FILES = "abcdefgh"


def square_name(sq):
    return FILES[sq % 8] + str(sq // 8 + 1)


def adjacent(a, b):
    return max(abs(a % 8 - b % 8), abs(a // 8 - b // 8)) <= 1


def on_edge(sq):
    return sq % 8 in (0, 7) or sq // 8 in (0, 7)


def random_placement(material, rng, edge_king):
    """Squares for the men of `material`, kings apart, pawns off the first and last ranks; Black's
    king on the edge of the board when asked, where short mates are more frequent."""
    while True:
        squares = rng.sample(range(64), len(material))
        if any(m in "Pp" and not 8 <= sq < 56 for m, sq in zip(material, squares)):
            continue
        if edge_king and not on_edge(squares[material.index("k")]):
            continue
        kings = [sq for m, sq in zip(material, squares) if m in "Kk"]
        if not adjacent(*kings):
            return dict(zip(squares, material))


def fen_of(board):
    rows = []
    for rank in range(7, -1, -1):
        row, empty = "", 0
        for file in range(8):
            man = board.get(rank * 8 + file)
            if man is None:
                empty += 1
                continue
            row += (str(empty) if empty else "") + man
            empty = 0
        rows.append(row + (str(empty) if empty else ""))
    return "/".join(rows) + " w - - 0 1"


def probe(binary, home, fen):
    """The data's verdict: ('mate', v), ('no mate', 0) or None for a position they refuse."""
    run = subprocess.run([binary, "precalc", "probe", fen], capture_output=True, text=True,
                         env=dict(os.environ, MOREMATE_HOME=home))
    first = run.stdout.splitlines()[0] if run.returncode == 0 and run.stdout else ""
    if first.startswith("White mates in "):
        return ("mate", int(first.split()[3]))
    if first == "no mate":
        return ("no mate", 0)
    return None


def solve(binary, cases):
    """Solves (fen, moves) cases without data; returns each one's result text."""
    with tempfile.TemporaryDirectory() as home:
        collection = os.path.join(home, "cases.cp")
        with open(collection, "w", encoding="utf-8") as out:
            out.write("UTF-8\n\n\n")
            for number, (fen, moves) in enumerate(cases, 1):
                out.write(f"{number} #{moves}\n{{\n\tFEN: {fen}\n}}\n\n")
        run = subprocess.run([binary, "solve", collection, "--json", "--threads", "1", "--no-heuristics"],
                             capture_output=True, text=True, env=dict(os.environ, MOREMATE_HOME=home))
        results = {}
        for line in run.stdout.splitlines():
            if line.startswith("{"):
                record = json.loads(line)
                results[record["problem"]] = record["result"]
        return [results.get(number, "missing") for number in range(1, len(cases) + 1)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("binary")
    parser.add_argument("home")
    parser.add_argument("material")
    parser.add_argument("--samples", type=int, default=2000)
    parser.add_argument("--moves", type=int, default=4)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--edge-king", action="store_true", help="Black's king on the edge only")
    args = parser.parse_args()
    rng = random.Random(args.seed)

    mates, others, refused = [], [], 0
    for _ in range(args.samples):
        fen = fen_of(random_placement(args.material, rng, args.edge_king))
        verdict = probe(args.binary, args.home, fen)
        if verdict is None:
            refused += 1
        elif verdict[0] == "mate" and verdict[1] <= args.moves:
            mates.append((fen, verdict[1]))
        else:
            others.append((fen, verdict))
    others = others[:max(len(mates), 20)]

    cases, expected = [], []
    for fen, v in mates:
        cases.append((fen, v))
        expected.append(("solved", f"mate in {v}"))
        if v > 1:
            cases.append((fen, v - 1))
            expected.append(("no solution", f"mate in {v}, so none in {v - 1}"))
    for fen, verdict in others:
        cases.append((fen, args.moves))
        expected.append(("no solution", f"{verdict[0]} {verdict[1] or ''}".strip()))

    disagreements = 0
    for (fen, moves), (want, why), got in zip(cases, expected, solve(args.binary, cases)):
        if got != want:
            disagreements += 1
            print(f"disagreement: {fen} #{moves}: the data say {why}, the search says {got}")
    print(f"{args.material}: {args.samples} positions probed ({refused} refused as illegal), "
          f"{len(mates)} mates in at most {args.moves} and {len(others)} others solved "
          f"({len(cases)} runs), {disagreements} disagreements")
    return 1 if disagreements else 0


if __name__ == "__main__":
    sys.exit(main())
