#!/usr/bin/env bash
# Installs missing packages (Debian 12), builds Vellumark and opens the editor.
# ./run.sh [BOOK]: opens BOOK, or a sample by default. Without a display the editor runs briefly under Xvfb, and a
# picture of its window is saved as build/screenshot.png.
set -euo pipefail
book=${1:+$(realpath -- "$1")}
cd "$(dirname "${BASH_SOURCE[0]}")"
mkdir -p build
. packaging/common.sh

install_missing_packages
build_preset release vellumark vmk

bin=$PWD/build/release/bin
if [ -z "$book" ]; then
    book=$(find "$bin/VMK Office/Book Samples" -name '*.fb2' 2>/dev/null | sort | head -n 1)
    [ -n "$book" ] || fail "There is no sample book in $bin/VMK Office/Book Samples."
fi
[ -f "$book" ] || fail "Book not found: $book"

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    say "Opening $book"
    exec "$bin/vellumark" "$book"
fi

say "No display: opening $book under Xvfb"
picture=$PWD/build/screenshot.png
packaging/picture-of-window.sh "$picture" 'Vellumark|VMK: ' "$bin/vellumark" "$book"
say "The picture of the window is $picture"
