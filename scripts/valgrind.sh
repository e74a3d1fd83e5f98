#!/usr/bin/env bash
# Builds with every string and row allocated on its own, and runs the unit tests under valgrind.
#
# usage: scripts/valgrind.sh [GTEST-FILTER]
#
# What programs print stands in build/valgrind/TEST.log. Exit status 1 where one of them fails or
# valgrind finds something.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
filter=${1-*}
scripts/install-deps.sh build test valgrind || exit 2
cmake --preset valgrind </dev/null >/dev/null &&
  cmake --build --preset valgrind --parallel "$(nproc)" </dev/null || exit 2

run_one() {
  local name=$1 log=build/valgrind/$1.log
  if valgrind -q --error-exitcode=1 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite --trace-children=yes \
    --suppressions=tests/valgrind.supp "build/valgrind/bin/$name" --gtest_filter="$filter" \
    </dev/null >"$log" 2>&1; then
    echo "$name: clean, $(grep -a '^\[==========\].*ran' "$log")"
    return 0
  fi
  grep -a -A 12 -e Failure -e '^==[0-9]*== [A-Z0-9]' "$log" | head -n 40
  echo "$name: FOUND something, see $log"
  return 1
}

export LOCPATH=$PWD/build/valgrind/tests/locale
status=0
for program in build/valgrind/bin/{platform_tests,*Setting*Test,StaticObjectsTest,UserMap*Test,ole_tests}; do
  run_one "$(basename "$program")" || status=1
done
exit $status
