#!/usr/bin/env bash
# Installs what moremate needs, builds it and runs the main job.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DMOREMATE_TESTS=OFF -DMOREMATE_BENCH=OFF
cmake --build build --target moremate
./build/moremate perft "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq -" 5 --divide
