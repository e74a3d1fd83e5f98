#!/usr/bin/env bash
# Installs what the project needs from the system's own package archive (Debian, Ubuntu), and
# nothing where everything is there. Asks no questions; uses sudo only where it is not root.
#
# usage: scripts/install-deps.sh [build] [test] [lint] [bench] [package] [valgrind] [picture]
#                                                default: all but valgrind and picture
set -euo pipefail

# Each need: the package, and a command that succeeds where it is there already.
build_needs() {
  cat <<'END'
cmake           command -v cmake
ninja-build     command -v ninja
g++             command -v g++
pkg-config      command -v pkg-config
git             command -v git
libfmt-dev      installed libfmt-dev
libcli11-dev    installed libcli11-dev
nlohmann-json3-dev  installed nlohmann-json3-dev
libutf8proc-dev installed libutf8proc-dev
ccache          command -v ccache
END
}

test_needs() {
  cat <<'END'
libgtest-dev    installed libgtest-dev
python3         test -x /usr/bin/python3
sqlite3         command -v sqlite3
locales         test -f /usr/share/i18n/locales/de_DE
python3-pytest  /usr/bin/python3 -c 'import pytest'
zsh             command -v zsh
man-db          command -v man
END
}

lint_needs() {
  cat <<'END'
clang           command -v clang++
libclang-rt-dev compgen -G '/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a'
clang-tidy      command -v run-clang-tidy
clang-format    command -v clang-format
shellcheck      command -v shellcheck
doxygen         command -v doxygen
END
}

valgrind_needs() {
  cat <<'END'
valgrind        command -v valgrind
END
}

picture_needs() {
  cat <<'END'
tmux            command -v tmux
python3-rich    /usr/bin/python3 -c 'import rich'
END
}

bench_needs() {
  cat <<'END'
libbenchmark-dev installed libbenchmark-dev
libsqlite3-dev   installed libsqlite3-dev
miller           command -v mlr
python3          test -x /usr/bin/python3
END
}

# What installs the libraries, compares their interface and makes Debian packages of them.
package_needs() {
  cat <<'END'
make            command -v make
abigail-tools   command -v abidw
xz-utils        command -v xz
dpkg-dev        command -v dpkg-shlibdeps
file            command -v file
lintian         command -v lintian
END
}

installed() {
  dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "install-deps: not root, and there is no sudo; please run as root: $*" >&2
    return 1
  fi
}

missing_packages() {
  local package probe
  while read -r package probe; do
    eval "$probe" >/dev/null 2>&1 </dev/null || echo "$package"
  done
}

groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(build test lint bench package)
missing=()
for group in "${groups[@]}"; do
  case $group in
    build | test | lint | bench | package | valgrind | picture) mapfile -t -O "${#missing[@]}" missing < <("${group}_needs" | missing_packages) ;;
    *)
      echo "usage: scripts/install-deps.sh [build] [test] [lint] [bench] [package] [valgrind] [picture]" >&2
      exit 2
      ;;
  esac
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: everything needed is installed"
  exit 0
fi
echo "install-deps: missing: ${missing[*]}"
if ! command -v apt-get >/dev/null; then
  echo "install-deps: there is no apt-get here; please install these with your own package manager" >&2
  exit 1
fi
echo "install-deps: apt-get update"
as_root apt-get update -qq </dev/null
echo "install-deps: apt-get install ${missing[*]}"
as_root env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >/dev/null
echo "install-deps: done"
