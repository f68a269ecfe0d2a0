#!/bin/bash
# Ends the desktop session of the program by the protocol of session managers. The typed text is kept, also if the end
# is announced, cancelled and announced again.
#
#   end_of_session.sh BIN_FOLDER BOOK_GENERATOR SESSION_MANAGER
#
# Returns 77 (skipped) if Xvfb, xdotool, ImageMagick, the generator or the session manager is missing.

set -u
bin=$1
generator=${2:-}
manager=${3:-}
. "$(dirname "$0")/program.sh"
[ -x "$generator" ] || { echo "skipped: no book generator"; exit 77; }
[ -x "$manager" ] || { echo "skipped: no session manager (libsm-dev)"; exit 77; }

open_display
"$generator" 20K >"$folder/book.fb2"
cp "$folder/book.fb2" "$folder/before.fb2"
failures=0
fail() { echo "FAILED: $1"; failures=$((failures + 1)); }
is_kept() { grep -rqs --include='*.fb2' "$1" "$portable/VMK Office/Recovery"; }

mkfifo "$folder/commands"
HOME=$folder "$manager" <"$folder/commands" >"$folder/answers" &
programs+=("$!")
exec 3>"$folder/commands"
answered() { [ "$(grep -c "^$1\$" "$folder/answers")" -ge "$2" ]; }
wait_until 30 test -s "$folder/answers" || fail "the session manager did not start"
SESSION_MANAGER=$(head -n 1 "$folder/answers")
export SESSION_MANAGER

launch "$folder/book.fb2"
wait_for_document || fail "the document did not become complete"
wait_until 30 answered client 1 || fail "the program did not connect to the session manager"
xdotool type "firstword"
settle "$program"
echo save >&3
wait_until 30 answered saved 1 || fail "the program did not answer to the end of the session"
is_kept firstword || fail "the text is not kept when the end of the session is announced"

# Another program cancels the end.
echo cancel >&3
settle "$program"
has_ended "$program" && fail "the program ended although the end was cancelled"
xdotool type "secondword"
settle "$program"
echo save >&3
wait_until 30 answered saved 2 || fail "the program did not answer to the second end of the session"
echo die >&3
wait_for_end "$program" || fail "the program did not end with the session"
is_kept firstwordsecondword || fail "the text typed after the cancelled end is not kept"
cmp -s "$folder/before.fb2" "$folder/book.fb2" || fail "the book was changed"
[ "$failures" = 0 ]
