#!/usr/bin/env bash
# picture-of-window.sh PICTURE CAPTION PROGRAM [ARGUMENT...]: starts a program on its own virtual X display, waits
# for its window with that caption (a regular expression) and until the program is idle, saves a picture of the
# screen and closes the window.
set -euo pipefail
picture=$1
caption=$2
shift 2
. "$(dirname "${BASH_SOURCE[0]}")/x-display.sh"

start_x_display 1280x800
# A window shown before the window manager is ready can stay hidden.
start openbox >/dev/null 2>&1
wait_until 30 has_window_manager
start "$@"
window=$(wait_for_window "$caption")
settle "$started"
import -window root "$picture"
kill -0 "$started" || { echo "The program ended before its picture was taken." >&2; exit 1; }
# A program that shows a message box stays open; it ends with the display.
focus_window "$window"
xdotool key alt+F4
wait_for_end "$started" 5 || true
