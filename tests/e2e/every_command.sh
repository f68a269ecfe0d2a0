#!/bin/bash
# Edits a real book with every editing command, with real keys and clicks in the real program, on its own X server.
# The saved file must equal the conversion of the same book with the same lines added.
#
#   every_command.sh BIN_FOLDER BOOK [PICTURES]
#
# If the folder PICTURES is given, screenshots before and after a repaint are saved there.
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the book is missing.

set -u
bin=$1
source=$2
pictures=${3:-}
. "$(dirname "$0")/program.sh"
[ -f "$source" ] || { echo "skipped: no book $source"; exit 77; }

open_display
cp "$source" "$folder/book.fb2"
launch "$folder/book.fb2"
wait_for_document || { echo "FAILED: the document did not become complete"; exit 1; }
xdotool mousemove 300 300 click 1
settle "$program"

keys() { xdotool key --delay 15 "$@"; }
words() { xdotool type --delay 15 -- "$1"; }
repeat() { local times=$1; shift; for _ in $(seq "$times"); do keys "$@"; done; }
picture() { [ -z "$pictures" ] || { settle "$program"; import -window root "$pictures/$1.png"; }; }
# Chooses an entry of the menu Edit, counted from the last one.
edit_menu() { keys F10 Right; repeat "$1" Up; keys Return; settle "$program"; }
# Completes a line: paragraph tags around its text, and a new line after it.
end_line() { keys Home; words '<p>'; keys End; words '</p>'; keys Return; }

# A new line before the end tag of the last section.
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
# Part of a line; a whole line would be pasted as a line.
words '-copied '; keys Home Right shift+End ctrl+c End ctrl+v; words 'once more'; keys Home Delete End; end_line
words '-moved'; keys Home Right shift+End ctrl+x BackSpace; words 'then '; keys shift+Insert; end_line
words 'as text'; keys shift+Home ctrl+t End; words ' and '; keys ctrl+v; end_line
words 'deleted'; keys shift+Home Delete; words 'stays'; keys Left Left Right Right; end_line
words 'undone'; keys shift+Home ctrl+b ctrl+z End; end_line
words 'redone'; keys shift+Home ctrl+b ctrl+z ctrl+y End; end_line

# The other paste creates a separate line; its caret is counted from the last mouse press.
words 'lower'; keys shift+Home ctrl+x; words 'upper'; keys ctrl+h; settle "$program"
to_section_end
for _ in 1 2; do keys Up Home; words '<p>'; keys End; words '</p>'; done
keys Down End Return

# Shifts and a repaint do not change the text.
words '<p>painted</p>'; picture before-repaint
keys Escape; settle "$program"; picture after-repaint
keys Tab Tab ctrl+Tab
# A repaint of everything, undone in one step.
keys ctrl+a Escape ctrl+z; settle "$program"
keys F4
picture saved
leave_by_menu || { echo "FAILED: the menu did not end the program"; exit 1; }

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
