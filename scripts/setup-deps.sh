#!/bin/sh
# Installs the Debian packages Kryn builds and tests with, when missing.
# Safe to run again: it installs nothing that is already there.
set -eu
packages="build-essential cmake ninja-build pkg-config git python3 \
  libgtest-dev libgmock-dev libbenchmark-dev libpng-dev zlib1g-dev \
  clang lld libclang-rt-dev binutils time"
missing=""
for p in $packages; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
echo "installing:$missing"
sudo_cmd=""
[ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo_cmd apt-get update -qq
# shellcheck disable=SC2086
$sudo_cmd apt-get install -y -qq --no-install-recommends $missing
