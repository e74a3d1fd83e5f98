#!/usr/bin/env bash
# Makes the Debian packages and tries them, unpacked beside one another: lintian is content, what each
# package needs stands in its Depends and can be had, the tool runs, and programs are built with them.
#
# usage: scripts/packages.sh
#
# The packages stand in build/package/packages. Exit status 1 where a check fails.
# shellcheck disable=SC2317 # check calls them
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
root=$PWD
out=$root/build/package/packages
tried=$root/build/package/tried
all=$tried/all # what a machine has on which every package is installed
machine=$(dpkg-architecture -q DEB_HOST_MULTIARCH)
libraries=$all/usr/lib/$machine

make_packages() {
  rm -rf "$out" "$tried"
  cmake --preset package >/dev/null && cmake --build --preset package --parallel "$(nproc)" &&
    cpack --config build/package/CPackConfig.cmake -B "$out" >/dev/null || return 1
  rm -rf "$out/_CPack_Packages"
  ls "$out"
}

# Not for Debian's archive, so no bug report asks for the package. The second is cpack's: it calls
# ldconfig in scripts of its own, beside the trigger.
lintian_is_content() {
  lintian --allow-root --fail-on error,warning \
    --suppress-tags initial-upload-closes-no-bugs,maintscript-calls-ldconfig "$out"/*.deb
}

unpack() {
  local file
  mkdir -p "$tried"
  for file in "$out"/*.deb; do
    dpkg-deb -x "$file" "$tried/$(dpkg-deb -f "$file" Package)" && dpkg-deb -x "$file" "$all" || return 1
  done
}

# The libraries that the programs of a folder load, and the files that its dangling links mean.
wanted_by() {
  find "$1" -type f \( -perm /111 -o -name '*.so.*' \) -exec readelf -d {} + 2>/dev/null | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'
  find "$1" -xtype l -exec readlink {} +
}

# The package that holds a file of this name: one of these, or of the system's.
package_of() {
  local found
  found=$(cd "$tried" && find . -path ./all -prune -o -name "$1" -print -quit)
  if [ -n "$found" ]; then
    echo "$found" | cut -d / -f 2
  else
    dpkg -S "*/$machine/$1" 2>/dev/null | head -n 1 | cut -d : -f 1
  fi
}

depends_name_what_is_needed() {
  local file name needs wanted owner depends status=0
  for file in "$out"/*.deb; do
    name=$(dpkg-deb -f "$file" Package)
    depends=" $(dpkg-deb -f "$file" Depends),"
    needs=$(wanted_by "$tried/$name" | sort -u)
    [ -n "$needs" ] || { echo "$name seems to need nothing"; status=1; }
    for wanted in $needs; do
      owner=$(package_of "$wanted")
      [ "$owner" != "$name" ] || continue
      if ! [[ -n $owner && $depends == *[\ ,]"$owner"[\ ,]* ]]; then
        echo "$name needs $wanted of ${owner:-no package}, which its Depends do not name:$depends"
        status=1
      fi
    done
  done
  return "$status"
}

depends_can_be_had() {
  apt-get --simulate -q install "$out"/*.deb
}

files_are_in_place() {
  local file
  for file in usr/share/man/man1/olelog.1.gz usr/share/bash-completion/completions/olelog \
    usr/share/zsh/site-functions/_olelog usr/share/doc/libole-dev/{docs/embedding.md,examples/first_table.cpp,samples/day-12.ale} \
    usr/share/doc/{libole14,libtarn14,libole-dev,olelog}/{copyright,changelog.Debian.gz}; do
    [ -s "$all/$file" ] || { echo "missing: $file"; return 1; }
  done
  ! find "$all" -xtype l | grep .
}

tool_runs() {
  local table=$tried/day.odb
  LD_LIBRARY_PATH=$libraries "$all/usr/bin/olelog" import samples/day-12.ale --all-columns -o "$table" &&
    LD_LIBRARY_PATH=$libraries "$all/usr/bin/olelog" show "$table" --fields Name --limit 1
}

pkg_config() {
  PKG_CONFIG_PATH=$libraries/pkgconfig make -C tests/consumer/pkg_config DAY="$tried/day" &&
    LD_LIBRARY_PATH=$libraries "$tried/day" "$tried/host.odb"
}

find_package() {
  cmake -S tests/consumer/find_package -B "$tried/find_package" -G Ninja \
    -DCMAKE_PREFIX_PATH="$all/usr" >/dev/null &&
    cmake --build "$tried/find_package" && "$tried/find_package/day" "$tried/host.odb"
}

status=0
check() {
  printf -- '-- %s\n' "$*"
  "$@" </dev/null || { echo "FAILED: $*" >&2; status=1; }
}

check make_packages
[ $status -eq 0 ] || exit 1
check lintian_is_content
check unpack
check depends_name_what_is_needed
check depends_can_be_had
check files_are_in_place
check tool_runs
check pkg_config
check find_package
exit $status
