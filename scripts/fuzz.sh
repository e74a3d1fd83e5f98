#!/usr/bin/env bash
# Builds the libFuzzer programs and runs each from its corpus, under both sanitizers, as many at a
# time as there are processors.
#
# usage: scripts/fuzz.sh [SECONDS] [NAME...]     default: 20 seconds for each
#
# New inputs that reach new code gather in build/fuzz/corpus/NAME and are the start of the next run;
# findings stand in build/fuzz/findings. With OLE_REAL_LOGS, AleFile starts from real logs, too.
# Exit status 1 where one of them finds something.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
export seconds=20
if [[ ${1-} =~ ^[1-9][0-9]*$ ]]; then
  seconds=$1
  shift
fi
cmake --preset fuzz </dev/null >/dev/null &&
  cmake --build --preset fuzz --parallel "$(nproc)" </dev/null || exit 2

run_one() {
  local name=$1 gathered=build/fuzz/corpus/$1 log=build/fuzz/findings/$1.log
  mkdir -p "$gathered"
  local inputs=("$gathered" "fuzz/corpus/$name")
  if [ "$name" = AleFile ] && [ -n "${OLE_REAL_LOGS-}" ]; then
    inputs+=("$OLE_REAL_LOGS")
  fi
  if "build/fuzz/bin/fuzz_$name" -max_total_time="$seconds" -max_len=20000 -timeout=5 \
    -rss_limit_mb=1500 -malloc_limit_mb=256 -artifact_prefix="build/fuzz/findings/$name-" \
    "${inputs[@]}" </dev/null >"$log" 2>&1; then
    echo "$name: $(tail -n 1 "$log")"
    return 0
  fi
  grep -A 12 -e Failure -e ERROR "$log" | head -n 40
  echo "$name: FOUND something, see $log"
  return 1
}
export -f run_one

names=("$@")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(ninja -C build/fuzz -t targets all | sed -n 's,^bin/fuzz_\([A-Za-z]*\):.*,\1,p' | sort)
mkdir -p build/fuzz/findings
[ ! -d /dev/shm ] || export TMPDIR=${TMPDIR-/dev/shm} # files of the fuzzers in memory
# shellcheck disable=SC2016 # the inner shell expands it
printf '%s\0' "${names[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'run_one "$0"' || exit 1
