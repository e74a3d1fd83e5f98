#!/usr/bin/env bash
# Checks the sources without running them. Changes nothing, except for `fix`.
#
# usage: scripts/lint.sh [format] [shell] [tidy] | fix
#   format   clang-format finds nothing to change in any C++ source
#   shell    shellcheck is content with every script
#   tidy     clang-tidy is content with the libraries and the tool
#   fix      let clang-format rewrite the sources
# Without arguments: format, shell and tidy. Exit status 1 where a check finds something.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2

cpp_sources() {
  find . \( -path ./build -o -path ./.git \) -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0
}

# What each source is compiled with comes from Clang's own compiler, whose warnings count, too.
tidy() {
  cmake --preset tidy </dev/null >/dev/null &&
    run-clang-tidy -p build/tidy -quiet -j "$(nproc)" "$PWD/(platform|ole|tools)/" </dev/null
}

usage() {
  echo "usage: scripts/lint.sh [format] [shell] [tidy] | fix" >&2
  exit 2
}

checks=("$@")
[ ${#checks[@]} -gt 0 ] || checks=(format shell tidy)
status=0
for check in "${checks[@]}"; do
  case $check in
    format) cpp_sources | xargs -0 -r clang-format --dry-run -Werror --ferror-limit=5 ;;
    fix) cpp_sources | xargs -0 -r clang-format -i ;;
    shell) shellcheck ./*.sh scripts/*.sh tests/consumer/run.sh .ci/run ;;
    tidy) tidy ;;
    *) usage ;;
  esac
  case $? in
    0) echo "lint $check: clean" ;;
    *) echo "lint $check: faults found" >&2; status=1 ;;
  esac
done
exit $status
