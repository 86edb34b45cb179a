#!/usr/bin/env bash
# Runs one fuzz target until it has used CPU_SECONDS of processor time (user + system, read from
# /proc/<pid>/stat), so that the figure does not depend on the machine's load; then sends SIGINT so
# that libFuzzer prints its final statistics. Prints one table row:
#   | target | CPU seconds | executions | executions per CPU-second | crashes |
# A crash ends the run early: the row says so and the input is under build-fuzz/artifacts/.
# Usage: fuzz/run_long.sh TARGET CPU_SECONDS (build first with fuzz/build.sh; run it under nice).
set -euo pipefail
cd "$(dirname "$0")/.."
if [ $# -ne 2 ]; then
  echo "usage: $0 TARGET CPU_SECONDS" >&2
  exit 2
fi
target=$1
budget=$2
build=$(realpath "${FUZZ_BUILD:-build-fuzz}")
fuzzer=$build/fuzz/fuzz_$target
if [ ! -x "$fuzzer" ]; then
  echo "$0: no fuzz target $fuzzer (build it with fuzz/build.sh)" >&2
  exit 2
fi
mkdir -p "$build/artifacts" "$build/work" "$build/corpus/$target"
log=$build/artifacts/$target-long.log
ticks=$(getconf CLK_TCK)
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}

# Processor time of the process in clock ticks; the fields after the command name, whose
# parentheses may hold spaces: utime and stime are the 12th and 13th.
cpu_ticks() {
  local stat
  stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 1
  stat=${stat##*) }
  awk '{ print $12 + $13 }' <<<"$stat"
}

cd "$build/work"  # the readers' scratch files and logs land here
"$fuzzer" -timeout=20 -rss_limit_mb=2560 -max_len=65536 -print_final_stats=1 \
  -artifact_prefix="$build/artifacts/$target-" "$build/corpus/$target" >"$log" 2>&1 &
pid=$!
used=0
while used=$(cpu_ticks "$pid"); do
  if [ "$used" -ge $((budget * ticks)) ]; then
    kill -INT "$pid"
    break
  fi
  sleep 1
done
status=0
wait "$pid" || status=$?
runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
seconds=$(awk -v t="$used" -v k="$ticks" 'BEGIN { printf "%.0f", t / k }')
per_second=$(awk -v r="${runs:-0}" -v t="$used" -v k="$ticks" 'BEGIN { printf "%.0f", t ? r * k / t : 0 }')
crashes=0
if grep -q 'Test unit written' "$log"; then crashes=1; fi
printf '| %s | %s | %s | %s | %s |\n' "$target" "$seconds" "${runs:-?}" "$per_second" "$crashes"
if [ "$crashes" -ne 0 ]; then
  grep -E 'ERROR|SUMMARY|Test unit written' "$log" | head -5 >&2
  exit 1
fi
# libFuzzer ends with status 0 or 72 (interrupted) when stopped by SIGINT.
if [ "$status" -ne 0 ] && [ "$status" -ne 72 ] && [ "$status" -ne 130 ]; then
  echo "$0: $target ended with status $status, see $log" >&2
  exit 1
fi
