#!/bin/sh
# Runs the script fuzzer for a fixed time from a corpus seeded with every
# example and golden job. Findings are kept in the build tree.
set -eu
fuzzer=$1
source_dir=$2
seconds=${3:-60}
work=$(dirname "$fuzzer")/fuzz-work
mkdir -p "$work/corpus" "$work/findings"
cp "$source_dir"/examples/*.kjob "$source_dir"/tests/golden/*.kjob "$work/corpus/" 2>/dev/null || true
cp "$source_dir"/tests/fuzz/dictionary.txt "$work/" 2>/dev/null || true
exec "$fuzzer" "$work/corpus" -max_total_time="$seconds" -max_len=4096 -rss_limit_mb=2048 \
  -timeout=10 -dict="$source_dir/tests/fuzz/dictionary.txt" -artifact_prefix="$work/findings/" \
  -print_final_stats=1
