#!/usr/bin/env bash
# Compares the binary interface of both libraries with the baseline in abi/. An addition is noted; a
# change or a removal fails: programs that were built earlier would break.
# usage: abi.sh [--write]   (--write makes the present interface the baseline)
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/abi

# The baseline names no folder of the machine that it was made on.
make_objects() {
  cmake -S . -B $build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=g++ \
    -DCMAKE_CXX_FLAGS="-ffile-prefix-map=$PWD/=" && cmake --build $build -j 2
}
mkdir -p $build abi
make_objects >$build/log 2>&1 || { cat $build/log >&2; exit 1; }

# What the public headers do not define is private: it may change.
describe() {
  abidw --headers-dir include --drop-private-types --exported-interfaces-only --no-show-locs \
    --no-corpus-path --no-comp-dir-path --no-parameter-names --no-write-default-sizes --type-id-style hash \
    --out-file "$2" "$build/lib/lib$1.so"
}

# compare LIBRARY: a status of 1 or 2 means that the comparison itself has failed
compare() {
  local base=abi/lib$1.abi now=$build/lib$1.abi status=0
  describe "$1" "$now"
  abidiff --harmless --no-added-syms "$base" "$now" || status=$?
  if [ $status -ne 0 ]; then
    echo "lib$1: differs from $base; docs/versioning.md says what to do"
    return 1
  fi
  abidiff "$base" "$now" || status=$?
  case $status in
    0) echo "lib$1: as in $base" ;;
    4) echo "lib$1: note: additions; scripts/abi.sh --write takes them into $base" ;;
    *) return 1 ;;
  esac
}

failed=0
for library in tqasn1 tqlabel; do
  if [ "${1:-}" = --write ]; then
    describe $library abi/lib$library.abi
  else
    compare $library || failed=1
  fi
done
exit $failed
