#!/usr/bin/env bash
# Builds the reference of what a host calls, from the headers' contracts and the pages of docs/. A
# public operation without a contract, a link that leads nowhere or any other warning fails it.
#
# usage: scripts/reference.sh     the result is build/reference/html/index.html
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [ $# -ne 0 ]; then
  echo "usage: scripts/reference.sh" >&2
  exit 2
fi
if ! command -v doxygen >/dev/null; then
  echo "reference: there is no doxygen; scripts/install-deps.sh lint installs it" >&2
  exit 3
fi

rm -rf build/reference
mkdir -p build/reference
if ! doxygen docs/Doxyfile; then
  echo "reference: warnings, see above" >&2
  exit 1
fi
echo "reference: $PWD/build/reference/html/index.html"
