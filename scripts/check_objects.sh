#!/usr/bin/env bash
# Checks the two shared objects as the dynamic linker sees them.
# usage: check_objects.sh LIB_DIR
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C
libs=$1
failed=0

# expect WHAT EXPECTED ACTUAL: both are lists, one item on a line
expect() {
  [ "$2" != "$3" ] || return 0
  printf '%s (< expected, > actual):\n' "$1"
  diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") || true
  failed=1
}

# declared HEADER MACRO: the functions that a header declares
declared() {
  sed -nE "s/^$2[[:space:]][^(]*[^A-Za-z0-9_(]([A-Za-z_][A-Za-z0-9_]*)[[:space:]]*\(.*/\1/p" "$1" | sort
}

# no_landing_pad OBJECT: the exported functions that control-flow protection has not marked
no_landing_pad() {
  objdump -d --no-show-raw-insn "$1" | awk -v exported="$(nm -D --defined-only "$1" | cut -d' ' -f3)" '
    BEGIN { split(exported, list, "\n"); for (i in list) wanted["<" list[i] ">:"] }
    ($2 in wanted) && NF == 2 { getline following; if (following !~ /endbr64/) print $2 }'
}

# check OBJECT HEADER MACRO NEEDED
check() {
  local object=$libs/lib$1.so dynamic segments names
  [ -e "$object" ] || { echo "$object: not there"; failed=1; return; }
  dynamic=$(readelf -dW "$object")
  segments=$(readelf -lW "$object")

  expect "$object: soname" "lib$1.so.7" "$(sed -nE 's/.*\(SONAME\).*\[(.*)\]/\1/p' <<<"$dynamic")"
  expect "$object: needed libraries" "$(tr ' ' '\n' <<<"$4" | sort)" \
    "$(sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p' <<<"$dynamic" | sort)"

  names=$(declared "$2" "$3")
  [ -n "$names" ] || { echo "$2: declares nothing with $3"; failed=1; }
  # A type other than T is data or a weak instance and stays in the list, so that it shows.
  expect "$object: exported functions" "$names" \
    "$(nm -D --defined-only "$object" | sed -E 's/^[0-9a-f]+ //; s/^T //' | sort)"

  grep -q 'GNU_RELRO' <<<"$segments" || { echo "$object: no relro segment"; failed=1; }
  grep -qE 'BIND_NOW|Flags:.*NOW' <<<"$dynamic" || { echo "$object: binds lazily"; failed=1; }
  expect "$object: stack flags" RW "$(awk '$1 == "GNU_STACK" { print $7 }' <<<"$segments")"
  nm -D "$object" | grep -q ' U __stack_chk_fail' || { echo "$object: no stack protector"; failed=1; }
  expect "$object: exported functions that are no landing pad" "" "$(no_landing_pad "$object")"
  if grep -q TEXTREL <<<"$dynamic"; then echo "$object: relocations in its code"; failed=1; fi

  # A program may put its own pair in front, so even the definer calls it through the linker.
  for name in Asn1Malloc Asn1Free; do
    grep -qE "(JUMP_SLO|GLOB_DAT).* $name( |@|\$)" <<<"$(readelf -rW "$object")" ||
      { echo "$object: $name is not called through the dynamic linker"; failed=1; }
  done
  check_data "$object"
}

# check_data OBJECT: nothing stays writable after relocation but the start files' own few bytes
check_data() {
  local number name type address offset size entry flags in_use=() objects
  while read -r number name type address offset size entry flags _; do
    case $flags in *W*) ;; *) continue ;; esac
    case $name in .init_array | .fini_array | .data.rel.ro* | .dynamic | .got | .got.plt) continue ;; esac
    echo "$1: $name holds $((16#$size)) bytes"
    in_use+=("$number")
    [ $((16#$size)) -le 8 ] || { echo "$1: $name is in use"; failed=1; }
  done < <(readelf -SW "$1" | sed -nE 's/^ *\[ *([0-9]+)\]/\1/p')
  objects=$(readelf -sW "$1" | awk -v sections=" ${in_use[*]} " '
    $4 ~ /^(OBJECT|TLS|COMMON)$/ && index(sections, " " $7 " ") &&
      $8 !~ /^(completed\.[0-9]+|__dso_handle|__TMC_END__)$/ { print $8 }' | sort -u)
  expect "$1: writable objects" "" "$objects"
}

# check_commands DATABASE: what is optimised is fortified. Objects that call nothing that could be
# checked do not show it, so the commands that made them are asked.
check_commands() {
  local plain
  [ -e "$1" ] || { echo "$1: not there"; failed=1; return; }
  plain=$(grep '"command":' "$1" | grep -E '/src/[^ ]*\.cpp' | grep -E ' -O[123s] ' |
    grep -v -e '-D_FORTIFY_SOURCE=2' || true)
  expect "$1: commands that optimise without _FORTIFY_SOURCE=2" "" "$plain"
}

check_commands "$libs/../compile_commands.json"
check tqasn1 include/tqasn1/asn1.h TQ_ASN1_API "libc.so.6"
check tqlabel include/tqlabel/label.h TQ_API "libc.so.6 libtqasn1.so.7"
exit $failed
