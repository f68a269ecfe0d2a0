#!/bin/bash
# Edits in the display with real keys and a real mouse, on its own X server, and compares the resulting text with
# what a user expects.
#
#   keys_and_mouse.sh PAGE_VIEWER
#
# Returns 77 (skipped) if Xvfb, xdotool, xclip or setxkbmap is missing.

set -u
viewer=$1
. "$(dirname "$0")/../../../packaging/x-display.sh"
have_programs Xvfb xdotool xclip setxkbmap || exit 77
start_x_display
# The keyboard layouts contain every character typed here. xdotool binds other characters to a spare key only
# briefly, and a busy program would look too late.
setxkbmap -layout us,ru,us -variant ,,intl

# A fixed-width font, so that the position of a character on the screen is known: at 12pt it is 9.63 pixels wide and
# 19 pixels high; the text begins at 10,10.
cat >"$folder/page.htm" <<'PAGE'
<HTML><BODY STYLE="font-family:DejaVu Sans Mono; font-size:12pt; margin-top:10px; margin-left:10px"><DIV id=FirstDiv>first line</DIV><DIV>second line of words</DIV><DIV>last</DIV></BODY></HTML>
PAGE
x() { echo $((10 + $1 * 963 / 100)); }
y() { echo $((10 + $1 * 19 + 9)); }

failures=0
# check NAME EXPECTED ACTION...: opens the page, runs the action, closes the window and compares; "|" is a line end.
check() {
    local name=$1 expected=$2
    shift 2
    rm -f "$folder/text"
    start "$viewer" "$folder/page.htm" --size 600x300 --dump "$folder/text" 2>"$folder/errors"
    viewer_process=$started
    window=$(wait_for_window 'page_viewer: /') && focus_window "$window"
    xdotool mousemove --window "$window" 300 250
    settle "$viewer_process"
    "$@"
    settle "$viewer_process"
    xdotool key ctrl+q
    wait_for_end "$viewer_process" || kill -9 "$viewer_process"
    local text
    text=$(tr '\n' '|' <"$folder/text")
    if [ "$text" = "$expected|" ]; then
        echo "ok: $name"
    else
        echo "FAILED: $name"
        echo "  expected: $expected|"
        echo "  found:    $text"
        sed 's/^/  /' "$folder/errors"
        failures=$((failures + 1))
    fi
}

keys() { xdotool key --delay 20 "$@"; }
words() { xdotool type --delay 20 "$1"; }
at() { xdotool mousemove --window "$window" "$(x "$1")" "$(y "$2")"; }

typing() { keys ctrl+End; words ' abc'; keys Return; words 'D e f'; }
backspace() { keys ctrl+Home Down Home BackSpace; words ', '; }
cyrillic() { keys ctrl+Home; words 'Привет '; }
drag() { at 0 1; xdotool mousedown 1; at 3 1; at 7 1; xdotool mouseup 1; words 'The '; }
shifted() { keys ctrl+Home shift+Right shift+Right shift+Right shift+Right shift+Right Delete; }
clipboard() { timeout 20 xclip -selection clipboard -o 2>/dev/null | tr -d '\r'; }
clipboard_holds() { [ "$(clipboard)" = "$1" ]; }
copying() {
    keys ctrl+Home shift+Down ctrl+c
    # The text is copied when the key has been handled.
    wait_until 20 clipboard_holds 'first line' || {
        echo "FAILED: the clipboard holds the text copied: $(clipboard)"
        failures=$((failures + 1))
    }
    keys ctrl+End ctrl+v
}
cutting() { keys ctrl+End shift+Home ctrl+x ctrl+Home ctrl+v; }
pasting() {
    local text=$'from outside\nin two lines'
    printf '%s' "$text" | xclip -selection clipboard -i 2>/dev/null
    wait_until 20 clipboard_holds "$text"
    keys ctrl+End ctrl+v
}
undoing() { keys ctrl+End; words 'abc'; keys Return; words 'x'; keys ctrl+z ctrl+z ctrl+z; }
redoing() { undoing; keys ctrl+y ctrl+y; }
clicking() { at 6 0; xdotool click 1; words '('; at 5 2; xdotool click 1; words ')'; }
doubling() { at 9 1; xdotool click --repeat 2 --delay 0 1; keys Delete; }
shiftclick() { at 2 0; xdotool click 1; at 4 1; xdotool keydown shift click 1 keyup shift; keys BackSpace; }
deleting() { keys ctrl+Home End Delete; }
dead() { keys ctrl+End dead_acute e; }

check 'typed text and Enter' 'first line|second line of words|last abc|D e f' typing
check 'Backspace over a line break' 'first line, second line of words|last' backspace
check 'text of another script' 'Привет first line|second line of words|last' cyrillic
check 'a selection by drag is typed over' 'first line|The line of words|last' drag
check 'a selection by Shift and arrows is deleted' ' line|second line of words|last' shifted
check 'copy and paste' 'first line|second line of words|lastfirst line|' copying
check 'cut and paste' 'lastfirst line|second line of words|' cutting
check 'text from another program is pasted' 'first line|second line of words|lastfrom outside|in two lines' pasting
check 'undo' 'first line|second line of words|last' undoing
check 'redo' 'first line|second line of words|lastabc|' redoing
check 'clicks set the caret' 'first (line|second line of words|last)' clicking
check 'a double click selects a word' 'first line|second  of words|last' doubling
check 'a Shift click extends' 'find line of words|last' shiftclick
check 'Delete over a line break' 'first linesecond line of words|last' deleting
check 'a dead key and its letter' 'first line|second line of words|lasté' dead

[ "$failures" -eq 0 ]
