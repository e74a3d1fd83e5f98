#!/usr/bin/env bash
# Installs a build, moves the installed tree, and lets three outside projects use it as hosts do:
# with find_package, with pkg-config, and with the sources as a part of the host, on its own platform.
# Each builds and runs day.cpp. The installed headers compile alone, the moved tool runs, and the installed guide
# is enough: its links lead somewhere, and its command builds its own program and an example.
#
# usage: tests/consumer/run.sh [BUILD]     default: build/release, which must be built
#
# Works in build/consumer and build/consumer-host. Exit status 1 where something fails; the other checks still run.
# shellcheck disable=SC2317 # check calls them
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/../.." || exit 2
root=$PWD
build=${1-build/release}
work=$root/build/consumer
prefix=$work/moved/ole
documents=$prefix/share/doc/ole

install_and_move() {
  rm -rf "$work/installed" "$work/moved" &&
    mkdir -p "$work/moved" &&
    cmake --install "$build" --prefix "$work/installed" >/dev/null &&
    mv "$work/installed" "$prefix"
}

names_no_folder_of_the_build() {
  ! grep -rIF -e "$root" "$prefix"
}

has_sonames() {
  local name
  for name in ole tarn; do
    readelf -d "$prefix"/lib*/"lib$name.so" | grep -F "SONAME" | grep -F "[lib$name.so.14]" || return 1
  done
}

tool_runs() {
  "$prefix/bin/olelog" --help >/dev/null
}

headers_alone() {
  python3 tests/source/header_alone.py --installed "$(echo "$prefix"/include/ole-*)" "$1"
}

find_package() {
  local here=$work/find_package
  rm -rf "$here" &&
    cmake -S tests/consumer/find_package -B "$here" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null &&
    cmake --build "$here" && "$here/day" "$here/day.odb"
}

pkg_config() {
  local here=$work/pkg_config folder
  folder=$(dirname "$(find "$prefix" -name ole.pc)")
  rm -rf "$here" && mkdir -p "$here" &&
    PKG_CONFIG_PATH=$folder make -C tests/consumer/pkg_config DAY="$here/day" &&
    LD_LIBRARY_PATH=$folder/.. "$here/day" "$here/day.odb"
}

links_lead_somewhere() {
  local page target status=0
  for page in "$documents"/docs/*.md; do
    while read -r target; do
      [ -s "$documents/docs/$target" ] || { echo "$page: $target is missing"; status=1; }
    done < <(grep -oP '\]\(\K[\w./-]+\.(md|cpp)(?=[)#])' "$page")
  done
  return "$status"
}

guide_is_enough() (
  local here=$work/guide guide=$documents/docs/embedding.md command
  command=$(grep '^c++ .*pkg-config' "$guide") || return 1
  rm -rf "$here" && mkdir -p "$here" && cp "$documents/examples/first_table.cpp" "$here" &&
    python3 tests/examples/snippets.py "$guide" "$here/my_editor.cpp" && cd "$here" || return 1
  PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name ole.pc)")
  export PKG_CONFIG_PATH
  bash -c "$command -Wall -Wextra -Wpedantic -Werror" &&
    bash -c "${command//my_editor/first_table}" &&
    ./my_editor "$documents/samples/day-12.ale" && ./first_table "$documents/samples/day-12.ale"
)

# The module is compiled as it was for build/release, and from a folder beside it, so that ccache has
# its objects.
add_subdirectory() {
  local here=$root/build/consumer-host
  cmake -S tests/consumer/add_subdirectory -B "$here" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DOLE_DEBUG_INFO=ON -DOLE_WERROR=ON -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache)" >/dev/null &&
    cmake --build "$here" && "$here/day" "$here/day.odb" &&
    ldd "$here/day" | grep libhost_platform && ! ldd "$here/day" | grep libtarn
}

status=0
check() {
  printf -- '-- %s\n' "$*"
  "$@" </dev/null || { echo "FAILED: $*" >&2; status=1; }
}

check install_and_move
check names_no_folder_of_the_build
check has_sonames
check tool_runs
for compiler in g++ clang++; do
  check headers_alone "$compiler"
done
check find_package
check pkg_config
check links_lead_somewhere
check guide_is_enough
check add_subdirectory
exit $status
