#!/bin/bash
# The whole road of a book, with real keys in the real program on an X server of its own: open it, type a
# word, break a tag, validate, mend it where the caret has landed, validate, save, close. What is on the
# disk then differs from a plain conversion of the book by exactly that word.
#
#   road.sh BIN_FOLDER CORPUS_FOLDER [LARGE_BOOK_GENERATOR]
#
# Ends with 77 (skipped) where Xvfb, xdotool, ImageMagick or the books are missing.

set -u
bin=$1
corpus=$2
generator=${3:-}
. "$(dirname "$0")/program.sh"
[ -d "$corpus" ] || { echo "skipped: no books in $corpus"; exit 77; }

open_display
mkdir "$folder/in"
failures=0
box_expected=
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

# The box that tells of the missing tree stands over the window, which has its first name still and takes no
# keys meanwhile.
answer_box() {
    local window
    wait_until 60 has_box || { fail "no box tells of the missing tree"; return; }
    for window in $(windows '^Vellumark$'); do
        has_box || return
        focus_window "$window" && xdotool key Return && settle "$program"
    done
}
has_box() { [ "$(windows '^Vellumark$' | wc -l)" -ge 2 ]; }

keys() { xdotool key --delay 30 "$@"; }

# Lines of the display from the last paragraph's line to the end of the book.
lines_to_last_paragraph() {
    "$bin/vmk" display "$1" | tr '\r' '\n' | grep '</DIV>' | tac | grep -n -m1 '&lt;/p&gt;' | cut -d: -f1
}

# road BOOK WORK: opens a copy of the book, does the work, closes the window. The copy is "$book".
road() {
    book=$folder/$(basename "$1")
    cp "$1" "$book"
    rm -f "$portable"/*.ini
    # The sounds are left out, so that nothing waits for them; the settings file keeps the welcome page away.
    launch "$book"
    [ -z "$box_expected" ] || answer_box
    wait_for_document || fail "$(basename "$1"): the document was never complete"
    # Real books depart from the schema: what counts here is that they are well-formed. The list stands behind
    # the toolbar's last button.
    xdotool mousemove 550 43 click 1
    settle "$program"
    keys Down Return
    settle "$program"
    xdotool mousemove 300 300 click 1
    settle "$program"
    "$2"
    leave_by_menu || {
        fail "$(basename "$1"): the program did not end by its menu"
        kill -9 "$program"
    }
    [ -d "$portable/VMK Office/Temp" ] && fail "$(basename "$1"): the temporary tree is left behind"
}

edit_break_mend_save() {
    local up
    up=$(lines_to_last_paragraph "$book")
    keys ctrl+End
    for _ in $(seq $((up - 1))); do keys Up; done
    # In front of the paragraph's end tag; then its last character goes.
    keys End Left Left Left Left
    xdotool type --delay 30 ' zebra'
    keys End BackSpace
    keys F8
    settle "$program"
    # Where the caret has landed the missing character mends the book.
    xdotool type --delay 30 '>'
    keys F8
    settle "$program"
    keys F4
    settle "$program"
}

# The book with a short paragraph of our own at the end of its text, where the work is done.
with_last_words() {
    python3 - "$1" "$2" <<'PY'
import sys
text = open(sys.argv[1], 'rb').read()
pictures = text.find(b'<binary')
end = text.rfind(b'</section>', 0, pictures if pictures >= 0 else len(text))
open(sys.argv[2], 'wb').write(text[:end] + b'<p>Last words.</p>' + text[end:])
PY
}

check_road() {
    local name source
    name=$(basename "$1")
    source=$folder/in/$name
    with_last_words "$1" "$source"
    "$bin/vmk" convert "$source" --out "$folder/expected.fb2" || { fail "$name: vmk convert"; return; }
    road "$source" edit_break_mend_save
    python3 - "$folder/expected.fb2" "$book" <<'PY' && echo "ok: $name" || fail "$name: more or less than the word differs"
import sys
expected, saved = (open(path, 'rb').read() for path in sys.argv[1:])
sys.exit(0 if saved.count(b' zebra') == 1 and saved.replace(b' zebra', b'') == expected else 1)
PY
}

# A book that is not well-formed is shown, and mended where the validation puts the caret.
mend_and_save() {
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
    box_expected=yes
    road "$folder/in/broken.fb2" mend_and_save
    box_expected=
    if cmp -s "$folder/expected.fb2" "$book"; then
        echo "ok: a book that is not well-formed"
    else
        fail "a book that is not well-formed is not mended"
    fi
}

check_road "$corpus/faq-ru.fb2"
check_road "$corpus/faq-ru-1251.fb2"

check_broken_book "$corpus/faq-ru.fb2"

if [ -n "$generator" ] && [ -x "$generator" ]; then
    "$generator" 15M >"$folder/large.fb2" && check_road "$folder/large.fb2"
fi

[ "$failures" = 0 ]
