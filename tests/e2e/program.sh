# shellcheck shell=bash
# Functions that run the real program with real keys, for the scripts of this folder. Sourced with "$bin" set to the
# folder of the built programs.
: "${bin:?}"

. "$(dirname "${BASH_SOURCE[0]}")/../../packaging/x-display.sh"
have_programs Xvfb xdotool import identify python3 || exit 77

# A separate portable folder: the program writes only there.
portable=$folder/program

open_display() {
    start_x_display
    mkdir "$portable"
    cp -r "$bin/vellumark" "$bin/vmk" "$bin/VMK Office" "$portable/"
    # What other tests have left.
    rm -rf "$portable/VMK Office/Backup" "$portable/VMK Office/Recovery"
}

# launch BOOK: starts the program with a book and sets "$program" to its process.
launch() {
    start "$portable/vellumark" "$1" 2>"$folder/errors"
    program=$started
    boxes=()
}

# The panel with the file length is filled when the document is complete; before, it has one plain colour.
has_length() {
    local count
    count=$(colours 90x14+494+460)
    [ "${count:-0}" -gt 4 ]
}

# is_loaded: whether a book is shown; accepts the default of each box that comes first: the question about losses, the
# message about a missing tree. The boxes have the caption that the main window has without a book. "boxes" has them.
# shellcheck disable=SC2034 # used by the scripts
declare -A boxes
is_loaded() {
    local found
    is_shown 'VMK: ' && return
    mapfile -t found < <(windows '^Vellumark$')
    if [ ${#found[@]} -ge 2 ]; then
        # shellcheck disable=SC2034
        boxes[${found[-1]}]=answered
        xdotool windowfocus "${found[-1]}" key Return
    fi
    return 1
}

# wait_for_document: waits until the book is complete, and focuses its window.
wait_for_document() {
    local window
    wait_until 60 is_loaded && window=$(wait_for_window 'VMK: ') && wait_until 120 has_length && focus_window "$window" && settle "$program"
}

# Without a window manager Alt+F4 has no effect; the last entry of the menu ends the program too.
leave_by_menu() {
    xdotool key --delay 60 F10 Down Up Return
    wait_for_end "$program"
}
