#!/usr/bin/env bash
# Installs what moremate needs, builds everything with warnings as errors and runs every test.
# With SANITIZE=address,undefined (or thread) the build goes to its own folder with those checks;
# BUILD_TARGETS limits the build to the named targets (with a CTEST_ARGS filter to match);
# CXX=clang++ builds a new folder with clang instead of gcc.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
python3 scripts/check_includes.py
build=build
flags=(-DCMAKE_BUILD_TYPE=Release)
if [ -n "${SANITIZE:-}" ]; then
  build="build-${SANITIZE//,/-}"
  flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DMOREMATE_SANITIZE="$SANITIZE" -DMOREMATE_BENCH=OFF)
fi
cmake -S . -B "$build" -G Ninja -DMOREMATE_WERROR=ON "${flags[@]}"
targets=()
for t in ${BUILD_TARGETS:-}; do targets+=(--target "$t"); done
cmake --build "$build" "${targets[@]}"
ctest --test-dir "$build" --output-on-failure -j2 ${CTEST_ARGS:-}
