#!/usr/bin/env bash
# Installs a build and builds other projects against it: by CMake from a prefix that was moved, by
# pkg-config from a DESTDIR, and by CMake from the sources.
# usage: install_test.sh BUILD CC CXX
set -euo pipefail
build=$1
export CC=$2 CXX=$3 PKG_CONFIG_LIBDIR LD_LIBRARY_PATH
unset DESTDIR CMAKE_PREFIX_PATH PKG_CONFIG_PATH
here=$(realpath "$(dirname "$0")")
source=$(realpath "$here/../..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

# whole PREFIX: holds all that a user looks for, and nothing that tells where it was built
whole() {
  local file lib
  lib=$(dirname "$(find "$1" -name libtqlabel.so)")
  for file in "$lib"/lib{tqlabel,tqasn1}.so{,.7} "$lib"/pkgconfig/{tqlabel,tqasn1}.pc \
    "$lib"/cmake/tqlabel/tqlabel-config{,-version}.cmake "$1"/bin/tqlabel \
    "$1"/share/man/man1/tqlabel{,-inspect}.1.gz "$1"/share/zsh/*/_tqlabel \
    "$1"/share/bash-completion/completions/tqlabel "$1"/share/fish/vendor_completions.d/tqlabel.fish; do
    [ -s "$file" ] || fail "$file: missing"
  done
  diff -r "$source/include" "$1/include"
  file=$(grep -rlIe "$work" -e "$source" -e "$build" "$1") && fail "$file: holds a path"
  [ "$("$1/bin/tqlabel" --version)" = "tqlabel $(sed -n "s/^Version: //p" "$lib/pkgconfig/tqlabel.pc")" ] ||
    fail "$1/bin/tqlabel: says another version than tqlabel.pc"
}

by_cmake() {
  cmake --install "$build" --prefix "$work/first" >/dev/null
  mv "$work/first" "$work/moved"
  whole "$work/moved"
  cmake -S "$here/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/moved" >/dev/null
  cmake --build "$work/consumer" >/dev/null
  "$work/consumer/c_consumer"
  "$work/consumer/cpp_consumer"
}

by_pkg_config() {
  local flags=(-Wall -Wextra -Wpedantic -Werror) use prefix
  DESTDIR=$work/staged cmake --install "$build" >/dev/null
  prefix=$(dirname "$(find "$work/staged" -type d -name include)")
  whole "$prefix"
  PKG_CONFIG_LIBDIR=$(dirname "$(find "$prefix" -name tqlabel.pc)")
  LD_LIBRARY_PATH=$(pkg-config --variable=libdir tqlabel)
  read -ra use < <(pkg-config --cflags --libs tqlabel)
  "$CC" -std=c11 "${flags[@]}" "$here/consumer/c_consumer.c" "${use[@]}" -o "$work/c_consumer"
  "$work/c_consumer"
  read -ra use < <(pkg-config --cflags --libs tqlabel tqasn1)
  "$CXX" -std=c++20 "${flags[@]}" "$here/consumer/cpp_consumer.cpp" "${use[@]}" -o "$work/cpp_consumer"
  "$work/cpp_consumer"
}

# Generating fails where a target is not there; what it would build is built elsewhere.
from_sources() {
  cmake -S "$here/consumer" -B "$work/sources" -DTQLABEL_SOURCE="$source" >/dev/null
}

by_cmake
by_pkg_config
from_sources
