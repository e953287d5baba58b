#!/usr/bin/env bash
# Fails where a link of the manual leads nowhere.
# usage: check_manual.sh HTML_FOLDER
set -euo pipefail
copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
# linkchecker gives up the rights of root, with which it could read any folder.
cp -r "$1" "$copy/manual"
chmod -R a+rX "$copy"
linkchecker --no-status --output text "$copy"/manual/{index,pages,cpp/index}.html >"$copy/log" 2>&1 ||
  { cat "$copy/log" && exit 1; }
