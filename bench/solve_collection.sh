#!/usr/bin/env bash
# Solves a collection in all-solutions mode on one thread and sums up: problems right, total
# time, nodes per second, and the register's figures. Usage: solve_collection.sh MOREMATE [FILE.cp]
set -euo pipefail
moremate=${1:?path to the moremate program}
file=${2:-$(dirname "$0")/../../shared/problems/directmates.cp}
out=$(mktemp)
trap 'rm -f "$out" "$out.err"' EXIT
start=$(date +%s%3N)
"$moremate" solve "$file" --all-solutions --json --register-stats >"$out" 2>"$out.err" || true
end=$(date +%s%3N)
python3 - "$out" "$((end - start))" <<'PY'
import json, sys
rows = [json.loads(line) for line in open(sys.argv[1])]
wall = int(sys.argv[2])
msec = sum(r["msec"] for r in rows)
nodes = sum(r["nodes"] for r in rows)
checked = [r for r in rows if r["match"] is not None]
right = sum(1 for r in checked if r["match"])
print(f"problems: {len(rows)}, with an answer: {len(checked)}, right: {right}, wrong: {len(checked) - right}")
print(f"solving time: {msec} ms (wall clock incl. start-up: {wall} ms)")
print(f"nodes: {nodes}, nodes/second: {nodes * 1000 // max(msec, 1)}")
for r in sorted(rows, key=lambda r: -r["msec"])[:5]:
    print(f"  slowest: problem {r['problem']} {r['stipulation']}: {r['msec']} ms, {r['nodes']} nodes")
PY
grep -E 'Elements count|Max. elements count|Mate elements|No mate elements' "$out.err" || true
