#!/usr/bin/env bash
# Long moremovers: solves the game positions of matetrack.cp and the compositions of longmates.cp
# one problem at a time, single solution, one thread, with the engine's own choice of passes, and
# prints per problem: number, #n, solved?, time to the key, nodes, pass, key, whether the key is
# proven, heuristic set; then a summary with a breakdown by mate length.
#
# Usage: long_moremovers.sh MOREMATE
# Environment:
#   MATETRACK_LIMIT  seconds per matetrack problem (default 20)
#   LONGMATES_LIMIT  seconds per longmates problem (default 60)
#   MATETRACK_ONLY   problem numbers of matetrack.cp to run, e.g. "1-30" or "3 7 12" (default all;
#                    "none" skips the collection)
#   LONGMATES_ONLY   the same for longmates.cp
#   BENCH_JSON_DIR   keep the per-problem JSON lines in this folder (default: a temporary folder)
#   SOLVE_OPTIONS    more options of `moremate solve`, e.g. "--proof-number off"
#   CROSS_CHECK      when set and /usr/games/stockfish exists, each found key that differs from the
#                    suite's named move is checked with stockfish's `go mate N` after the key (Black to
#                    move, mate in N-1): "/sf" confirmed, "/sf?" not confirmed within a minute
set -euo pipefail
moremate=${1:?path to the moremate program}
problems=$(dirname "$0")/../../shared/problems
matetrack_limit=${MATETRACK_LIMIT:-20}
longmates_limit=${LONGMATES_LIMIT:-60}
extra=(${SOLVE_OPTIONS:-})
if [[ -n ${BENCH_JSON_DIR:-} ]]; then
    out=$BENCH_JSON_DIR
    mkdir -p "$out"
    rm -f "$out/matetrack.cp.json" "$out/longmates.cp.json"
else
    out=$(mktemp -d)
    trap 'rm -rf "$out"' EXIT
fi

# Numbers of the records of a collection: "1-30" ranges and single numbers, or all of them.
numbers() {
    local file=$1 only=$2
    if [[ -z $only ]]; then
        grep -cE '^[0-9]+ #[0-9]+' "$file" | xargs seq 1
        return
    fi
    [[ $only == none ]] && return
    for item in $only; do
        if [[ $item == *-* ]]; then seq "${item%-*}" "${item#*-}"; else echo "$item"; fi
    done
}

run_collection() {
    local name=$1 limit=$2 only=$3
    local file=$problems/$name
    for n in $(numbers "$file" "$only"); do
        "$moremate" solve "$file" --problem "$n" --threads 1 --time-limit "$limit" --json "${extra[@]}" \
            >>"$out/$name.json" 2>/dev/null || true
    done
}

run_collection matetrack.cp "$matetrack_limit" "${MATETRACK_ONLY:-}"
run_collection longmates.cp "$longmates_limit" "${LONGMATES_ONLY:-}"

python3 - "$out" "$problems" "${CROSS_CHECK:-}" <<'PY'
import collections, json, os, re, subprocess, sys, threading

out, problems, cross = sys.argv[1], sys.argv[2], sys.argv[3]
stockfish = "/usr/games/stockfish" if cross and os.path.exists("/usr/games/stockfish") else None

def records(name):
    text = open(os.path.join(problems, name), encoding="utf-8").read()
    found = {}
    for m in re.finditer(r"^(\d+) #(\d+)\s*\{(.*?)\}", text, re.S | re.M):
        fen = re.search(r"FEN:\s*(.+)", m.group(3)).group(1).strip()
        hint = re.search(r"a mating first move: (\S+)", m.group(3))
        found[int(m.group(1))] = (int(m.group(2)), fen, hint.group(1) if hint else None)
    return found

def uci(key):  # "h2:h7", "g6-g7", "e7-e8Q" -> "h2h7", "g6g7", "e7e8q"
    m = re.match(r"([a-h][1-8])[-:x]?([a-h][1-8])=?([QRBNqrbn])?", key)
    return (m.group(1) + m.group(2) + (m.group(3) or "").lower()) if m else None

def confirmed(fen, key, n):
    """stockfish's `go mate` after the key: True when Black is mated within n-1 moves, else None
    (not confirmed within a minute; the key stays proven by the solver's own search)."""
    move = uci(key)
    if not move or n < 2:
        return None
    p = subprocess.Popen([stockfish], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    p.stdin.write(f"uci\nposition fen {fen} moves {move}\ngo mate {n - 1}\n")
    p.stdin.flush()
    timer = threading.Timer(60, lambda: (p.stdin.write("stop\n"), p.stdin.flush()))
    timer.start()
    score = None
    for line in p.stdout:  # the search runs until "bestmove"; closing stdin earlier would end it
        m = re.search(r"score mate (-?\d+)", line)
        if m:
            score = int(m.group(1))
        if line.startswith("bestmove"):
            break
    timer.cancel()
    p.stdin.write("quit\n")
    p.stdin.flush()
    p.wait()
    return True if score is not None and score < 0 and -score <= n - 1 else None

for name in ("matetrack.cp", "longmates.cp"):
    path = os.path.join(out, name + ".json")
    if not os.path.exists(path):
        continue
    recs = records(name)
    rows = [json.loads(line) for line in open(path) if line.startswith("{")]
    print(f"== {name}")
    print(f"{'no':>4} {'#n':>4} {'solved':>6} {'sec':>7} {'nodes':>10} {'pass':>4} {'key':<9} {'proven':<6} heuristics")
    by_length = collections.defaultdict(lambda: [0, 0])
    solved = wrong = 0
    for r in rows:
        n, fen, hint = recs[r["problem"]]
        ok = r["result"] == "solved" and bool(r["keys"])
        found = r["found"][0] if r.get("found") else {}
        key = r["keys"][0] if r["keys"] else "-"
        # Every key that a pass reports has been proven by the search; pass 2 runs without heuristics.
        proven = "yes" if ok else "-"
        if r["match"] is False:
            wrong += 1
            proven = "WRONG"
        differs = ok and hint and key.replace(":", "-") != hint.replace(":", "-")
        if differs:
            proven += "*"
        if differs and stockfish:
            c = confirmed(fen, key, n)
            proven += "/sf" if c else "/sf?"
        by_length[n][1] += 1
        if ok:
            solved += 1
            by_length[n][0] += 1
        seconds = f"{r['msec'] / 1000:.1f}" if ok else "-"
        print(f"{r['problem']:>4} {'#' + str(n):>4} {'yes' if ok else 'no':>6} "
              f"{seconds:>7} {r['nodes']:>10} {found.get('pass', '-'):>4} {key:<9} "
              f"{proven:<6} {found.get('heuristics', '') if ok else ''}")
    total = len(rows)
    print(f"summary {name}: solved {solved}/{total} ({100 * solved // max(total, 1)}%), wrong keys {wrong}"
          " (* a key other than the suite's named move)")
    print("  by length: " + ", ".join(f"#{n} {s}/{t}" for n, (s, t) in sorted(by_length.items())))
PY
