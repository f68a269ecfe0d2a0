#!/bin/bash
# Changes every setting with real keys in the real program, on its own X server, and reads the settings file and the
# screen afterwards.
#
#   settings.sh BIN_FOLDER [PICTURES]
#
# If the folder PICTURES is given, screenshots are saved there.
# Returns 77 (skipped) if Xvfb, xdotool or ImageMagick is missing.

set -u
bin=$1
pictures=${2:-}
. "$(dirname "$0")/program.sh"

open_display
cp "$portable/VMK Office/Book Samples/English/5 Sample book.fb2" "$folder/book.fb2"

failed=0
check() {
    local what=$1
    shift
    "$@" || { echo "FAILED: $what"; failed=1; }
}
keys() { xdotool key --delay 15 "$@"; }
# In a list: the next or the previous entry. In a text field: another text. Then the next control.
choose() { keys "$1" Tab; }
enter() { keys ctrl+a; xdotool type --delay 15 -- "$1"; keys Tab; }
toggle() { keys space Tab; }
skip() { for _ in $(seq "$1"); do keys Tab; done; }
picture() { settle "$program"; [ -z "$pictures" ] || import -window root "$pictures/$1.png"; }
open_settings() {
    focus_window "$(wait_for_window 'VMK: ')"
    keys F9
    focus_window "$(wait_for_window '^ Settings$')"
    settle "$program"
}
# shellcheck disable=SC2317 # called through check
# is_reloaded: whether the dialog is closed; accepts the default of a box about losses.
is_reloaded() {
    local box
    is_shown '^ Settings$' || return 0
    box=$(windows '^Vellumark$' | tail -n 1)
    [ -z "$box" ] || xdotool windowfocus "$box" key Return
    return 1
}
# shellcheck disable=SC2317 # called through check
# has_colour COLOUR: whether the screen shows more than a few pixels of a colour "#RRGGBB".
has_colour() {
    local count
    count=$(import -window root png:- | convert png:- -fill white +opaque "$1" -fill black -opaque "$1" \
        -format '%[fx:round(w*h*(1-mean))]' info:)
    [ "${count:-0}" -gt 50 ]
}

launch "$folder/book.fb2"
wait_for_document || { echo "FAILED: the document did not become complete"; exit 1; }
open_settings
picture opened

# All controls in the tab order, beginning with the one that has the focus; "preview on change" stays on, so that each change shows the preview.
choose Down        # input encoding
toggle             # namespace error warning
choose Down        # output encoding
choose Up          # style
toggle             # sounds
toggle             # show nbsp
toggle             # command-line info
skip 3             # preview on change, schema, in-line tags
choose Down        # font
enter 17pt
choose Down        # font weight
choose Down        # text align
enter 9px          # left margin
picture before-preview
check "the preview appears" wait_for_window '^ SampleForPreview.fb2$' >/dev/null
enter 11px         # right margin
enter '#112233'; skip 1
enter '#CCFFCC'; skip 1
skip 1             # the tag colour comes from the palette
keys space
focus_window "$(wait_for_window '^ Set Colors$')"
keys Right Right Right Down Return # the cell after the third one, a row below: #FFFAF0
picture palette
keys Home Right Return Escape # the second cell, #FF0000
focus_window "$(wait_for_window '^ Settings$')"
keys Tab
enter '#4455AA'; skip 1
enter '#7700BB'; skip 1
choose Up          # font weight of tags
enter 12           # node shift
toggle             # tag highlighting
picture changed
check "the preview shows the background" has_colour '#CCFFCC'
skip 4             # preview, default, delete ini, reload
keys space         # done
check "the dialog closes" wait_until 30 is_not_shown '^ Settings$'
check "the preview closes" wait_until 30 is_not_shown '^ SampleForPreview.fb2$'
check "done leaves the display as it is" eval '! has_colour "#CCFFCC"'

# The same dialog again: highlighting on, previews off, and "reload".
open_settings
skip 7; toggle
skip 20; toggle    # from "schema" to "tag highlighting"
skip 3
keys space         # reload
check "the dialog closes" wait_until 60 is_reloaded
wait_for_document
picture reloaded
check "reload shows the background" has_colour '#CCFFCC'
check "reload shows the tags" has_colour '#FF0000'
check "reload shows the attributes" has_colour '#4455AA'
check "reload shows the values" has_colour '#7700BB'
leave_by_menu || { echo "FAILED: the menu did not end the program"; exit 1; }

python3 - "$portable/vellumark.ini" <<'PY' || failed=1
import struct, sys
data = open(sys.argv[1], "rb").read()
kinds = dict(enumerate("tntt" "nn" "tttt" "tttt" "n" "tttt" "nnn" "ttttt" "t" "ffff"))
at, fields = 0, []
for number in range(32):
    kind = kinds[number]
    if kind == "t":
        size, = struct.unpack_from("<H", data, at)
        fields.append(data[at + 2:at + 2 + size].decode("cp1252"))
        at += 2 + size
    elif kind == "n":
        fields.append(struct.unpack_from("<h", data, at)[0])
        at += 2
    else:
        fields.append(struct.unpack_from("<f", data, at)[0])
        at += 4
expected = ["windows-1251", 0, "windows-1251", "line ends", 1, 0, "Tahoma", "17pt", "bold", "justify", "9px", "11px",
            "#112233", "#CCFFCC", 12, "#FF0000", "#4455AA", "#7700BB", "normal", 0, 0, 0]
names = ["InputEncoding", "NamespaceErrorWarning", "OutputEncoding", "OutputStyle", "TagHighlighting",
         "PreviewOnChange", "DisplayFontName", "DisplayFontSize", "DisplayFontWeight", "DisplayTextAlign",
         "DisplayLeftMargin", "DisplayRightMargin", "DisplayForeColor", "DisplayBackColor", "NodeShift", "TagColor",
         "AttrNameColor", "AttrValColor", "TagFontWeight", "SoundsOn", "ShowNbsp", "CommandLineInfo"]
wrong = [f"{n} is {f!r} and not {e!r}" for n, f, e in zip(names, fields, expected) if f != e]
print("\n".join(wrong))
sys.exit(bool(wrong) or at != len(data))
PY
[ "$failed" = 0 ] && echo "every setting is stored"
exit "$failed"
