#!/bin/sh
# Builds Kryn and runs every test.
#   scripts/test.sh             release build (build/) and its tests
#   scripts/test.sh --sanitize  the same under ASan + UBSan (build-sanitize/)
set -eu
cd "$(dirname "$0")/.."
sh scripts/setup-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
if [ "${1:-}" = "--sanitize" ]; then
  dir=build-sanitize
  set -- -DKRYN_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
  export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
else
  dir=build
  set -- -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake -S . -B "$dir" -G Ninja "$@" -DKRYN_BUILD_BENCH=ON
cmake --build "$dir" -j "$jobs"
ctest --test-dir "$dir" --output-on-failure -j "$jobs"
