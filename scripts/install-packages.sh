#!/usr/bin/env bash
# Installs the packages of packages.txt that are missing; silent and without the network when none is.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
  echo "No apt-get here: install the counterparts of what packages.txt lists." >&2
  exit 0
fi

missing=()
while read -r package; do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) || state=absent
  [ "$state" = installed ] || missing+=("$package")
done < <(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' packages.txt)
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
