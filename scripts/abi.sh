#!/usr/bin/env bash
# What programs that are built already rely on: the symbols that the libraries export, and the size
# and layout of the types behind them. It is compared with what tests/abi holds.
#
# usage: scripts/abi.sh [check | renew] [BUILD]
#   check   exit status 1 where the interface is not the committed one (default)
#   renew   writes tests/abi anew
# BUILD (default: build/release) must have OLE_DEBUG_INFO, which the types come from, and be of GCC 12:
# other compilers describe the same interface in other words, so there is nothing to compare. The
# whole comparison stands in build/abi.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
action=${1-check}
build=${2-build/release}
committed=tests/abi
work=build/abi

# Names alone: whether a symbol is weak is the compiler's choice.
write_symbols() {
  nm --dynamic --defined-only --demangle "$1" | cut -d ' ' -f 3- | LC_ALL=C sort -u >"$2"
}

write_types() {
  abidw --exported-interfaces-only --no-show-locs --no-corpus-path --no-comp-dir-path --out-file "$2" "$1"
}

# Without debug info there is nothing to go by, which is an error. Another compiler is none for a check.
require_gcc_12() {
  local producer
  producer=$(readelf --debug-dump=info --dwarf-depth=1 "$1" | grep DW_AT_producer | head -n 1 || true)
  [[ ! $producer =~ GNU\ C\+\+[0-9]*\ 12\. ]] || return 0
  echo "abi: $1 is not compared: it must be built by GCC 12 with -DOLE_DEBUG_INFO=ON" >&2
  if [ "$action" = check ] && [ -n "$producer" ]; then
    exit 0
  fi
  exit 2
}

# abidiff lists every virtual operation of a class of which anything changed: these lines stay in
# the file.
compare_types() {
  local status=0
  abidiff --leaf-changes-only --harmless --no-added-syms "$1" "$2" >"$3" || status=$?
  grep -vE 'virtual at voffset|member function insertions?:|method virtual .*::~|^ *there are member function changes:$' "$3" || true
  return "$status"
}

compare_symbols() {
  diff --unchanged-line-format= --old-line-format='removed: %L' --new-line-format='added:   %L' "$1" "$2"
}

check() {
  local name=$1 same=0
  echo "-- $name"
  xz -dc "$committed/$name.abi.xz" >"$work/$name.committed.abi"
  compare_symbols "$committed/$name.symbols" "$work/$name.symbols" || same=1
  compare_types "$work/$name.committed.abi" "$work/$name.abi" "$work/$name.report" || same=1
  return "$same"
}

renew() {
  cp "$work/$1.symbols" "$committed/"
  xz -9e -c "$work/$1.abi" >"$committed/$1.abi.xz"
}

case $action in
  check | renew) ;;
  *) echo "usage: scripts/abi.sh [check | renew] [BUILD]" >&2; exit 2 ;;
esac
mkdir -p "$work"
status=0
for name in libole libtarn; do
  library=$build/lib/$name.so
  require_gcc_12 "$library"
  write_symbols "$library" "$work/$name.symbols"
  write_types "$library" "$work/$name.abi"
  if [ "$action" = renew ]; then
    renew $name
  else
    check $name || status=1
  fi
done
if [ $status -ne 0 ]; then
  cat >&2 <<END
abi: the interface is not the committed one; $work/*.report hold the details.
  What is removed or changed breaks programs that were built before: after a release it takes a new
  major version. What is added breaks none. If the change is meant, run scripts/abi.sh renew and
  commit tests/abi with it.
END
fi
exit $status
