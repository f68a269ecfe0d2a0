#!/bin/bash
# Ends the program by the signals that a desktop and a terminal send. It ends at once and keeps the typed text.
#
#   end_by_signal.sh BIN_FOLDER BOOK_GENERATOR
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the generator is missing.

set -u
bin=$1
generator=${2:-}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }

open_display
"$generator" 20K >"$folder/book.fb2"
failures=0
for signal in TERM HUP; do
    cp "$folder/book.fb2" "$folder/$signal.fb2"
    launch "$folder/$signal.fb2"
    wait_for_document || { echo "FAILED: the document did not become complete"; failures=$((failures + 1)); }
    xdotool type "unsaved$signal"
    settle "$program"
    kill "-$signal" "$program"
    if ! wait_for_end "$program"; then
        echo "FAILED: the program did not end after SIG$signal"
        failures=$((failures + 1))
    fi
    cmp -s "$folder/book.fb2" "$folder/$signal.fb2" || { echo "FAILED: the book was changed"; failures=$((failures + 1)); }
    if ! grep -rqs "unsaved$signal" "$portable/VMK Office/Recovery"; then
        echo "FAILED: the text typed before SIG$signal was not kept"
        failures=$((failures + 1))
    fi
done
[ "$failures" = 0 ]
