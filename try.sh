#!/usr/bin/env bash
# Shows what this project does: builds the tool, imports a sample log into a table, and looks at
# the table. Can be run again, from any folder, and asks nothing.
set -euo pipefail

case ${1-} in
  "") ;;
  --help | -h)
    cat <<'END'
usage: ./try.sh

Installs what is missing (apt-get), builds the tool olelog, imports samples/day-12.ale
into a table file, and shows the table. The table stays, so that you can go on with it.
END
    exit 0
    ;;
  *) echo "try.sh: takes no arguments (see ./try.sh --help)" >&2; exit 2 ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")"

say() {
  printf '\n'
  printf '%s\n' "$@"
}

# Prints a command as a person would type it, then runs it.
run() {
  printf '\n$ %s\n' "$*"
  "$@" </dev/null
}

say "== 1. Install what is missing: compiler, CMake, a few libraries"
scripts/install-deps.sh build

say "== 2. Build the tool into build/try (the first time takes a minute)"
cmake -S . -B build/try -G Ninja -DCMAKE_BUILD_TYPE=Release -DOLE_BUILD_TESTS=OFF </dev/null >/dev/null
cmake --build build/try </dev/null
PATH=$PWD/build/try/bin:$PATH

out=build/try/demo
mkdir -p "$out"

say "== 3. The log: text with tabs, as cameras and film labs write it. A heading, the names of" \
  "      the columns, then one line a take. These are its first lines, cut at 100 characters:"
run head -n 14 samples/day-12.ale | cut -c 1-100

say "== 4. Import it: every take becomes a row, every column goes to its field of the table." \
  "      The tool says what it took and what had no place (the lens has no standard field)."
run olelog import samples/day-12.ale -o "$out/day-12.odb"

say "== 5. What stands in the table file now: its parameters come from the log's heading," \
  "      its columns are the standard ones with their types and widths."
run olelog info "$out/day-12.odb"

say "== 6. The rows. Names have changed on the way: Tape became reel, Take became shot, and the" \
  "      key number KU 31 5127 0416+08 its 15-character form KU3151270416+08."
run olelog show "$out/day-12.odb"

say "== 7. The same rows for other programs: comma-separated, with a header line."
run olelog show "$out/day-12.odb" --format csv | sed -n 1,4p

say "== 8. A choice of them: the takes marked as print that show Ines, in order of reel and shot." \
  "      Patterns match anywhere in a value and in any case; save -o writes such a choice as a table."
run olelog show "$out/day-12.odb" --where Notes=print --where Description=ines \
  --sort Reel,Shot --fields Name,Reel,Shot,Description,Notes

say "Done. The table is $PWD/$out/day-12.odb" \
  "and the tool is $PWD/build/try/bin/olelog. Try it with a log of your own:" \
  "  build/try/bin/olelog import YOUR.ale -o YOUR.odb && build/try/bin/olelog show YOUR.odb"
