#!/bin/sh
# Whole-job timings of the big-path jobs (bench/gen_bigpaths.py): plays each
# job RUNS times with kryn-play and prints the median wall time, the median
# processor time (user + system: on a shared machine the steadier figure) and
# the peak resident memory. Usage: bench/run_bigpaths.sh [RUNS] [JOB ...]
# (default 3 runs, every job). KRYN_PLAYER picks another player build and
# KRYN_CPU_LIMIT caps each run's processor seconds (default 300): a run cut
# short prints "over N".
set -eu
cd "$(dirname "$0")/.."
runs=${1:-3}
[ $# -gt 0 ] && shift
jobs=${*:-"star-4k star-16k star-64k triangles-20k zigzag-2k zigzag-8k random-32k clip-star-4k clip-star-16k"}
player=${KRYN_PLAYER:-build/tools/kryn-play}
limit=${KRYN_CPU_LIMIT:-300}
[ -x "$player" ] || { echo "build first: scripts/test.sh" >&2; exit 1; }
pages=build/bench-bigpaths
[ -f "$pages/star-4k.kjob" ] || python3 bench/gen_bigpaths.py "$pages" >/dev/null
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
printf '%-14s %10s %10s %10s\n' job "wall s" "cpu s" "peak MiB"
for job in $jobs; do
  walls="" cpus="" peak=0 i=0 over=""
  while [ "$i" -lt "$runs" ]; do
    if ! (ulimit -t "$limit"; /usr/bin/time -o "$pages/.time" -f '%e %U %S %M' \
          "$player" "$pages/$job.kjob" >/dev/null 2>&1); then
      over="over $limit"
    fi
    set -- $(tail -1 "$pages/.time")
    walls="$walls $1"
    cpus="$cpus $(awk "BEGIN {printf \"%.3f\", $2 + $3}")"
    [ "$4" -gt "$peak" ] && peak=$4
    i=$((i + 1))
    [ -n "$over" ] && break
  done
  if [ -n "$over" ]; then
    printf '%-14s %10s %10s %10s\n' "$job" "-" "$over" "-"
  else
    printf '%-14s %10s %10s %10s\n' "$job" "$(printf '%s\n' $walls | median)" \
      "$(printf '%s\n' $cpus | median)" "$(awk "BEGIN {printf \"%.1f\", $peak / 1024}")"
  fi
done
