#!/bin/bash
# Compares the main window on a screen with public programs, on the same input in the same run:
#
#   window.sh BIN_FOLDER
#
# It measures an empty start, first and later; the start until the first lines of a 15 MB book are shown, beside the
# Kate editor with the same file (omitted if not installed) and headless Chromium with the page of the book; the memory
# of both editors. bench_loading measures the rest of the loading. The time of a start is the median of five, printed with the processor time, which does not depend on
# the load of the machine. bench_validation measures validation.

set -eu
bin=$1
. "$(dirname "$0")/../../packaging/x-display.sh"
start_x_display
export HOME=$folder/home
mkdir "$HOME"

mkdir "$folder/program"
cp -r "$bin/vellumark" "$bin/VMK Office" "$folder/program/"
"$bin/make_book" 15M --no-pictures --no-movable >"$folder/book.fb2"
"$bin/vmk" display "$folder/book.fb2" --out "$folder/page.htm"
# Kate recognises XML by the extension and highlights it.
cp "$folder/book.fb2" "$folder/book.xml"

now() { date +%s%3N; }
middle() { sort -n | sed -n 3p; }
ratio() { awk "BEGIN { printf \"%.2f\", $1 / $2 }"; }
# Prints the processor time of a program in milliseconds.
processor() { awk '{ print 10 * ($14 + $15) }' "/proc/$1/stat"; }
megabytes() { awk "/^$2/ { print int(\$2 / 1024) }" "/proc/$1/status"; }

# launch "LEFT TOP WIDTH HEIGHT" COMMAND...: starts a program and sets `shown` to the milliseconds until that area of
# the screen shows text, and `program` to the process.
launch() {
    local area=$1 begin end
    shift
    rm -f "$folder/watch"
    # shellcheck disable=SC2086  # each number is an argument
    "$bin/screen_watch" $area >"$folder/watch" 2>/dev/null &
    local watcher=$!
    until grep -q ready "$folder/watch" 2>/dev/null; do :; done
    begin=$(now)
    start "$@" >/dev/null 2>&1
    program=$started
    wait "$watcher"
    end=$(tail -n 1 "$folder/watch")
    shown=$((end - begin))
}
stop() {
    kill "$program"
    wait "$program" 2>/dev/null || true
}
# five_starts AREA COMMAND...: sets `shown` and `used` to the medians of five starts; the last program keeps running.
five_starts() {
    local times=() use=() run
    for run in 1 2 3 4 5; do
        [ "$run" -eq 1 ] || stop
        launch "$@"
        times+=("$shown")
        use+=("$(processor "$program")")
    done
    shown=$(printf '%s\n' "${times[@]}" | middle)
    used=$(printf '%s\n' "${use[@]}" | middle)
}

menu_bar="4 4 200 16"
launch "$menu_bar" "$folder/program/vellumark"
echo "first start, window on the screen: $shown ms (processor: $(processor "$program") ms)"
stop
five_starts "$menu_bar" "$folder/program/vellumark"
stop
echo "later start, window on the screen: $shown ms (processor: $used ms)"

five_starts "14 60 400 300" "$folder/program/vellumark" "$folder/book.fb2"
first=$shown
echo "start to first lines: $first ms (processor: $used ms)"
stop
# The panel with the file length is filled when the document can be edited.
five_starts "494 460 90 14" "$folder/program/vellumark" "$folder/book.fb2"
complete=$shown
echo "start to document complete: $complete ms (processor: $used ms)"
xdotool sleep 2
echo "memory: $(megabytes "$program" VmRSS) MB, at most $(megabytes "$program" VmHWM) MB"
stop

if command -v kate >/dev/null; then
    five_starts "115 110 400 300" kate -n "$folder/book.xml"
    echo "Kate, start to text shown: $shown ms (processor: $used ms); ratios: $(ratio "$first" "$shown"), $(ratio "$complete" "$shown")"
    xdotool sleep 2
    echo "Kate, memory: $(megabytes "$program" VmRSS) MB, at most $(megabytes "$program" VmHWM) MB"
    stop
else
    echo "Kate is not installed: no comparison"
fi

begin=$(now)
chromium --headless --no-sandbox --disable-gpu --screenshot="$folder/page.png" --window-size=692,467 \
    "file://$folder/page.htm" >/dev/null 2>&1
page=$(($(now) - begin))
echo "headless Chromium, the page alone: $page ms; ratio: $(ratio "$complete" "$page")"
