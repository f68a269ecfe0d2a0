#!/bin/bash
# Edits a real book with every editing command, by real keys and clicks in the real program, on an X server
# of its own. The saved file must be the one that a plain conversion makes of the book with the same lines.
#
#   every_command.sh BIN_FOLDER BOOK [PICTURES]
#
# With a folder PICTURES the window before and after a repaint is kept there for the eye.
# Ends with 77 (skipped) where Xvfb, xdotool, ImageMagick or the book are missing.

set -u
bin=$1
source=$2
pictures=${3:-}
for program in Xvfb xdotool import identify; do
    command -v "$program" >/dev/null || { echo "skipped: $program is not installed"; exit 77; }
done
[ -f "$source" ] || { echo "skipped: no book $source"; exit 77; }

folder=$(mktemp -d)
server=
program=
stop() {
    [ -n "$program" ] && kill "$program" 2>/dev/null
    [ -n "$server" ] && kill "$server" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$folder"
}
trap stop EXIT

Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$folder/display" 2>/dev/null &
server=$!
for _ in $(seq 100); do
    [ -s "$folder/display" ] && break
    sleep 0.1
done
DISPLAY=:$(cat "$folder/display")
export DISPLAY QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
[ "$DISPLAY" = : ] && { echo "Xvfb did not start"; exit 1; }

mkdir "$folder/program"
cp -r "$bin/vellumark" "$bin/VMK Office" "$folder/program/"
cp "$source" "$folder/book.fb2"

"$folder/program/vellumark" "$folder/book.fb2" 2>/dev/null &
program=$!
window=$(timeout 60 xdotool search --sync --onlyvisible --name 'VMK: ' | head -n 1)
for _ in $(seq 240); do
    # The panel of the file's length is written when the document is complete.
    [ "$(import -window root -crop 90x14+494+460 png:- | identify -format %k -)" -gt 4 ] && break
    sleep 0.25
done
xdotool windowfocus --sync "$window" sleep 0.2 mousemove 300 300 click 1 sleep 0.3

keys() { xdotool key --delay 15 "$@"; }
words() { xdotool type --delay 15 -- "$1"; }
repeat() { local times=$1; shift; for _ in $(seq "$times"); do keys "$@"; done; }
picture() { [ -n "$pictures" ] && import -window root "$pictures/$1.png"; }
# An entry of the menu Edit, counted from its last one.
edit_menu() { keys F10 Right; repeat "$1" Up; keys Return; sleep 0.2; }
# A finished line: paragraph tags around what stands in it, and a new line behind.
end_line() { keys Home; words '<p>'; keys End; words '</p>'; keys Return; }

# A line of our own in front of the last section's end tag.
up=$("$bin/vmk" display "$source" | tr '\r' '\n' | grep '</DIV>' | tac | grep -n -m1 '&lt;/section&gt;' | cut -d: -f1)
to_section_end() { keys ctrl+End; repeat $((up - 1)) Up; keys Home; }
to_section_end
keys Return Up

words 'heavy'; keys shift+Home ctrl+b; end_line
words 'slanted'; keys shift+Home ctrl+i; end_line
words 'above'; keys shift+Home; edit_menu 5; end_line
words 'below'; keys shift+Home; edit_menu 4; end_line
words 'SMALL'; keys shift+Home; edit_menu 3; keys End; end_line
words 'large'; keys shift+Home; edit_menu 2; keys End; end_line
words 'every word'; keys shift+Home; edit_menu 1; keys End; end_line
words 'two  blanks'; end_line
words 'kept'; keys ctrl+space; words 'together'; end_line
words 'copied '; keys shift+Home ctrl+c End ctrl+v; words 'once more'; end_line
words 'moved'; keys shift+Home ctrl+x; words 'then '; keys shift+Insert; end_line
words 'as text'; keys shift+Home ctrl+t End; words ' and '; keys ctrl+v; end_line
words 'deleted'; keys shift+Home Delete; words 'stays'; keys Left Left Right Right; end_line
words 'undone'; keys shift+Home ctrl+b ctrl+z End; end_line
words 'redone'; keys shift+Home ctrl+b ctrl+z ctrl+y End; end_line

# The other paste makes a line of its own; its caret is counted from the last press of the mouse.
words 'lower'; keys shift+Home ctrl+x; words 'upper'; keys ctrl+h; sleep 0.2
to_section_end
for _ in 1 2; do keys Up Home; words '<p>'; keys End; words '</p>'; done
keys Down End Return

# Shifts and a repaint leave the text alone.
words '<p>painted</p>'; sleep 0.2; picture before-repaint
keys Escape; sleep 0.3; picture after-repaint
keys Tab Tab ctrl+Tab
# Everything painted, and taken back at one stroke.
keys ctrl+a Escape ctrl+z; sleep 0.5
keys F4; sleep 1
picture saved
keys F10 Down Up Return
for _ in $(seq 100); do
    kill -0 "$program" 2>/dev/null || break
    sleep 0.1
done

python3 - "$source" "$folder/expected.fb2" <<'PY'
import sys
lines = ["<strong>heavy</strong>", "<emphasis>slanted</emphasis>", "<sup>above</sup>", "<sub>below</sub>",
         "small", "LARGE", "Every Word", "two blanks", "kept\u00a0together", "copied copied once more",
         "then moved", "as text and as text", "stays", "undone", "<strong>redone</strong>",
         "upper", "lower", "painted"]
text = open(sys.argv[1], encoding="utf-8", newline="").read()
at = text.rindex("</section>")
open(sys.argv[2], "w", encoding="utf-8", newline="").write(
    text[:at] + "".join(f"<p>{line}</p>" for line in lines) + text[at:])
PY
"$bin/vmk" convert "$folder/expected.fb2" --out "$folder/wanted.fb2"
if ! cmp -s "$folder/book.fb2" "$folder/wanted.fb2"; then
    echo "FAILED: the saved book is not the expected one"
    diff "$folder/wanted.fb2" "$folder/book.fb2" | head -n 60
    exit 1
fi
echo "the saved book is the expected one"
