#!/usr/bin/env bash
# Which lines and branches of the module the tests run. Builds without optimisation, runs all tests
# of the libraries (the tool's would cut the files that the counts go to), and prints a table;
# every line that did not run stands in build/coverage/report/index.html.
#
# usage: scripts/coverage.sh [GCOVR-ARGUMENT...]
#
# Branches that only exceptions take, and those that no run can take, do not count. Exit status 1
# where a test fails, or where less than 95 % of the lines or 85 % of the branches of ole/ ran.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
jobs=$(nproc)
cmake --preset coverage </dev/null >/dev/null
cmake --build --preset coverage --parallel "$jobs" </dev/null
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --parallel "$jobs" --label-exclude 'source|tool' </dev/null

mkdir -p build/coverage/report
gcovr --root . --filter ole/ -j "$jobs" --exclude-throw-branches --exclude-unreachable-branches \
  --html-details build/coverage/report/index.html --txt /dev/stdout --print-summary \
  --fail-under-line 95 --fail-under-branch 85 "$@" build/coverage
