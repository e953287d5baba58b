#!/usr/bin/env bash
# Builds with coverage data, runs all tests and prints the lines and branches of src/ that they ran;
# docs/coverage.md says what is missing and why. Fails below the floor, in percent of lines.
set -euo pipefail
cd "$(dirname "$0")/.."
floor=96

# Tests with threads would lose counts, and gcov prints what is lost as less than zero.
cmake --preset coverage -DCMAKE_C_FLAGS=-fprofile-update=atomic -DCMAKE_CXX_FLAGS=-fprofile-update=atomic
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete # what earlier runs and the making of seeds counted
ctest --preset coverage --exclude-regex '^cli.outputs$' # its limit on file sizes also stops the counts
gcovr --filter src/ --exclude-throw-branches --exclude-unreachable-branches \
  --txt build/coverage/lines.txt --json-summary build/coverage/summary.json \
  --html-details build/coverage/index.html --print-summary --fail-under-line "$floor" \
  build/coverage/src
