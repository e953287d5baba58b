#!/usr/bin/env bash
# Checks the packages in BUILD: the same sources in another folder give the same bytes, lintian finds
# nothing, and dpkg installs and removes them.
# usage: test.sh BUILD
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."
export LC_ALL=C PATH=$PATH:/usr/sbin:/sbin SOURCE_DATE_EPOCH
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

# The other folder is always the same one, so that the compiler cache knows it. File times and the
# mask of permissions differ, too.
same_bytes() {
  local other=$build.elsewhere package
  rm -rf "$other"
  mkdir -p "$other/sources"
  git ls-files -coz --exclude-standard | tar -c --null -T - | tar -xmC "$other/sources"
  (umask 077 && "$other/sources/packaging/build.sh" "$other/build" >/dev/null)
  for package in "$build"/*.deb; do
    cmp "$package" "$other/build/${package##*/}"
  done
}

# new_root ROOT: where dpkg takes the packages of this machine for installed, but their files are not
# there; so dependencies count
new_root() {
  local admin=$1/var/lib/dpkg
  mkdir -p "$admin"/{info,updates,triggers}
  echo 1 >"$admin/info/format"
  dpkg-query -W -f '${binary:Package}\n' | sed "s|.*|$admin/info/&.list|" | xargs touch
  cp /var/lib/dpkg/status "$admin/status"
}

in_root() {
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(fakeroot)
  "${as_root[@]}" dpkg --root="$work/root" --force-not-root --log=/dev/null "$@" >/dev/null
}

installs_and_goes() {
  local root=$work/root left
  new_root "$root"
  in_root --install "$build"/*.deb
  LD_LIBRARY_PATH=$(echo "$root"/usr/lib/*/) "$root/usr/bin/tqlabel" --version
  cmake -S tests/install/consumer -B "$work/consumer" -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
  cmake --build "$work/consumer" >/dev/null
  "$work/consumer/cpp_consumer"
  in_root --purge tqlabel libtqlabel-dev libtqlabel7
  left=$(find "$root" -mindepth 1 -path "$root/var" -prune -o -print)
  [ -z "$left" ] || fail "left after removal: $left"
}

installs_and_goes
lintian --fail-on error,warning "$build"/*.deb
same_bytes
