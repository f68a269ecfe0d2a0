#!/usr/bin/env bash
# picture-of-window.sh PICTURE PROGRAM [ARGUMENT...]: starts a program on the X display, waits for its first
# window, writes a picture of the screen and ends the program.
set -euo pipefail
picture=$1
shift

openbox >/dev/null 2>&1 &
manager=$!
QT_QPA_PLATFORM=xcb "$@" &
program=$!
trap 'kill "$program" "$manager" 2>/dev/null || true' EXIT

timeout 60 xdotool search --sync --onlyvisible --pid "$program" >/dev/null
# The window paints and the book arrives shortly behind its first appearance.
sleep "${PICTURE_DELAY:-3}"
kill -0 "$program" || { echo "The program ended before its picture was taken." >&2; exit 1; }
import -window root "$picture"
