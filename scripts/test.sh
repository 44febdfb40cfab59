#!/bin/sh
# Builds Kryn and runs every test.
#   scripts/test.sh             release build (build/) and its tests
#   scripts/test.sh --sanitize  the same under ASan + UBSan (build-sanitize/)
#   scripts/test.sh --fuzz      clang build with ASan + UBSan, fuzzing for a minute (build-fuzz/)
set -eu
cd "$(dirname "$0")/.."
sh scripts/setup-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
if [ "${1:-}" = "--fuzz" ]; then
  export ASAN_OPTIONS=detect_leaks=1
  CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DKRYN_SANITIZE=ON -DKRYN_FUZZ=ON -DKRYN_BUILD_TESTS=ON
  cmake --build build-fuzz -j "$jobs" --target kryn_script_fuzz
  ctest --test-dir build-fuzz --output-on-failure -R '^fuzz_'
  exit 0
fi
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
