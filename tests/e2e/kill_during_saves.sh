#!/bin/bash
# Kills the program, and the companion, during saves, at random times. The book on the disk is then the complete old or
# the complete new one, and the old one is not lost: it is an earlier version if the book is the new one.
#
#   kill_during_saves.sh BIN_FOLDER BOOK_GENERATOR [TIMES] [COMPANION_TIMES] [SIZE]
#
# Kills the window TIMES times, with a book of SIZE bytes (4M), and the companion COMPANION_TIMES times (ten times as
# often). Returns 77 (skipped) if Xvfb, xdotool, ImageMagick
# or the generator is missing.

set -u
bin=$1
generator=${2:-}
times=${3:-6}
companion_times=${4:-$((10 * times))}
size=${5:-4M}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }

open_display
book=$folder/book.fb2
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

# The delays approach the end of the save: a shorter one after the new book, a longer one after the old book.
# judge: checks the book after a kill, and adapts "$span", the longest delay in milliseconds.
judge() {
    if cmp -s "$book" "$folder/old.fb2"; then
        old=$((old + 1))
        span=$((span * 3 / 2 + 1))
    elif cmp -s "$book" "$folder/new.fb2"; then
        new=$((new + 1))
        span=$((span * 2 / 3 + 1))
        rm -f "$folder/version.fb2"
        "$portable/vmk" versions "$book" --restore 1 --out "$folder/version.fb2"
        cmp -s "$folder/version.fb2" "$folder/old.fb2" || fail "the old book is lost"
    else
        fail "the book is neither the old nor the new one"
    fi
}

# kill_later PROCESS
kill_later() {
    sleep "$((RANDOM % span))e-3"
    kill -9 "$1" 2>/dev/null
    wait "$1" 2>/dev/null
}

"$generator" "$size" >"$folder/old.fb2"
"$bin/vmk" convert "$folder/old.fb2" --out "$folder/new.fb2"
span=100 old=0 new=0
for _ in $(seq "$times"); do
    rm -rf "$portable/VMK Office/Backup"
    cp "$folder/old.fb2" "$book"
    launch "$book"
    wait_for_document || fail "the document did not become complete"
    xdotool key F4
    kill_later "$program"
    judge
done
echo "window: after $times kills, the old book $old times, the new one $new times"

"$generator" 200K >"$folder/old.fb2"
"$bin/vmk" convert "$folder/old.fb2" --out "$folder/new.fb2"
span=40 old=0 new=0
for _ in $(seq "$companion_times"); do
    rm -rf "$portable/VMK Office/Backup"
    cp "$folder/old.fb2" "$book"
    "$portable/vmk" convert "$book" --out "$book" 2>/dev/null &
    kill_later $!
    judge
done
echo "companion: after $companion_times kills, the old book $old times, the new one $new times"
[ "$failures" = 0 ]
