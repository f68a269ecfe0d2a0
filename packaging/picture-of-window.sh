#!/usr/bin/env bash
# picture-of-window.sh PICTURE CAPTION PROGRAM [ARGUMENT...]: starts a program on a virtual X display of its own,
# waits for its window with that caption (a regular expression) and until the program rests, writes a picture
# of the screen and closes the window.
set -euo pipefail
picture=$1
caption=$2
shift 2
. "$(dirname "${BASH_SOURCE[0]}")/x-display.sh"

start_x_display 1280x800
# A window shown while the manager is still coming up can stay hidden for ever.
start openbox >/dev/null 2>&1
wait_until 30 has_window_manager
start "$@"
window=$(wait_for_window "$caption")
settle "$started"
import -window root "$picture"
kill -0 "$started" || { echo "The program ended before its picture was taken." >&2; exit 1; }
# One that asks a question in a box of its own stays open, and goes with the display.
focus_window "$window"
xdotool key alt+F4
wait_for_end "$started" 5 || true
