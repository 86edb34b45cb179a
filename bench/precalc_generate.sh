#!/usr/bin/env bash
# Generates every type of 3 and 4 men into a fresh program folder and sums up: wall-clock and
# CPU time, the peak memory, and the slowest types. Usage: precalc_generate.sh MOREMATE [N [THREADS]]
# The folder is kept for the solving benchmark with data: its path is the last line.
set -euo pipefail
moremate=$(realpath "${1:?path to the moremate program}")
men=${2:-4}
threads=${3:-2}
home=$(mktemp -d)
cd "$home"
MOREMATE_HOME=$home /usr/bin/time -v "$moremate" precalc generate --all "$men" --threads "$threads" \
    >generate.log 2>time.log
grep -E 'Elapsed \(wall clock\)|User time|System time|Maximum resident' time.log
python3 - generate.log <<'PY'
import re, sys
rows = [l for l in open(sys.argv[1]) if re.match(r"^\w+: \d+ indexes", l)]
secs = sorted(((float(re.search(r"([0-9.]+) s,", l).group(1)), l.split(":")[0]) for l in rows), reverse=True)
print(f"types generated: {len(rows)}, sum of their times: {sum(s for s, _ in secs):.1f} s")
for s, t in secs[:5]:
    print(f"  slowest: {t} {s:.1f} s")
PY
echo "$home"
