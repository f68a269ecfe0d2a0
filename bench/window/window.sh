#!/bin/bash
# Measures the main window with a 15 MB book against public programs on the same input in the same run, and
# prints ratios:
#
#   window.sh BIN_FOLDER
#
# Start to "document complete" against headless Chromium showing the book's page; F8 to its outcome against
# xmllint; the memory of the program with the book open.

set -eu
bin=$1
. "$(dirname "$0")/../../packaging/x-display.sh"
start_x_display

mkdir "$folder/program"
cp -r "$bin/vellumark" "$bin/VMK Office" "$folder/program/"
"$bin/make_book" 15M --no-pictures >"$folder/book.fb2"
"$bin/vmk" display "$folder/book.fb2" --out "$folder/page.htm"

now() { date +%s%3N; }
# Colours of a piece of the screen: a panel without text has next to none.
colours() { import -window root -crop "$1" png:- | identify -format %k -; }
# until_text AREA: gives the milliseconds since $begin when a panel has text.
until_text() {
    until [ "$(colours "$1")" -gt 4 ]; do :; done
    echo $(($(now) - begin))
}

begin=$(now)
"$folder/program/vellumark" 2>/dev/null &
program=$!
window=$(xdotool search --sync --onlyvisible --name '^Vellumark$' | head -n 1)
echo "empty start, window on the screen: $(($(now) - begin)) ms"
xdotool sleep 1
kill "$program"
wait "$program" 2>/dev/null || true

begin=$(now)
"$folder/program/vellumark" "$folder/book.fb2" 2>/dev/null &
program=$!
complete=$(until_text 90x14+494+460)
echo "start to document complete: $complete ms"
xdotool sleep 2
echo "memory: $(awk '/^VmRSS/ { print int($2 / 1024) }' "/proc/$program/status") MB," \
    "at most $(awk '/^VmHWM/ { print int($2 / 1024) }' "/proc/$program/status") MB"

# The caret's panel is written last of all.
xdotool windowfocus --sync "$(xdotool search --onlyvisible --name 'VMK: ' | head -n 1)"
begin=$(now)
xdotool key F8
validated=$(until_text 200x14+230+460)
begin=$(now)
xmllint --stream --noout --schema "$folder/program/VMK Office/Schemas/FictionBook.xsd" "$folder/book.fb2" 2>/dev/null
lint=$(($(now) - begin))
begin=$(now)
colours 200x14+230+460 >/dev/null
look=$(($(now) - begin))
echo "F8 to its outcome: $validated ms, of which $look ms at most pass before it is seen; xmllint: $lint ms"
echo "ratio: $(awk "BEGIN { printf \"%.2f\", $validated / $lint }")"
kill "$program"
wait "$program" 2>/dev/null || true

begin=$(now)
chromium --headless --no-sandbox --disable-gpu --screenshot="$folder/page.png" --window-size=692,467 \
    "file://$folder/page.htm" >/dev/null 2>&1
page=$(($(now) - begin))
echo "headless Chromium, the page alone: $page ms"
echo "ratio: $(awk "BEGIN { printf \"%.2f\", $complete / $page }")"
