#!/bin/sh
# Fails when the shared library exports anything but KRYN operations and the
# platform heap, or misses one of the operations that must be there.
set -eu
lib="$1"
symbols=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtWwDdBb]$/ {print $3}' | sort)
unexpected=$(printf '%s\n' "$symbols" | grep -v -E '^(KRYN[A-Za-z0-9]+|GlobalAlloc|GlobalFree)$' || true)
if [ -n "$unexpected" ]; then
  echo "unexpected exports:"; printf '%s\n' "$unexpected"; exit 1
fi
for required in KRYNInit KRYNEnd KRYNNewPage KRYNClosePage GlobalAlloc GlobalFree \
                KRYNPlatformLiveBlocks KRYNPlatformAllocCount KRYNPlatformFailAfter; do
  printf '%s\n' "$symbols" | grep -qx "$required" || { echo "missing export: $required"; exit 1; }
done
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
case "$soname" in
  libkryn.so.[0-9]*) ;;
  *) echo "unexpected SONAME: $soname"; exit 1 ;;
esac
echo "exports ok ($(printf '%s\n' "$symbols" | wc -l) symbols, SONAME $soname)"
