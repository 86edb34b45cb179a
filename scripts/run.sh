#!/usr/bin/env bash
# Installs what moremate needs, builds it and runs the main job: solving the bundled collection.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DMOREMATE_TESTS=OFF -DMOREMATE_BENCH=OFF
cmake --build build --target moremate moremate-gui
./build/moremate solve samples/sample_problems.cp --all-solutions
