#!/usr/bin/env bash
# Makes the pictures of docs/guide.md in docs/pictures, from the built windows (build/release). They are not part of the
# repository.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mkdir -p docs/pictures
cmake --build build/release --target windowsheet >/dev/null
# The screen of the offscreen platform is too small for some windows.
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1600x1000x24" \
    build/release/bin/windowsheet light docs/pictures/all-windows.png docs/pictures 2>/dev/null
# Each picture of the guide exists.
missing=0
while read -r picture; do
    [ -s "docs/$picture" ] || { echo "no picture docs/$picture"; missing=1; }
done < <(grep -oE '\]\(pictures/[^)]+\)' docs/guide.md | sed -E 's/^\]\((.*)\)$/\1/')
exit "$missing"
