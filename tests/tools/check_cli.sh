#!/bin/sh
# kryn-play as a command-line tool: one row per invocation with its standard
# input, the exit status it must end with, and a pattern its standard output
# and its standard error must each hold ('' : must be empty).
set -u
player="$1"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
good='Init 99 99 16 600 0x8009
NewPage 9
ClosePage'
bad_call='Init 99 99 16 600 0x8009
NewPage 12
NewPage 9
ClosePage'
bad_line='Init 99 99 16 600 0x8009
Bogus 1'
failures=0
# name | arguments | standard input | status | stdout pattern | stderr pattern
while IFS='|' read -r name args input status out err; do
  [ -z "$name" ] && continue
  case "$input" in
    good) text=$good ;; bad_call) text=$bad_call ;; bad_line) text=$bad_line ;; *) text= ;;
  esac
  # shellcheck disable=SC2086
  printf '%s\n' "$text" | (cd "$scratch" && "$player" $args >out 2>err)
  got=$?
  problem=""
  [ "$got" -eq "$status" ] || problem="exit $got, expected $status"
  for stream in out err; do
    eval "want=\$$stream"
    if [ -z "$want" ]; then
      [ -s "$scratch/$stream" ] && problem="$problem; std$stream not empty"
    elif ! grep -q -e "$want" "$scratch/$stream"; then
      problem="$problem; std$stream lacks '$want'"
    fi
  done
  if [ -n "$problem" ]; then
    echo "FAIL $name: $problem"; sed 's/^/  | /' "$scratch/out" "$scratch/err"
    failures=$((failures + 1))
  fi
done <<'TABLE'
help|--help|none|0|^Exit status: 0|
short help|-h|none|0|3 with --strict|
version|--version|none|0|^kryn-play [0-9]*\.[0-9]*\.[0-9]* (Kryn|
script on standard input|- --trace -|good|0|^3 ClosePage 0x0000|
directory|.|none|2||cannot read script '\.': it is a directory
missing script|no-such.kjob|none|2||cannot read script 'no-such.kjob': No such file
no script|--trace -|none|2||no script given
unknown option|--bogus -|good|2||unknown option '--bogus'
two scripts|- -|good|2||one script at a time
bad picture name|- --out page.bmp|good|2||needs a .png
shrink needs a factor|- --shrink 0 --out page.pgm|good|2||--shrink needs a factor from 1 to 64
shrink without a value|- --shrink|good|2||--shrink needs a factor
engine errors are data|- --trace -|bad_call|0|^2 NewPage 0xFF02|
strict: engine error ends with 3 after the whole script|--strict - --trace -|bad_call|3|^4 ClosePage 0x0000|<stdin>:2: NewPage 0xFF02
strict: a clean script ends with 0|--strict -|good|0||
strict: a script error is still 2|--strict -|bad_line|2||<stdin>:2: unknown operation
TABLE
[ "$failures" -eq 0 ] && echo "kryn-play command line: all cases pass"
exit "$failures"
