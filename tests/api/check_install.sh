#!/bin/sh
# Installs the built library into a scratch prefix, then builds the example
# driver programs against it the two ways a driver finds it: find_package(Kryn)
# and pkg-config, with nothing but the prefix to go on. Runs them, and checks
# that the example driver's PNG is kryn-play's picture of the same page.
set -eu
build="$1"
consumer="$2"
source_dir=$(cd "$consumer/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix="$scratch/prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

# The public headers stand alone: C99 and C++17, pedantic.
for header in kryn.h kryn_raster.h platform.h; do
  echo "#include <kryn/$header>" >"$scratch/h.c"
  cc -std=c99 -pedantic -Wall -Wextra -Werror -fsyntax-only -I"$prefix/include" "$scratch/h.c"
  c++ -std=c++17 -pedantic -Wall -Wextra -Wconversion -Wsign-conversion -Wold-style-cast -Werror \
    -fsyntax-only -I"$prefix/include" -x c++ "$scratch/h.c"
done

# find_package(Kryn), from the prefix alone.
cmake -S "$consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/build" >/dev/null

# pkg-config, from the kryn.pc the install wrote: it must name the prefix.
pcdir=$(dirname "$(find "$prefix" -name kryn.pc)")
export PKG_CONFIG_PATH="$pcdir"
libdir=$(pkg-config --variable=libdir kryn)
case "$(pkg-config --cflags kryn) $libdir" in
  *"$prefix"*"$prefix"*) ;;
  *) echo "kryn.pc does not point into $prefix:"; cat "$pcdir/kryn.pc"; exit 1 ;;
esac
[ "$(pkg-config --modversion kryn)" = "$(grep -o 'KRYN_VERSION_STRING "[^"]*' "$prefix/include/kryn/kryn.h" | cut -d'"' -f2)" ] ||
  { echo "kryn.pc and kryn.h disagree on the version"; exit 1; }
# shellcheck disable=SC2046
cc -std=c99 -Wall -Werror "$consumer/main.c" -o "$scratch/consumer-pc" $(pkg-config --cflags --libs kryn)
# shellcheck disable=SC2046
cc -std=c99 -Wall -Werror "$consumer/page_to_png.c" -o "$scratch/page-pc" \
  $(pkg-config --cflags --libs kryn zlib)

export LD_LIBRARY_PATH="$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
"$scratch/build/kryn_consumer"
"$scratch/consumer-pc"

# The example driver and the installed player draw the same page.
"$scratch/build/page_to_png" "$scratch/driver.png"
"$scratch/page-pc" "$scratch/driver-pc.png"
cmp "$scratch/driver.png" "$scratch/driver-pc.png"
"$prefix/bin/kryn-play" --strict "$source_dir/examples/page_to_png.kjob" --out "$scratch/player.ppm"
python3 "$source_dir/tests/api/same_picture.py" "$scratch/driver.png" "$scratch/player.ppm"
