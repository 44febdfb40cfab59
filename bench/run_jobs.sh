#!/bin/sh
# Whole-job timings: plays the standard benchmark pages with kryn-play and
# prints, per job, the median wall time of RUNS runs and the peak resident
# memory. Usage: bench/run_jobs.sh [RUNS] [JOB ...]   (default 5 runs; jobs
# rects rects-grey polys polys-grey floor floor-grey empty; NAME-screen and
# NAME-cluster for rects, rects-grey, polys and polys-grey play the page
# through a screen, NAME-alpha blends it at a constant alpha of 128)
set -eu
cd "$(dirname "$0")/.."
runs=${1:-5}
[ $# -gt 0 ] && shift
jobs=${*:-"rects rects-grey polys polys-grey floor floor-grey empty"}
player=build/tools/kryn-play
[ -x "$player" ] || { echo "build first: scripts/test.sh" >&2; exit 1; }
pages=build/bench-pages
gen=${KRYN_BENCH_GEN:-bench/gen.py}
if [ ! -f "$pages/empty.kjob" ]; then
  python3 "$gen" "$pages" >/dev/null
fi
# The floor: one pixel in every band, so that every band of the page is
# cleared, played and delivered while drawing costs nothing.
for space in "" "-grey"; do
  floor="$pages/floor$space.kjob"
  [ -f "$floor" ] && continue
  {
    echo "Init 4959 7015 128 600 0x8009"
    echo "NewPage 5"
    [ -n "$space" ] && echo "SelectSpace 1"
    echo "SetMatrix [1 0 0 1 0 0]"
    echo "SetLogicalFunc 0xF0"
    y=0
    while [ $y -lt 7016 ]; do
      echo "RectPath 0 $y 1 1"
      echo "Fill 1"
      y=$((y + 128))
    done
    echo "ClosePage"
  } >"$floor"
done
# Screened pages: the same rectangles and polygons through an opaque 8 x 8
# one-bit cell set right after the logical function: NAME-screen a 50 %
# checkerboard (every pixel differs from its neighbours: the worst case for
# the run marks of 32-bit bands), NAME-cluster a 50 % clustered dot (4 x 4
# squares).
for base in rects rects-grey polys polys-grey; do
  for form in screen:AA55AA55AA55AA55 cluster:F0F0F0F00F0F0F0F; do
    screened="$pages/$base-${form%%:*}.kjob"
    [ -f "$screened" ] && continue
    sed "s/^SetLogicalFunc 0xF0.*/&\\nSetScreen {8 8 1 1 hex:${form#*:}} 1/" \
      "$pages/$base.kjob" >"$screened"
  done
done
# Blended pages: the same rectangles and polygons laid over the page at a
# constant alpha of 128 (blending on right after the logical function, each
# colour opaque in its own alpha byte, so the constant is the one source).
for base in rects rects-grey polys polys-grey; do
  blended="$pages/$base-alpha.kjob"
  [ -f "$blended" ] && continue
  sed -e "s/^SetLogicalFunc 0xF0.*/&\nAlphaBlend 1\nSetConstAlphaBlend 128/" \
      -e "s/^SetColor 0x\([0-9A-F]\{6\}\) 0/SetColor 0xFF\1 0/" \
      "$pages/$base.kjob" >"$blended"
done
printf '%-14s %10s %12s\n' job "median s" "peak MiB"
for job in $jobs; do
  script="$pages/$job.kjob"
  if [ -n "${KRYN_JOB_MODE:-}" ]; then
    script="$pages/$job-mode$KRYN_JOB_MODE.kjob"
    sed "s/^NewPage [0-9]*/NewPage $KRYN_JOB_MODE/" "$pages/$job.kjob" >"$script"
  fi
  times=""
  peak=0
  i=0
  while [ "$i" -lt "$runs" ]; do
    start=$(date +%s%N)
    /usr/bin/time -o "$pages/.time" -f '%M' "$player" "$script" >/dev/null ||
      { echo "$job: kryn-play failed" >&2; exit 1; }
    end=$(date +%s%N)
    times="$times $(awk "BEGIN {printf \"%.3f\", ($end - $start) / 1e9}")"
    kb=$(tail -1 "$pages/.time")
    [ "$kb" -gt "$peak" ] && peak=$kb
    i=$((i + 1))
  done
  median=$(printf '%s\n' $times | sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}')
  printf '%-14s %10s %12s\n' "$job" "$median" "$(awk "BEGIN {printf \"%.1f\", $peak / 1024}")"
done
