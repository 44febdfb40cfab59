#!/bin/sh
# Plays one golden job and compares its trace (and exit status) with the
# expected NAME.trace next to it. KRYN_UPDATE_GOLDEN=1 rewrites the file.
set -eu
player=$1
job=$2
expected=${job%.kjob}.trace
actual=$(mktemp)
trap 'rm -f "$actual"' EXIT
status=0
"$player" "$job" --trace "$actual" 2>/dev/null || status=$?
echo "exit $status" >>"$actual"
if [ "${KRYN_UPDATE_GOLDEN:-0}" = 1 ]; then
  cat "$actual" >"$expected"
  exit 0
fi
diff -u "$expected" "$actual"
