#!/usr/bin/env bash
# Builds everything and runs all tests. Can be run again, from any folder, and asks nothing.
set -euo pipefail

usage() {
  cat <<'END'
usage: ./test.sh [OPTION]... [-- CTEST-ARGUMENT...]

Installs what is missing (apt-get), builds the libraries, the tool and the tests,
and runs all tests.

  --asan        build with AddressSanitizer and UndefinedBehaviorSanitizer
  --debug       build without optimisation, with checked standard containers
  --clang       build the libraries and their tests with Clang, without the tool
  --libraries   leave out the tool and its tests
  --long        the long forms: a session of ten minutes, every point of failure,
                600 kills; then every fuzzer for fifteen minutes (an hour and a half)
  --jobs N      run N jobs at a time (default: one for each processor)
  --no-install  install nothing
  --help        show this text

What follows -- goes to ctest, for example: ./test.sh -- -R Cookie
Tests that read real logs find them in the folder that OLE_REAL_LOGS names; without
it they are skipped and say so.
END
}

preset=release
install=yes
long=no
tool=ON
jobs=$(nproc)
while [ $# -gt 0 ]; do
  case $1 in
    --asan | --debug) preset=${1#--} ;;
    --clang) preset=clang tool=OFF ;;
    --libraries) tool=OFF ;;
    --jobs)
      [[ ${2-} =~ ^[1-9][0-9]*$ ]] || { echo "test.sh: --jobs takes a number" >&2; exit 2; }
      jobs=$2
      shift
      ;;
    --no-install) install=no ;;
    --long) long=yes ;;
    --help | -h) usage; exit 0 ;;
    --) shift; break ;;
    *) echo "test.sh: unknown option $1" >&2; usage >&2; exit 2 ;;
  esac
  shift
done

cd "$(dirname "${BASH_SOURCE[0]}")"

if [ $install = yes ]; then
  echo "== Installing what is missing"
  groups=(build test)
  [ "$preset" != clang ] && [ $long = no ] || groups+=(lint)
  scripts/install-deps.sh "${groups[@]}"
fi

echo "== Building into build/$preset"
cmake --preset "$preset" -DOLE_BUILD_TOOLS=$tool </dev/null
cmake --build --preset "$preset" --parallel "$jobs" </dev/null

echo "== Testing"
if [ $long = yes ]; then
  export OLE_LONG_TESTS=1 OLE_SOAK_SECONDS=${OLE_SOAK_SECONDS-600}
fi
if [ -z "${OLE_REAL_LOGS-}" ]; then
  echo "OLE_REAL_LOGS is not set: tests that read real logs are skipped"
fi
ctest --preset "$preset" --parallel "$jobs" "$@" </dev/null

if [ $long = yes ]; then
  echo "== Fuzzing"
  scripts/fuzz.sh 900
fi
