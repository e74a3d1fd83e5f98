#!/usr/bin/env bash
# Shows what this project does: builds the tool and takes a sample log from end to end. Can be run
# again, from any folder, and asks nothing.
set -euo pipefail

case ${1-} in
  "") ;;
  --help | -h)
    cat <<'END'
usage: ./try.sh

Installs what is missing (apt-get), builds the tool olelog, imports samples/day-12.ale into a
table file, sorts, tags and searches it, and hands the prints on as CSV and as a container file.
The files stay, so that you can go on with them.
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
  printf '\n$'
  for word; do
    case $word in *[!A-Za-z0-9_,./=-]*) printf " '%s'" "$word" ;; *) printf ' %s' "$word" ;; esac
  done
  printf '\n'
  "$@" </dev/null
}

say "== 1. Install what is missing: compiler, CMake, a few libraries"
scripts/install-deps.sh build

say "== 2. Build the tool into build/try (the first time takes a few minutes)"
cmake -S . -B build/try -G Ninja -DCMAKE_BUILD_TYPE=Release -DOLE_BUILD_TESTS=OFF </dev/null >/dev/null
cmake --build build/try </dev/null
PATH=$PWD/build/try/bin:$PATH

out=build/try/demo
mkdir -p "$out"

say "== 3. The log: text with tabs, as cameras and film labs write it. A heading, the names of" \
  "      the columns, then one line a take. These are its first lines, cut at 100 characters:"
run head -n 14 samples/day-12.ale | cut -c 1-100

say "== 4. Would an import lose anything? (The lens has no standard field.)"
run olelog check samples/day-12.ale || [ $? -eq 1 ] # 1: there are findings

say "== 5. Import it: every take becomes a row, every column goes to its field of the table," \
  "      and each take gets an identifier, for the container below."
rm -f "$out/day-12.odb" # with its identifiers and tags an import would not replace it
run olelog import samples/day-12.ale -o "$out/day-12.odb" --identify

say "== 6. The rows. Names have changed on the way: Tape became reel, Take became shot, and the" \
  "      key number KU 31 5127 0416+08 its 15-character form KU3151270416+08."
run olelog show "$out/day-12.odb" --fields -Cookie

say "== 7. A choice of them: the takes marked as print that show Ines, in order of reel and shot." \
  "      Patterns match anywhere in a value and in any case."
run olelog show "$out/day-12.odb" --where Notes=print --where Description=ines \
  --sort Reel,Shot --fields Name,Reel,Shot,Description,Notes

say "== 8. Put the file itself in order, and tag its prints: the tags stay in the file."
run olelog sort "$out/day-12.odb" --by Scene,Shot
run olelog tag "$out/day-12.odb" --where Notes=print

say "== 9. The tagged takes for a spreadsheet; and in the simpler form that editors read, whose" \
  "      second line holds commas alone."
run olelog export "$out/day-12.odb" -o "$out/prints.csv" --tagged --fields Scene,Shot,Name,Reel,Notes
run cat "$out/prints.csv"
run olelog export "$out/day-12.odb" -o - --format csv --tagged --fields Scene,Shot,Name,Reel,Notes

say "== 10. A container file lists them by their identifiers, under a name. The table tells which" \
  "       takes they are."
rm -f "$out/prints.sg"
run olelog container create "$out/prints.sg" --name "Prints of day 12" --from "$out/day-12.odb" --tagged
run olelog container list "$out/prints.sg" --with "$out/day-12.odb"

say "Done. The table is $PWD/$out/day-12.odb" \
  "and the tool is $PWD/build/try/bin/olelog. Try it with a log of your own:" \
  "  build/try/bin/olelog import YOUR.ale -o YOUR.odb && build/try/bin/olelog show YOUR.odb"
