# shellcheck shell=bash
# The real program with real keys, for the scripts of this folder. Sourced with "$bin" set, the folder of the
# built programs.

. "$(dirname "${BASH_SOURCE[0]}")/../../packaging/x-display.sh"
have_programs Xvfb xdotool import identify python3 || exit 77

# A portable folder of our own: what the program writes stays in it.
portable=$folder/program

open_display() {
    start_x_display
    mkdir "$portable"
    cp -r "$bin/vellumark" "$bin/VMK Office" "$portable/"
}

# launch BOOK: starts the program with a book; its process is "$program".
launch() {
    start "$portable/vellumark" "$1" 2>"$folder/errors"
    program=$started
}

# The panel of the file's length is written when the document is complete; before, it is one plain colour.
has_length() {
    local count
    count=$(colours 90x14+494+460)
    [ "${count:-0}" -gt 4 ]
}

# wait_for_document: waits until the book is complete, and gives its window the keys.
wait_for_document() {
    local window
    window=$(wait_for_window 'VMK: ') && wait_until 120 has_length && focus_window "$window" && settle "$program"
}

# Alt+F4 belongs to a window manager; the menu's last entry ends the program too.
leave_by_menu() {
    xdotool key --delay 60 F10 Down Up Return
    wait_for_end "$program"
}
