#!/bin/bash
# Kills the program in the middle of saves, at random moments: the book on the disk is then the old one or
# the new one, whole, never anything else.
#
#   kill_during_saves.sh BIN_FOLDER BOOK_GENERATOR [TIMES]
#
# Ends with 77 (skipped) where Xvfb, xdotool, ImageMagick or the generator are missing.

set -u
bin=$1
generator=${2:-}
times=${3:-6}
for program in Xvfb xdotool import identify; do
    command -v "$program" >/dev/null || { echo "skipped: $program is not installed"; exit 77; }
done
[ -x "$generator" ] || { echo "skipped: no generator of books"; exit 77; }

folder=$(mktemp -d)
server=
program=
stop() {
    [ -n "$program" ] && kill -9 "$program" 2>/dev/null
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
"$generator" 4M >"$folder/old.fb2"
"$bin/vmk" convert "$folder/old.fb2" --out "$folder/new.fb2"

wait_until_complete() {
    for _ in $(seq 240); do
        [ "$(import -window root -crop 90x14+494+460 png:- | identify -format %k -)" -gt 4 ] && return 0
        sleep 0.1
    done
    return 1
}

failures=0 old=0 new=0
for _ in $(seq "$times"); do
    cp "$folder/old.fb2" "$folder/book.fb2"
    "$folder/program/vellumark" "$folder/book.fb2" 2>/dev/null &
    program=$!
    window=$(timeout 60 xdotool search --sync --onlyvisible --name 'VMK: ' | head -n 1)
    wait_until_complete || { echo "FAILED: the document was never complete"; failures=$((failures + 1)); }
    xdotool windowfocus --sync "$window" key F4
    sleep "0.$(printf %03d $((RANDOM % 600)))"
    kill -9 "$program"
    wait "$program" 2>/dev/null
    program=
    if cmp -s "$folder/book.fb2" "$folder/old.fb2"; then
        old=$((old + 1))
    elif cmp -s "$folder/book.fb2" "$folder/new.fb2"; then
        new=$((new + 1))
    else
        echo "FAILED: the book is neither the old nor the new one"
        failures=$((failures + 1))
    fi
done
echo "after $times kills: the old book $old times, the new one $new times"
[ "$failures" = 0 ]
