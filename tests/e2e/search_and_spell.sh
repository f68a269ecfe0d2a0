#!/bin/bash
# Searches, replaces and checks the spelling of a Russian, an English and a mixed book with real keys and clicks in the
# real program, on its own X server. The saved books, the custom dictionary and the histories must be the expected ones.
#
#   search_and_spell.sh BIN_FOLDER [PICTURES]
#
# If the folder PICTURES is given, screenshots are saved there.
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or a dictionary is missing.

set -u
bin=$1
pictures=${2:-}
. "$(dirname "$0")/program.sh"
for dictionary in ru_RU en_US; do
    [ -f "/usr/share/hunspell/$dictionary.dic" ] || { echo "skipped: no dictionary $dictionary"; exit 77; }
done

open_display
failed=0
fail() { echo "FAILED: $1"; failed=1; }
keys() { xdotool key --delay 15 "$@"; }
words() { xdotool type --delay 15 -- "$1"; }
picture() { settle "$program"; [ -z "$pictures" ] || import -window root "$pictures/$1.png"; }
custom="$portable/VMK Office/CustomDictionary.dat"
histories="$portable/VMK Office/FindReplaceHistory"

# book LANGUAGE TEXT: writes a book with one paragraph.
book() {
    printf '%s' '<?xml version="1.0" encoding="UTF-8"?>' \
        '<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0"><description><title-info>' \
        '<genre>prose_classic</genre><author><nickname>N</nickname></author><book-title>T</book-title>' \
        "<lang>$1</lang></title-info><document-info><author><nickname>N</nickname></author><date>2026</date>" \
        '<id>1</id><version>1.0</version></document-info></description>' \
        "<body><section><p>$2</p></section></body></FictionBook>"
}

# has_text TEXT: whether the saved book contains a text.
has_text() { grep -qF -- "$1" "$folder/book.fb2" || fail "the book lacks \"$1\": $(grep '<p>' "$folder/book.fb2")"; }

# open_book LANGUAGE TEXT: starts the program with the book; the caret is in the paragraph.
open_book() {
    book "$1" "$2" >"$folder/book.fb2"
    launch "$folder/book.fb2"
    wait_for_document || { echo "FAILED: the document did not become complete"; exit 1; }
    xdotool mousemove 300 300 click 1
    settle "$program"
    keys ctrl+End Up Up Up Home Right Right Right
}

# save_and_leave: closes the tool window, saves and ends the program.
save_and_leave() {
    keys Escape
    settle "$program"
    focus_window "$(wait_for_window 'VMK: book')"
    keys F4
    settle "$program"
    leave_by_menu || { echo "FAILED: the menu did not end the program"; exit 1; }
}

# check_spelling LANGUAGE TEXT ADDED: replaces the first suspicious word by its first suggestion, adds the second
# one to the dictionary, and ignores all others.
check_spelling() {
    rm -f "$custom"
    open_book "$1" "$2"
    xdotool mousemove 366 35 click 1
    focus_window "$(wait_for_window 'Spell Check')"
    settle "$program"
    keys alt+s; picture "$1-first"
    keys alt+r; settle "$program"
    keys alt+a; picture "$1-third"
    keys alt+i alt+i alt+i alt+i alt+i alt+i; settle "$program"
    save_and_leave
    [ "$(cat "$custom")" = "$3"$'\r' ] || fail "the custom dictionary is: $(od -c "$custom" 2>&1 | head -n 3)"
}

# In a Russian book the Latin words are English, in an English book the Cyrillic words are Russian.
first=$("$bin/vmk" spell --suggest --lang ru <(book ru 'превет') | sed -n 's/.*: превет: \([^,]*\).*/\1/p')
[ -n "$first" ] || fail "no suggestion for a Russian word"
check_spelling ru 'Всем превет и здраствуйте, the words.' здраствуйте
has_text "<p>Всем $first и здраствуйте, the words.</p>"
check_spelling en 'We recieve a seperate book, слова.' seperate
has_text '<p>We receive a seperate book, слова.</p>'
check_spelling en-GB 'We <emphasis>recieve</emphasis> млокоо and слова.' млокоо
has_text '<p>We <emphasis>receive</emphasis> млокоо and слова.</p>'

# Find, replace the match, and replace all matches after it with marks, which one command reverts.
open_book en 'one two one two one'
keys F2
find=$(wait_for_window 'VMK Find')
focus_window "$find"
settle "$program"
words 'one'; keys Tab; words '1'; keys F3; settle "$program"
picture found
keys F4; settle "$program"
keys Tab Tab Tab space; settle "$program"
picture replaced
focus_window "$(wait_for_window 'VMK: book')"
keys ctrl+z; settle "$program"
picture reverted
focus_window "$find"
save_and_leave
has_text '<p>1 two one two one</p>'
[ "$(od -An -tx1 <"$histories/QWT_HisFind_Uni.hf" | tr -d ' \n')" = 6f006e0065000d00 ] ||
    fail "the history of searches is another one"
[ "$(od -An -tx1 <"$histories/QWT_HisReplace_Uni.hr" | tr -d ' \n')" = 31000d00 ] ||
    fail "the history of replacements is another one"

# A regular expression with a template, in all of the book.
open_book en 'well-known and half-open'
keys F2
find=$(wait_for_window 'VMK Find')
focus_window "$find"
settle "$program"
words '(\w+)-(\w+)'; keys Tab
# shellcheck disable=SC2016 # a template of the expression
words '$2-$1'
# The enabled controls in tab order: both fields, find, replace all, new search, whole word, match case, RegExp; then
# down, selection, auto-find next, mark replaced. RegExp disables whole word and up.
keys Tab Tab Tab Tab Tab Tab space Tab Tab Tab Tab space; settle "$program"
keys shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab space
picture regexp
save_and_leave
has_text '<p>known-well and open-half</p>'
[ "$(tr -d '\0' <"$histories/QWT_HisFind_Uni_RegExp.rghf")" = '(\w+)-(\w+)'$'\r' ] ||
    fail "the history of expressions is another one"

[ "$failed" = 0 ] && echo "the books, the dictionary and the histories are the expected ones"
exit "$failed"
