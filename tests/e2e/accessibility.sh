#!/bin/bash
# Reads and edits a book through AT-SPI, as a screen reader does, in the real program.
#
#   accessibility.sh BIN_FOLDER
#
# Returns 77 (skipped) if Xvfb, D-Bus or the client library is missing.
set -u
bin=$1
client=$(realpath "$(dirname "$0")/accessibility.py")
. "$(dirname "$0")/program.sh"
have_programs dbus-run-session || exit 77
/usr/bin/python3 -c 'import pyatspi' 2>/dev/null || { echo "skipped: python3-pyatspi is not installed"; exit 77; }
[ -x /usr/libexec/at-spi-bus-launcher ] || { echo "skipped: at-spi2-core is not installed"; exit 77; }

open_display
cat >"$folder/book.fb2" <<'BOOK'
<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0">
<description><title-info><genre>sf</genre><author><nickname>N</nickname></author><book-title>T</book-title><lang>en</lang></title-info>
<document-info><author><nickname>N</nickname></author><date>2026</date><id>1</id><version>1.0</version></document-info></description>
<body><section><p>One line.</p><p>שלום עולם</p><p>за́мок</p></section></body>
<binary id="dot.png" content-type="image/png">iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==</binary>
</FictionBook>
BOOK
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 GTK_MODULES='' NO_AT_BRIDGE=0
# shellcheck disable=SC2016 # expanded by the inner shell
timeout 300 dbus-run-session -- bash -c '
    /usr/libexec/at-spi-bus-launcher --launch-immediately &
    launcher=$!
    "$1/vellumark" "$2" 2>"$3" &
    program=$!
    /usr/bin/python3 "$4" "$2"
    status=$?
    kill "$program" "$launcher" 2>/dev/null
    wait
    exit "$status"' accessibility "$portable" "$folder/book.fb2" "$folder/errors" "$client"
