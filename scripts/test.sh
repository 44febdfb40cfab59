#!/bin/sh
# Builds Kryn and runs every test.
#   scripts/test.sh             release build (build/) and its tests
#   scripts/test.sh --sanitize  the same under ASan + UBSan (build-sanitize/)
#   scripts/test.sh --clang     release build with clang (build-clang/) and its tests
#   scripts/test.sh --fuzz      clang build with ASan + UBSan, fuzzing for a minute (build-fuzz/)
# --werror (first, before the others) makes every warning an error, as CI does.
set -eu
cd "$(dirname "$0")/.."
werror=OFF
if [ "${1:-}" = "--werror" ]; then
  werror=ON
  shift
fi
sh scripts/setup-deps.sh
jobs=$(nproc 2>/dev/null || echo 2)
if [ "${1:-}" = "--fuzz" ]; then
  export ASAN_OPTIONS=detect_leaks=1
  CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DKRYN_SANITIZE=ON -DKRYN_FUZZ=ON -DKRYN_BUILD_TESTS=ON -DKRYN_WERROR="$werror"
  cmake --build build-fuzz -j "$jobs" --target kryn_script_fuzz
  ctest --test-dir build-fuzz --output-on-failure -R '^fuzz_'
  exit 0
fi
case "${1:-}" in
  --sanitize)
    dir=build-sanitize
    set -- -DKRYN_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DKRYN_BUILD_BENCH=ON
    export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    ;;
  --clang)
    dir=build-clang
    export CC=clang CXX=clang++
    set -- -DCMAKE_BUILD_TYPE=Release
    ;;
  "")
    dir=build
    set -- -DCMAKE_BUILD_TYPE=Release -DKRYN_BUILD_BENCH=ON
    ;;
  *)
    echo "usage: scripts/test.sh [--werror] [--sanitize|--clang|--fuzz]" >&2
    exit 2
    ;;
esac
cmake -S . -B "$dir" -G Ninja "$@" -DKRYN_WERROR="$werror"
cmake --build "$dir" -j "$jobs"
ctest --test-dir "$dir" --output-on-failure -j "$jobs"
