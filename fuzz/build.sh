#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under AddressSanitizer and UndefinedBehaviorSanitizer
# into build-fuzz/ (apart from the gcc build), and gathers each target's seed corpus in
# build-fuzz/corpus/<target>/: the seeds kept in fuzz/seeds/, the collections of samples/ and
# tests/data/ with their FEN lines, and the binary files the program's own writers produce.
# FUZZ_TESTS=1 builds the rest of the project but the benchmarks into the same folder: the test
# programs (ctest there; the fuzz_replay_<target> tests run libFuzzer once over the seeds and the
# regressions) and the programs they run, so that CI compiles the libraries under these sanitizers
# once for both. It uses precompiled headers rather than ccache (see MOREMATE_PCH).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${FUZZ_BUILD:-build-fuzz}
targets=$(tr '\n' ' ' <fuzz/targets)
if [ "${FUZZ_TESTS:-0}" = 1 ]; then
  flags=(-DMOREMATE_TESTS=ON -DMOREMATE_PCH=ON -DCMAKE_CXX_COMPILER_LAUNCHER=)
  ninja_targets=(all)
else
  flags=(-DMOREMATE_TESTS=OFF)
  if command -v ccache >/dev/null; then flags+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
  ninja_targets=(fuzz_make_seeds)
  for t in $targets; do ninja_targets+=("fuzz_$t"); done
fi
# -O1 with line tables only: a quick build, and stacks that name the lines of a crash.
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only -DNDEBUG" \
  -DMOREMATE_WERROR=ON -DMOREMATE_SANITIZE=address,undefined -DMOREMATE_FUZZ=ON \
  -DMOREMATE_BENCH=OFF "${flags[@]}" >/dev/null
cmake --build "$build" -j"${JOBS:-1}" --target "${ninja_targets[@]}"

corpus=$build/corpus
for t in $targets; do
  mkdir -p "$corpus/$t"
  if [ -d "fuzz/seeds/$t" ]; then cp -r "fuzz/seeds/$t/." "$corpus/$t/"; fi
done
cp samples/*.cp tests/data/*.cp "$corpus/collection/"
n=0
grep -h 'FEN:' samples/*.cp tests/data/*.cp | sed 's/^[[:space:]]*FEN:[[:space:]]*//' | while IFS= read -r fen; do
  n=$((n + 1))
  printf '%s\n' "$fen" >"$corpus/fen_moves/sample$n"
done
"$build/fuzz/fuzz_make_seeds" "$corpus"
echo "fuzz: targets built in $build/fuzz: $targets"
