#!/bin/bash
# Kills the program during saves, at random times. The book on the disk is then the complete old or the complete new
# one.
#
#   kill_during_saves.sh BIN_FOLDER BOOK_GENERATOR [TIMES]
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the generator is missing.

set -u
bin=$1
generator=${2:-}
times=${3:-6}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }

open_display
"$generator" 4M >"$folder/old.fb2"
"$bin/vmk" convert "$folder/old.fb2" --out "$folder/new.fb2"

# The delays approach the end of the save: a shorter one after the new book, a longer one after the old book.
span=100
failures=0 old=0 new=0
for _ in $(seq "$times"); do
    cp "$folder/old.fb2" "$folder/book.fb2"
    launch "$folder/book.fb2"
    wait_for_document || { echo "FAILED: the document did not become complete"; failures=$((failures + 1)); }
    xdotool key F4
    sleep "$((RANDOM % span))e-3"
    kill -9 "$program"
    wait "$program" 2>/dev/null
    if cmp -s "$folder/book.fb2" "$folder/old.fb2"; then
        old=$((old + 1))
        span=$((span * 3 / 2))
    elif cmp -s "$folder/book.fb2" "$folder/new.fb2"; then
        new=$((new + 1))
        span=$((span * 2 / 3 + 1))
    else
        echo "FAILED: the book is neither the old nor the new one"
        failures=$((failures + 1))
    fi
done
echo "after $times kills: the old book $old times, the new one $new times"
[ "$failures" = 0 ]
