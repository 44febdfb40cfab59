#!/bin/sh
# Builds Kryn and its job player, then renders the bundled demo job
# (examples/demo.kjob, an A4 page at 600 dpi) to a picture: out/demo.png,
# shrunk four times (1240 x 1754 pixels) so that it can be looked at.
set -eu
cd "$(dirname "$0")/.."
sh scripts/setup-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build -j "$jobs" --target kryn-play
mkdir -p out
build/tools/kryn-play examples/demo.kjob --shrink 4 --out out/demo.png
echo "demo page written to $(pwd)/out/demo.png"
