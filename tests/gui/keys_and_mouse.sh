#!/bin/bash
# Works in the display with real keys and a real mouse, on an X server of its own, and compares the text
# left behind with what a person expects.
#
#   keys_and_mouse.sh PAGE_VIEWER
#
# Ends with 77 (skipped) where Xvfb or xdotool is missing.

set -u
viewer=$1
for program in Xvfb xdotool xclip; do
    if ! command -v "$program" >/dev/null; then
        echo "skipped: $program is not installed"
        exit 77
    fi
done

folder=$(mktemp -d)
server=
window_process=
stop() {
    [ -n "$window_process" ] && kill "$window_process" 2>/dev/null
    [ -n "$server" ] && kill "$server" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$folder"
}
trap stop EXIT

# The server chooses a free display and tells its number.
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$folder/display" 2>/dev/null &
server=$!
for _ in $(seq 100); do
    [ -s "$folder/display" ] && break
    sleep 0.1
done
DISPLAY=:$(cat "$folder/display")
export DISPLAY QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
[ "$DISPLAY" = : ] && { echo "Xvfb did not start"; exit 1; }

# A font of one width, so that a character's place on the screen is known: 12pt is 9.63 pixels wide and
# 19 pixels high; the text begins at 10,10.
cat >"$folder/page.htm" <<'PAGE'
<HTML><BODY STYLE="font-family:DejaVu Sans Mono; font-size:12pt; margin-top:10px; margin-left:10px"><DIV id=FirstDiv>first line</DIV><DIV>second line of words</DIV><DIV>last</DIV></BODY></HTML>
PAGE
x() { echo $((10 + $1 * 963 / 100)); }
y() { echo $((10 + $1 * 19 + 9)); }

failures=0
# check NAME EXPECTED WORK...: opens the page, does the work, closes the window, compares. "|" is a line end.
check() {
    local name=$1 expected=$2
    shift 2
    rm -f "$folder/text"
    "$viewer" "$folder/page.htm" --size 600x300 --dump "$folder/text" 2>"$folder/errors" &
    window_process=$!
    window=$(timeout 30 xdotool search --sync --onlyvisible --name 'page_viewer: /' | head -n 1)
    xdotool windowfocus --sync "$window" mousemove --window "$window" 300 250 sleep 0.2
    "$@"
    xdotool sleep 0.2 key ctrl+q
    wait "$window_process"
    window_process=
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
copying() {
    keys ctrl+Home shift+Down ctrl+c
    # The copy is made when its key has been handled.
    for _ in $(seq 50); do
        xclip -selection clipboard -o >"$folder/clipboard" 2>/dev/null && break
        sleep 0.1
    done
    keys ctrl+End ctrl+v
}
cutting() { keys ctrl+End shift+Home ctrl+x ctrl+Home ctrl+v; }
pasting() { printf 'from outside\nin two lines' | xclip -selection clipboard -i; keys ctrl+End ctrl+v; }
undoing() { keys ctrl+End; words 'abc'; keys Return; words 'x'; keys ctrl+z ctrl+z ctrl+z; }
redoing() { undoing; keys ctrl+y ctrl+y; }
clicking() { at 6 0; xdotool click 1; words '('; at 5 2; xdotool click 1; words ')'; }
doubling() { at 9 1; xdotool click --repeat 2 --delay 60 1; keys Delete; }
shiftclick() { at 2 0; xdotool click 1; at 4 1; xdotool keydown shift click 1 keyup shift; keys BackSpace; }
deleting() { keys ctrl+Home End Delete; }
dead() {
    setxkbmap us -variant intl 2>/dev/null
    keys ctrl+End dead_acute e
    setxkbmap us 2>/dev/null
}

check 'typed text and Enter' 'first line|second line of words|last abc|D e f' typing
check 'Backspace over a line break' 'first line, second line of words|last' backspace
check 'text of another script' 'Привет first line|second line of words|last' cyrillic
check 'a selection by drag is typed over' 'first line|The line of words|last' drag
check 'a selection by Shift and arrows is deleted' ' line|second line of words|last' shifted
check 'copy and paste' 'first line|second line of words|lastfirst line|' copying
if [ "$(tr -d '\r' <"$folder/clipboard")" != 'first line' ]; then
    echo "FAILED: the clipboard holds the text copied: $(cat "$folder/clipboard")"
    failures=$((failures + 1))
fi
check 'cut and paste' 'lastfirst line|second line of words|' cutting
check 'text from another program is pasted' 'first line|second line of words|lastfrom outside|in two lines' pasting
check 'undo' 'first line|second line of words|last' undoing
check 'redo' 'first line|second line of words|lastabc|' redoing
check 'clicks set the caret' 'first (line|second line of words|last)' clicking
check 'a double click chooses a word' 'first line|second  of words|last' doubling
check 'a Shift click extends' 'find line of words|last' shiftclick
check 'Delete over a line break' 'first linesecond line of words|last' deleting
if command -v setxkbmap >/dev/null; then
    check 'a dead key and its letter' 'first line|second line of words|lasté' dead
fi

[ "$failures" -eq 0 ]
