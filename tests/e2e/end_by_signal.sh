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

# The question about losses is open, before the program's own event loop has begun.
has_question() { [ "$(windows '^Vellumark$' | wc -l)" -ge 2 ]; }
launch "$folder/book.fb2"
wait_until 60 has_question || { echo "FAILED: there was no question"; failures=$((failures + 1)); }
kill -TERM "$program"
wait_for_end "$program" || { echo "FAILED: the program did not end at its question"; failures=$((failures + 1)); }
[ "$failures" = 0 ]
