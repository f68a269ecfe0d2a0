#!/bin/bash
# Runs the companion and the editor on files that strangers could have made, in a workspace with planted links, and
# records their system calls: they open no connection, start no program, and write nowhere else. See confinement.py.
#
#   confinement.sh BIN_FOLDER
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick or strace is missing, or if strace is not permitted.

set -u
bin=$1
. "$(dirname "$0")/program.sh"
have_programs strace || exit 77
strace -qq -o /dev/null true 2>/dev/null || { echo "skipped: strace is not permitted"; exit 77; }
here=$(dirname "$0")

open_display
# A sanitizer cannot look for leaks in a traced process.
export ASAN_OPTIONS=detect_leaks=0 HOME=$folder/home TMPDIR=$folder/tmp
unset XDG_CONFIG_HOME XDG_CACHE_HOME XDG_DATA_HOME
mkdir "$HOME" "$TMPDIR"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }

python3 "$here/confinement.py" make "$folder"
export VELLUMARK_CODEPAGE=1252
python3 "$here/confinement.py" companion "$bin" "$folder" || fail "the companion"

# Links that somebody has planted in the workspace.
office="$portable/VMK Office"
outside=$folder/outside
rm -rf "$office/Temp" "$office/UserCleanUp" "$office/FindReplaceHistory" "$office/Recovery" "$office/Backup"
mkdir -p "$outside/images"
echo precious | tee "$outside/images/picture.png" "$outside/Fb2SourceHtml.htm" "$outside/old.declined" >"$outside/x.journal.new"
touch -d '100 days ago' "$outside/old.declined"
for name in Temp UserCleanUp FindReplaceHistory Recovery Backup; do ln -s "$outside" "$office/$name"; done
for name in FbTagsList.dat InLineTags.dat ColorTable.dat CustomDictionary.dat VMKEmpty.htm Welcome.htm; do
    ln -sf "$outside/tags" "$office/$name"
done
list() { (cd "$outside" && find . -printf '%p %y %s %T@\n' | sort && find . -type f -exec md5sum {} + | sort); }
before=$(list)

# visit BOOK: opens a book, edits and saves it, opens tools, and leaves.
visit() {
    start strace -f -qq -y -s 4096 -o "$folder/window.log" -e "trace=$(python3 -c 'import sys; sys.path.insert(0, sys.argv[1]); import confinement; print(confinement.CALLS)' "$here")" \
        "$portable/vellumark" "$1" 2>"$folder/errors"
    program=$started
    # shellcheck disable=SC2034 # used by program.sh
    boxes=()
    wait_for_document || { fail "$1 is not shown: $(cat "$folder/errors")"; return; }
    xdotool key --delay 40 ctrl+End Up Up x y z F8
    settle "$program"
    # The palette, the tag list, the cleaner and the search, each of which has files.
    for key in F7 F6 F2; do
        xdotool key "$key"
        settle "$program"
        xdotool key Escape
        settle "$program"
        focus_window "$(wait_for_window 'VMK: ')"
    done
    xdotool key F4
    settle "$program"
    leave_by_menu || fail "$1: the menu did not end the program"
    python3 "$here/confinement.py" check "$folder/window.log" "$portable" "$HOME" "$XDG_RUNTIME_DIR" "$folder/books" ||
        fail "the window with $1"
}
for book in plain entities page; do visit "$folder/books/$book.fb2"; done
python3 "$here/confinement.py" check "$folder/window.log" "$outside" >/dev/null && fail "the check finds nothing"
[ "$(list)" = "$before" ] || { fail "files outside have changed"; diff <(echo "$before") <(list); }
[ -z "$(ls -A "$TMPDIR")" ] || fail "files are left in the temporary folder: $(ls -A "$TMPDIR")"
[ "$failures" = 0 ]
