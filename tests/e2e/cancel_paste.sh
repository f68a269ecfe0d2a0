#!/bin/bash
# Escape cancels a long paste in the real program: the text is as before, and the keys typed meanwhile are kept.
#
#   cancel_paste.sh BIN_FOLDER BOOK_GENERATOR
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the generator is missing.

set -u
bin=$1
generator=${2:-}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }

open_display
"$generator" 14M >"$folder/book.fb2"
cp "$folder/book.fb2" "$folder/before.fb2"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }
bytes() { stat -c %s "$1"; }
# keys KEY...: the program finds all of them waiting when it runs again, however slow the machine is.
keys() {
    kill -STOP "$program"
    xdotool key --delay 15 "$@"
    kill -CONT "$program"
    settle "$program"
}
save() {
    local old
    old=$(stat -c %i-%y "$folder/book.fb2")
    xdotool key F4
    wait_until 60 is_saved "$old" || fail "the book was not saved"
    settle "$program"
}
is_saved() { [ "$(stat -c %i-%y "$folder/book.fb2")" != "$1" ]; }

launch "$folder/book.fb2"
wait_for_document || fail "the document did not become complete"
xdotool mousemove 300 300 click 1
settle "$program"
keys ctrl+a ctrl+c
keys ctrl+Home ctrl+v a Escape b c
save
grep -aq abc "$folder/book.fb2" || fail "the keys typed during the paste are lost or in another order"
[ "$(bytes "$folder/book.fb2")" -lt $((3 * $(bytes "$folder/before.fb2") / 2)) ] || fail "the paste was not cancelled"
once=$(bytes "$folder/book.fb2")

# The same without Escape.
keys ctrl+v d
save
[ "$(bytes "$folder/book.fb2")" -gt $((3 * once / 2)) ] || fail "nothing was pasted"
kill "$program"
wait_for_end "$program" || fail "the program did not end"
[ "$failures" = 0 ]
