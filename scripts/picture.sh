#!/usr/bin/env bash
# Makes docs/olelog.svg, the picture of README: the tool at work in a terminal of fixed size, with its
# colours. The same tool gives the same picture; look at it when it has changed.
#
# usage: scripts/picture.sh [OUT.svg]
set -euo pipefail

if [ "${1-}" = --session ]; then
  # Within the terminal: types each command, as a person would, and runs it.
  type_and_run() {
    local word line=
    for word; do
      case $word in *[!A-Za-z0-9_,./=-]*) line+="'$word' " ;; *) line+="$word " ;; esac
    done
    printf '\033[1;32m$ \033[0m%s\n' "${line% }"
    "$@"
    echo
  }
  type_and_run olelog import day-12.ale -o day-12.odb
  type_and_run olelog show day-12.odb --fields Name,Reel,'Start time',Duration,Scene,Shot,Description,Notes
  type_and_run olelog show day-12.odb --where Notes=print --sort Reel,Shot --fields Name,Reel,Scene,Shot,Notes
  tmux wait-for -S session-done
  sleep 60 # until the picture is taken
  exit
fi

cd "$(dirname "${BASH_SOURCE[0]}")/.."
out=$(realpath -m "${1-docs/olelog.svg}")
columns=100
rows=30

scripts/install-deps.sh build picture
cmake --preset release </dev/null >/dev/null
cmake --build --preset release --target olelog </dev/null

folder=$(mktemp -d)
tmux=(tmux -L "ole-picture-$$" -f /dev/null)
trap '"${tmux[@]}" kill-server 2>/dev/null || true; rm -rf "$folder"' EXIT
cp samples/day-12.ale "$folder"
script=$PWD/scripts/picture.sh
"${tmux[@]}" new-session -d -x "$columns" -y "$rows" -c "$folder" \
  "PATH=$PWD/build/release/bin:$PATH LC_ALL=C.UTF-8 bash $script --session"
timeout 60 "${tmux[@]}" wait-for session-done
"${tmux[@]}" capture-pane -e -p | /usr/bin/python3 scripts/terminal_svg.py "$columns" olelog >"$folder/picture.svg"
mv "$folder/picture.svg" "$out"
echo "picture: $out"
