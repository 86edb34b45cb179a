#!/usr/bin/env bash
# Installs the Debian packages moremate needs to build, test and benchmark.
# Non-interactive and idempotent: packages already present are skipped.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config python3
  liblz4-dev libisal-dev zlib1g-dev libboost-dev qt6-base-dev fonts-dejavu-core libcurl4-openssl-dev libcpp-httplib-dev libsqlite3-dev
  nlohmann-json3-dev libcli11-dev libfmt-dev libgtest-dev libgmock-dev libbenchmark-dev libunwind-dev
  clang libclang-rt-14-dev xvfb xauth xdotool imagemagick
)
if [ "${MOREMATE_BENCH_PEERS:-0}" = 1 ]; then
  packages+=(stockfish)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all packages present"
  exit 0
fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
