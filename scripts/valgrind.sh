#!/usr/bin/env bash
# Runs the test programs under memcheck: reads of unset memory, invalid accesses, leaks.
# usage: valgrind.sh BUILD_DIR
set -euo pipefail
build=$1
export TQLABEL_QUICK=1 # tests that sweep large ranges take a sample of them instead

failed=0
for program in unit_tests abi_tests; do
  valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite,indirect \
    --error-exitcode=99 "$build/bin/$program" --gtest_brief=1 || failed=1
done
exit $failed
