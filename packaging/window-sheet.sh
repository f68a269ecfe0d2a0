#!/usr/bin/env bash
# window-sheet.sh BIN_FOLDER OUTPUT_FOLDER: draws all windows of the program onto sheets, in light and dark, at
# 100 % and 200 %: light-1.png, dark-1.png, light-2.png, dark-2.png; and all four, reduced, on sheet.png.
# Needs Xvfb. Without it the screen would be too small for some windows.
set -euo pipefail
bin=$1
output=$2
mkdir -p "$output"
for scale in 1 2; do
    for theme in light dark; do
        QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=$scale xvfb-run -a -s "-screen 0 $((1600 * scale))x$((1000 * scale))x24" \
            "$bin/windowsheet" "$theme" "$output/$theme-$scale.png"
    done
done
montage "$output/light-1.png" "$output/dark-1.png" "$output/light-2.png" "$output/dark-2.png" \
    -resize 1600x -tile 2x2 -geometry +8+8 "$output/sheet.png"
