#!/bin/bash
# Another program owns the clipboard and passes its text slowly, not at all, or without an end: the text arrives, or
# the program says that it does not, and the keys typed meanwhile are kept.
#
#   foreign_clipboard.sh BIN_FOLDER CLIPBOARD_OWNER
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the owner is missing.

set -u
bin=$1
owner=${2:-}
. "$(dirname "$0")/program.sh"
[ -x "$owner" ] || { echo "skipped: no clipboard owner"; exit 77; }

open_display
cat >"$folder/book.fb2" <<'EOF'
<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><body><section><p>text</p></section></body></FictionBook>
EOF
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }
save() {
    local old
    old=$(stat -c %i-%y "$folder/book.fb2")
    xdotool key F4
    wait_until 60 is_saved "$old" || fail "the book was not saved"
    settle "$program"
}
is_saved() { [ "$(stat -c %i-%y "$folder/book.fb2")" != "$1" ]; }
has() { grep -aq -- "$1" "$folder/book.fb2"; }

# own MODE [TEXT]: another program owns the clipboard from now on.
own() {
    [ -z "${other:-}" ] || kill "$other"
    start "$owner" "$@" >"$folder/owner"
    other=$started
    wait_until 30 grep -q ready "$folder/owner" || fail "the other program does not own the clipboard"
}
# keys KEY...: the program finds all of them waiting when it runs again, however slow the machine is.
keys() {
    kill -STOP "$program"
    xdotool key --delay 15 "$@"
    kill -CONT "$program"
    settle "$program"
}

launch "$folder/book.fb2"
wait_for_document || fail "the document did not become complete"
xdotool mousemove 300 300 click 1
settle "$program"
keys ctrl+Home

own once 'whole-ключ'
keys ctrl+v a
own slow 'piecewise-1'
keys ctrl+v b
own silent
keys ctrl+v c
own stops 'not-ended'
keys ctrl+v d
own endless 'again'
keys ctrl+v e Escape f
own latin 'plain'
keys ctrl+v g
own once ''
keys ctrl+v h
save
has 'whole-ключapiecewise-1bcdefplaingh' || fail "the text is $(grep -a text "$folder/book.fb2")"

kill "$program"
wait_for_end "$program" || fail "the program did not end"
[ "$failures" = 0 ]
