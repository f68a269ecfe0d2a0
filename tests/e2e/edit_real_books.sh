#!/bin/bash
# Edits books with real keys in the real program, on its own X server: opens a book, types a word, breaks a tag,
# validates, fixes the tag at the caret, validates, saves and closes. The saved file must differ from a conversion of
# the book by exactly that word.
#
#   edit_real_books.sh BIN_FOLDER CORPUS_FOLDER [LARGE_BOOK_GENERATOR]
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or the books are missing.

set -u
bin=$1
corpus=$2
generator=${3:-}
. "$(dirname "$0")/program.sh"
[ -d "$corpus" ] || { echo "skipped: no folder of real books"; exit 77; }

open_display
mkdir "$folder/in"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

keys() { xdotool key --delay 30 "$@"; }

# Prints the number of lines from the last paragraph to the end of the book.
lines_to_last_paragraph() {
    "$bin/vmk" display "$1" | tr '\r' '\n' | grep '</DIV>' | tac | grep -n -m1 '&lt;/p&gt;' | cut -d: -f1
}

# edit_copy BOOK ACTION: opens a copy of the book, runs the action and closes the window. The copy is "$book".
edit_copy() {
    book=$folder/$(basename "$1")
    cp "$1" "$book"
    rm -f "$portable"/*.ini
    # The portable folder has no sounds, so that nothing waits for them.
    launch "$book"
    wait_for_document || fail "$(basename "$1"): the document did not become complete"
    # Real books violate the schema; here they only have to be well-formed. The last button of the toolbar opens the
    # list.
    xdotool mousemove 550 43 click 1
    settle "$program"
    keys Down Return
    settle "$program"
    xdotool mousemove 300 300 click 1
    settle "$program"
    "$2"
    leave_by_menu || {
        fail "$(basename "$1"): the menu did not end the program"
        kill -9 "$program"
    }
    [ -d "$portable/VMK Office/Temp" ] && fail "$(basename "$1"): the temporary tree was not removed"
}

edit_break_fix_save() {
    local up
    up=$(lines_to_last_paragraph "$book")
    keys ctrl+End
    for _ in $(seq $((up - 1))); do keys Up; done
    # Types before the end tag of the paragraph, then removes the last character of the tag.
    keys End Left Left Left Left
    xdotool type --delay 30 ' zebra'
    keys End BackSpace
    keys F8
    settle "$program"
    # The missing character at the caret fixes the book.
    xdotool type --delay 30 '>'
    keys F8
    settle "$program"
    keys F4
    settle "$program"
}

# with_last_words BOOK RESULT: adds a short paragraph at the end of the text, which the actions edit.
with_last_words() {
    python3 - "$1" "$2" <<'PY'
import sys
text = open(sys.argv[1], 'rb').read()
pictures = text.find(b'<binary')
end = text.rfind(b'</section>', 0, pictures if pictures >= 0 else len(text))
open(sys.argv[2], 'wb').write(text[:end] + b'<p>Last words.</p>' + text[end:])
PY
}

differs_by_one_word() {
    python3 - "$1" "$2" <<'PY'
import sys
expected, saved = (open(path, 'rb').read() for path in sys.argv[1:])
sys.exit(0 if saved.count(b' zebra') == 1 and saved.replace(b' zebra', b'') == expected else 1)
PY
}

# A page without a tree shows the line ends of the file, which are then saved instead of blanks.
differs_only_in_white_space() {
    python3 - "$1" "$2" <<'PY'
import sys
expected, saved = (open(path, 'rb').read().split() for path in sys.argv[1:])
sys.exit(0 if saved == expected else 1)
PY
}

check_edits() {
    local name source
    name=$(basename "$1")
    source=$folder/in/$name
    with_last_words "$1" "$source"
    "$bin/vmk" convert "$source" --out "$folder/expected.fb2" || { fail "$name: vmk convert"; return; }
    edit_copy "$source" edit_break_fix_save
    if differs_by_one_word "$folder/expected.fb2" "$book"; then
        echo "ok: $name"
    else
        fail "$name: more or less than the word differs"
    fi
}

# The action for a book that is not well-formed: the validation puts the caret at the error, which is fixed there.
fix_and_save() {
    keys F8
    settle "$program"
    xdotool type --delay 30 '>'
    keys F8
    settle "$program"
    keys F4
    settle "$program"
}

check_broken_book() {
    with_last_words "$1" "$folder/whole.fb2"
    python3 - "$folder/whole.fb2" "$folder/in/broken.fb2" <<'PY'
import sys
text = open(sys.argv[1], 'rb').read()
open(sys.argv[2], 'wb').write(text.replace(b'Last words.</p>', b'Last words.</p'))
PY
    "$bin/vmk" convert "$folder/whole.fb2" --out "$folder/expected.fb2"
    edit_copy "$folder/in/broken.fb2" fix_and_save
    [ ${#boxes[@]} -eq 2 ] || fail "${#boxes[@]} boxes, not a question about losses and a message about the missing tree"
    if differs_only_in_white_space "$folder/expected.fb2" "$book"; then
        echo "ok: a book that is not well-formed"
    else
        fail "a book that is not well-formed was not fixed"
    fi
}

check_edits "$corpus/faq-ru.fb2"
check_edits "$corpus/faq-ru-1251.fb2"

check_broken_book "$corpus/faq-ru.fb2"

if [ -n "$generator" ] && [ -x "$generator" ]; then
    "$generator" 15M >"$folder/large.fb2" && check_edits "$folder/large.fb2"
fi

[ "$failures" = 0 ]
