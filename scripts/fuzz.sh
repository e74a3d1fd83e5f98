#!/usr/bin/env bash
# Builds the libFuzzer programs and runs each from its corpus, under both sanitizers.
#
# usage: scripts/fuzz.sh [SECONDS] [NAME...]     default: 20 seconds for each
#
# New inputs that reach new code gather in build/fuzz/corpus/NAME and are the start of the next run;
# findings stand in build/fuzz/findings. With OLE_REAL_LOGS, AleFile starts from real logs, too.
# Exit status 1 where one of them finds something.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 2
seconds=20
if [[ ${1-} =~ ^[1-9][0-9]*$ ]]; then
  seconds=$1
  shift
fi
cmake --preset fuzz </dev/null >/dev/null &&
  cmake --build --preset fuzz --parallel "$(nproc)" </dev/null || exit 2

names=("$@")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(find fuzz/corpus -mindepth 1 -maxdepth 1 -type d -printf '%f\n' | sort)
mkdir -p build/fuzz/findings
export TMPDIR=${TMPDIR-/dev/shm}
status=0
for name in "${names[@]}"; do
  gathered=build/fuzz/corpus/$name
  log=build/fuzz/findings/$name.log
  mkdir -p "$gathered"
  inputs=("$gathered" "fuzz/corpus/$name")
  if [ "$name" = AleFile ] && [ -n "${OLE_REAL_LOGS-}" ]; then
    inputs+=("$OLE_REAL_LOGS")
  fi
  if "build/fuzz/bin/fuzz_$name" -max_total_time="$seconds" -max_len=20000 -timeout=20 \
    -rss_limit_mb=1500 -malloc_limit_mb=256 -artifact_prefix="build/fuzz/findings/$name-" \
    "${inputs[@]}" </dev/null >"$log" 2>&1; then
    echo "$name: $(tail -n 1 "$log")"
  else
    status=1
    grep -A 12 -e Failure -e ERROR "$log" | head -n 40
    echo "$name: FOUND something, see $log"
  fi
done
exit $status
