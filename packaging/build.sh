#!/usr/bin/env bash
# Builds the Debian packages into BUILD. The same sources give the same bytes, wherever they lie: what
# a compiler writes of paths is mapped, and every time is that of the commit.
# usage: build.sh BUILD
set -euo pipefail
umask 022 # CPack packs folders with the permissions that it makes them with
mkdir -p "$1"
build=$(realpath "$1")
cd "$(dirname "$0")/.."
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export LC_ALL=C SOURCE_DATE_EPOCH
flags="-ffile-prefix-map=$PWD=/usr/src/tqlabel -ffile-prefix-map=$build=/usr/src/tqlabel"

rm -f "$build"/*.deb
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_SKIP_INSTALL_RPATH=ON \
  -DTQLABEL_BUILD_TOOL=ON -DTQLABEL_BUILD_PACKAGING=ON -DTQLABEL_ZSH_DIR=zsh/vendor-completions \
  >/dev/null
cmake --build "$build"
cd "$build"
cpack >cpack.log 2>&1 || { cat cpack.log >&2; exit 1; }
ls "$PWD"/*.deb
