#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks (run as root), builds, and runs
# an example script.
set -euo pipefail
cd "$(dirname "$0")/.."
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq g++ make cmake libgtest-dev libgmock-dev libbenchmark-dev qt6-base-dev qt6-translations-l10n xvfb xdotool pkg-config dpkg-dev file clang libclang-rt-dev > /dev/null
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build -j"$(nproc 2>/dev/null || echo 2)"
./build/qel examples/hello.qel
