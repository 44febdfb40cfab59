#!/bin/sh
# Installs the built library into a scratch prefix, then builds and runs the
# example consumer against it twice: through find_package(Kryn) and through
# pkg-config.
set -eu
build="$1"
consumer="$2"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/build" >/dev/null
LD_LIBRARY_PATH="$scratch/prefix/lib:${LD_LIBRARY_PATH:-}" "$scratch/build/kryn_consumer"
libdir=$(find "$scratch/prefix" -name kryn.pc -exec dirname {} \;)
flags=$(PKG_CONFIG_PATH="$libdir" pkg-config --define-variable=prefix="$scratch/prefix" --cflags --libs kryn)
# shellcheck disable=SC2086
cc -std=c99 -Wall -Werror "$consumer/main.c" -o "$scratch/consumer-pc" $flags
LD_LIBRARY_PATH="$scratch/prefix/lib:$(dirname "$libdir")" "$scratch/consumer-pc"
