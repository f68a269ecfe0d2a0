#!/bin/bash
# Kills the program while real keys type into a book. The journal then holds every word that was typed more than one
# second before the kill, and no part of it is missing. After the last kill the program is started again, recovers the
# text, and saves it.
#
#   kill_during_typing.sh BIN_FOLDER BOOK_GENERATOR [TIMES] [SECONDS]
#
# SECONDS is the age of words that must not be lost (1); a loaded machine may need more. Returns 77 (skipped) if Xvfb,
# xdotool, ImageMagick or the generator is missing.

set -u
bin=$1
generator=${2:-}
times=${3:-3}
age=${4:-1}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }

open_display
"$generator" 1M >"$folder/original.fb2"
recovery="$portable/VMK Office/Recovery"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

# Types numbered words and logs the time, in nanoseconds, at which each was typed.
type_words() {
    local number
    for ((number = 1; number <= 400; number++)); do
        xdotool type --delay 8 "word$number " 2>/dev/null || return
        echo "$(date +%s%N) $number"
    done
}

# words_in BOOK: prints how many of the words, from the first one on, the book contains.
words_in() {
    local found last
    found=$(grep -aoE 'word[0-9]+ ' "$1" | wc -l)
    last=$(grep -aoE 'word[0-9]+ ' "$1" | grep -oE '[0-9]+' | sort -n | tail -n 1)
    [ "${last:-0}" = "$found" ] || echo "a word is missing before word$last" >&2
    echo "$found"
}

# recover BOOK: converts the only journal to a book.
recover() {
    local journals=("$recovery"/*.journal)
    [ ${#journals[@]} = 1 ] && [ -f "${journals[0]}" ] || return 1
    "$portable/vmk" recover "${journals[0]}" --out "$1"
}

for ((round = 1; round <= times; round++)); do
    rm -rf "$recovery"
    cp "$folder/original.fb2" "$folder/book.fb2"
    launch "$folder/book.fb2"
    wait_for_document || fail "the document did not become complete"
    # Into the text of a paragraph.
    xdotool key --delay 30 Next Next Home
    settle "$program"
    type_words >"$folder/typed" &
    typist=$!
    sleep "$((RANDOM % 3 + 1)).$((RANDOM % 10))"
    killed=$(date +%s%N)
    kill -9 "$program"
    wait "$program" 2>/dev/null
    kill "$typist" 2>/dev/null
    wait "$typist" 2>/dev/null
    before=$((killed - age * 1000000000))
    wanted=$(awk -v before="$before" '$1 <= before { last = $2 } END { print last + 0 }' "$folder/typed")
    if [ "$wanted" = 0 ] && ! recover "$folder/found.fb2"; then
        continue
    fi
    recover "$folder/found.fb2" || { fail "there is no journal"; continue; }
    words=$(words_in "$folder/found.fb2")
    echo "round $round: $words words recovered, at least $wanted were typed ${age} s before the kill"
    [ "$words" -ge "$wanted" ] || fail "only $words of $wanted words"
done

# The next start offers the text; Yes shows it, and F4 saves it to its file.
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
    [ "$(words_in "$folder/book.fb2")" = "$words" ] || fail "the saved book has not the recovered words"
else
    fail "the next start does not offer the text"
fi
[ "$failures" = 0 ]
