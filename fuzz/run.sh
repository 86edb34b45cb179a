#!/usr/bin/env bash
# Runs each fuzz target for SECONDS (default 30) over its corpus in build-fuzz/corpus/<target>/,
# which keeps the new inputs found, JOBS targets at a time (default 2, one per core of the CI
# machine). Prints one line per target with its executions per second, in the order of
# fuzz/targets; a crash stops that target with its report and the input under
# build-fuzz/artifacts/. Build first with fuzz/build.sh. TARGETS="fen_moves script" runs only those.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
build=${FUZZ_BUILD:-build-fuzz}
build=$(realpath "$build")
targets=${TARGETS:-$(tr '\n' ' ' <fuzz/targets)}
mkdir -p "$build/artifacts" "$build/work"
cd "$build/work"  # the readers' scratch files and logs land here
# UndefinedBehaviorSanitizer names where a fault was found.
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
jobs=${JOBS:-2}

# run_one TARGET: the target's line, or its failure, into artifacts/TARGET.result; status 1 on a crash.
run_one() {
  local t=$1 log="$build/artifacts/$1.log" result="$build/artifacts/$1.result"
  if "$build/fuzz/fuzz_$t" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2560 -max_len=65536 \
      -print_final_stats=1 -artifact_prefix="$build/artifacts/$t-" "$build/corpus/$t" >"$log" 2>&1; then
    local runs speed corpus
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    corpus=$(find "$build/corpus/$t" -type f | wc -l)
    printf 'fuzz %-17s %8s s %10s runs %7s exec/s %6s inputs\n' "$t" "$seconds" "$runs" "$speed" "$corpus" >"$result"
  else
    { echo "fuzz $t: FAILED, see $log"; grep -E 'ERROR|SUMMARY|Test unit written' "$log" | head -5; } >"$result"
    return 1
  fi
}

status=0
running=0
for t in $targets; do
  if [ "$running" -ge "$jobs" ]; then
    wait -n || status=1
    running=$((running - 1))
  fi
  run_one "$t" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || status=1
  running=$((running - 1))
done
for t in $targets; do cat "$build/artifacts/$t.result"; done
exit $status
