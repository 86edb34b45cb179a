#!/usr/bin/env bash
# How far from the mate the search reaches along a known main line: plays the first 2k half-moves
# of the line (k = as many as the line has pairs, then one pair fewer, and so on) and solves what is
# left, one thread, single solution, so that each rung is one move longer than the one before.
# Prints per rung: the moves left, solved?, seconds, nodes, pass and key; stops after `MISSES`
# rungs in a row that are not solved.
#
# Usage: main_line_ladder.sh MOREMATE COLLECTION PROBLEM LINE_FILE
#   LINE_FILE  the main line's moves in the notation of `solve --after` ("Kd2-e1 Be6-f7 ..."),
#              White's and Black's moves alternating from the problem's first move
# Environment:
#   LADDER_LIMIT  seconds per rung (default 60)
#   MISSES        unsolved rungs in a row before it stops (default 2)
#   SOLVE_OPTIONS more options of `moremate solve`, e.g. "--proof-number only"
set -euo pipefail
moremate=${1:?path to the moremate program}
collection=${2:?problem collection}
problem=${3:?problem number}
read -r -a line <"${4:?file with the main line}"
limit=${LADDER_LIMIT:-60}
misses_allowed=${MISSES:-2}
extra=(${SOLVE_OPTIONS:-})
moves=$(grep -E "^$problem #[0-9]+" "$collection" | sed -E 's/^[0-9]+ #([0-9]+).*/\1/')
[[ -n $moves ]] || { echo "no problem $problem in $collection" >&2; exit 1; }

printf '%-6s %-6s %8s %12s %-5s %s\n' left solved seconds nodes pass key
misses=0
for ((played = ${#line[@]} / 2 * 2; played >= 0; played -= 2)); do
    after=("${line[@]:0:played}")
    json=$("$moremate" solve "$collection" --problem "$problem" --threads 1 --time-limit "$limit" --json \
        ${after:+--after "${after[*]}"} "${extra[@]}" 2>/dev/null | tail -1)
    python3 - "$json" "$((moves - played / 2))" <<'PY'
import json, sys
r = json.loads(sys.argv[1])
found = r.get("found") or [{}]
solved = r.get("result") == "solved"
print(f"#{sys.argv[2]:<5} {'yes' if solved else 'no':<6} {r['msec'] / 1000:8.1f} {r.get('nodes', 0):12d} "
      f"{found[0].get('pass', '-') if solved else '-':<5} {found[0].get('key', '-') if solved else '-'}")
PY
    if grep -q '"result":"solved"' <<<"$json"; then misses=0; else misses=$((misses + 1)); fi
    ((misses < misses_allowed)) || break
done
