#!/bin/bash
# What the programs answer without a window: version, usage, a missing display, and the completion of the shells.
#
#   command_line.sh BIN_FOLDER COMPLETIONS_FOLDER VERSION
set -u
bin=$1
completions=$2
version=$3
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

# expect NAME EXPECTED ACTUAL
expect() { [ "$2" = "$3" ] || fail "$1: expected \"$2\", not \"$3\""; }

no_display=(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM -u VELLUMARK_HINTS)
for program in vellumark vmk; do
    expect "$program --version" "$program $version" "$("${no_display[@]}" "$bin/$program" --version)"
    "${no_display[@]}" "$bin/$program" --help | grep -q "^usage: $program" || fail "$program --help shows no usage"
done

# Without a display, and with one that does not answer.
for display in '' ':65123'; do
    message=$("${no_display[@]}" ${display:+"DISPLAY=$display"} "$bin/vellumark" 2>&1)
    expect "exit status without a display" 2 $?
    expect "lines without a display" 1 "$(wc -l <<<"$message")"
    grep -q '^vellumark: no display' <<<"$message" || fail "no display: $message"
done

# completed NAME WORD...: the candidates for the last word, one per line.
completed() {
    PATH=$bin:$PATH bash -c '
        . "$0/$1.bash"
        shopt -s extglob
        compopt() { :; } # only available while a shell completes
        COMP_WORDS=("${@:1}")
        COMP_CWORD=$(($# - 1))
        "_$1"
        printf "%s\n" "${COMPREPLY[@]}" | LC_ALL=C sort' "$completions" "$@"
}
commands=$("$bin/vmk" --help | sed -nE 's/^  ([a-z]+)  +.*/\1/p' | LC_ALL=C sort)
[ "$(wc -l <<<"$commands")" -ge 7 ] || fail "the help names few commands: $commands"
expect "the commands" "$commands" "$(completed vmk '' | grep -v '^-')"
expect "a command" validate "$(completed vmk val)"
completed vmk validate --a | grep -qx -- --against || fail "no option of validate: $(completed vmk validate --a)"
completed vmk validate --a | grep -q schema && fail "a word that is no option"
cd "$(mktemp -d)" || exit 1
touch book.fb2 'second book.FB2' notes.txt
mkdir folder
expect "books and folders" "$(printf 'book.fb2\nfolder\nsecond book.FB2')" "$(completed vellumark '' | grep -v '^-')"
expect "the actions after a book" "$(printf -- '-L\n-V')" "$(completed vellumark book.fb2 '')"
rm -r "$PWD"
[ "$failures" = 0 ]
