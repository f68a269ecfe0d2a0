#!/bin/bash
# Kills the program while real keys type into a book, paste into it, replace all in the find window, or clean up in the
# cleaner's window, one after the other. The journal then holds everything that was done more than one second before the
# kill, and no part of it is missing. After the last kill the program is started again, recovers the text, and saves it.
#
#   kill_during_typing.sh BIN_FOLDER [TIMES] [SECONDS]
#
# SECONDS is the age of work that must not be lost (1); a loaded machine may need more. Returns 77 (skipped) if Xvfb,
# xdotool or ImageMagick is missing.

set -u
bin=$1
times=${2:-4}
age=${3:-1}
. "$(dirname "$0")/program.sh"

open_display
recovery="$portable/VMK Office/Recovery"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }
keys() { xdotool key --delay 8 "$@" 2>/dev/null; }
words() { xdotool type --delay 8 "$1" 2>/dev/null; }

marks=500
{
    printf '%s' '<?xml version="1.0" encoding="UTF-8"?>' \
        '<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><body><section>'
    for ((number = 1; number <= marks; number++)); do printf '<p>Paragraph %d has a mark in it.</p>' "$number"; done
    printf '</section></body></FictionBook>'
} >"$folder/original.fb2"

# ---- Each kind of work has three functions: prepare_KIND; do_KIND, one action, with its number; and done_KIND BOOK,
# which prints the number of actions that a book contains, and fails if a part of one is missing.

# Numbered words in the text of a paragraph.
prepare_typing() { keys Next Next Home Right Right Right; }
do_typing() { words "word$1 "; }
done_typing() {
    local last
    last=$(grep -aoE 'word[0-9]+ ' "$1" | grep -oE '[0-9]+' | sort -n | tail -n 1)
    grep -aoE 'word[0-9]+ ' "$1" | wc -l
    [ "$(grep -aoE 'word[0-9]+ ' "$1" | wc -l)" = "${last:-0}" ]
}

# A piece of text, which is copied from the book. The rules of pasting decide where it is inserted.
prepare_pasting() {
    keys Next Next End Return
    words piece
    settle "$program"
    keys shift+Home
    settle "$program"
    keys ctrl+c
    settle "$program"
    keys End
}
do_pasting() { keys ctrl+v; }
done_pasting() {
    local count
    count=$(grep -ao piece "$1" | wc -l)
    echo $((count - 1))
    [ "$count" -gt 0 ] && ! sed 's/piece//g' "$1" | grep -qaE 'iece|piec'
}

# Each action puts a letter before every mark of the book.
prepare_replacing() {
    keys F2
    find=$(wait_for_window "VMK Find")
    focus_window "$find" && settle "$program"
    words mark
    keys Tab
    words xmark
    keys Tab
    settle "$program"
    # Every action begins in the field for the text to find, with a new search.
    keys shift+Tab shift+Tab
    settle "$program"
}
# A run ends with the caret at its last match.
do_replacing() {
    [ "$1" = 1 ] || {
        focus_window "$main" && keys ctrl+Home && focus_window "$find"
    }
    keys Tab Tab Tab Tab space shift+Tab space
}
done_replacing() { same_marks "$1"; }

prepare_cleaning() {
    keys F6
    focus_window "$(wait_for_window 'Book Cleaner')" && settle "$program"
    keys Tab space
    settle "$program"
    words mark
    keys Tab
    words xmark
    keys Return
    settle "$program"
    # Before the table are, in the order of the keys, its first cell, the scope, and the button that applies it.
    for _ in 1 2 3 4; do
        keys shift+Tab
        settle "$program"
    done
}
do_cleaning() { keys space; }
done_cleaning() { same_marks "$1"; }

# same_marks BOOK: prints the number of letters before each mark, which is the same for all.
same_marks() {
    local kinds
    kinds=$(grep -aoE 'x*mark' "$1" | sort | uniq -c)
    [ "$(wc -l <<<"$kinds")" = 1 ] || { echo 0; return 1; }
    read -r count kind <<<"$kinds"
    echo $((${#kind} - 4))
    [ "$count" = "$marks" ]
}

# ---- the kills

# work KIND: does its actions one after the other, and logs the time, in nanoseconds, at which each was done. The program
# has then received all keys of the action.
work() {
    local number
    for ((number = 1; number <= 400; number++)); do
        "do_$1" "$number"
        settle "$program" 2>/dev/null
        echo "$(date +%s%N) $number"
    done
}

# recover BOOK: converts the only journal to a book.
recover() {
    local journals=("$recovery"/*.journal)
    [ ${#journals[@]} = 1 ] && [ -f "${journals[0]}" ] || return 1
    "$portable/vmk" recover "${journals[0]}" --out "$1" >/dev/null
}

kinds=(typing pasting replacing cleaning)
for ((round = 0; round < times; round++)); do
    kind=${kinds[round % 4]}
    rm -rf "$recovery"
    cp "$folder/original.fb2" "$folder/book.fb2"
    launch "$folder/book.fb2"
    wait_for_document || fail "the document did not become complete"
    main=$(wait_for_window 'VMK: ')
    "prepare_$kind"
    settle "$program"
    : >"$folder/done"
    work "$kind" >"$folder/done" 2>/dev/null &
    worker=$!
    sleep "$((RANDOM % 3 + 1)).$((RANDOM % 10))"
    killed=$(date +%s%N)
    kill -9 "$program"
    kill "$worker" 2>/dev/null
    wait "$program" "$worker" 2>/dev/null
    before=$((killed - age * 1000000000))
    wanted=$(awk -v before="$before" '$1 <= before { last = $2 } END { print last + 0 }' "$folder/done")
    if ! recover "$folder/found.fb2"; then
        [ "$wanted" = 0 ] || fail "$kind: there is no journal"
        continue
    fi
    count=$("done_$kind" "$folder/found.fb2") || fail "$kind: a part of an action is missing"
    echo "$kind: $count actions recovered, at least $wanted were done ${age} s before the kill"
    [ "$count" -ge "$wanted" ] || fail "$kind: only $count of $wanted actions"
    all=$((${all:-0} + count))
done
echo "$times kills, $all actions recovered, $failures failures"
[ "${all:-0}" -gt "$times" ] || fail "hardly anything was done"

# The next start offers the text; Yes shows it, and F4 saves it to its file.
if ! recover "$folder/found.fb2"; then
    [ "$failures" = 0 ]
    exit
fi
start "$portable/vellumark" 2>>"$folder/errors"
program=$started
main=$(wait_for_window '^Vellumark$')
has_question() { [ "$(windows '^Vellumark$' | wc -l)" -gt 1 ]; }
if wait_until 60 has_question; then
    xdotool windowfocus "$(windows '^Vellumark$' | tail -n 1)"
    xdotool key alt+y
    wait_until 60 is_shown 'VMK: book.fb2' || fail "the recovered book is not shown"
    wait_until 60 has_length
    focus_window "$main"
    settle "$program"
    xdotool key F4
    settle "$program"
    [ "$("done_$kind" "$folder/book.fb2")" = "$count" ] || fail "the saved book is not the recovered one"
else
    fail "the next start does not offer the text"
fi
[ "$failures" = 0 ]
