#!/bin/sh
# Builds Kryn and runs the example driver program against an installed copy.
set -eu
cd "$(dirname "$0")/.."
sh scripts/setup-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j "$jobs"
sh tests/api/check_install.sh build examples/consumer
