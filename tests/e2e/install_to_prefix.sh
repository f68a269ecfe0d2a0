#!/bin/bash
# Installs the built programs below a prefix as run.sh does, uses them, and removes them again.
#
#   install_to_prefix.sh SOURCE_FOLDER BUILD_FOLDER
set -eu
prefix=$(mktemp -d)/"a prefix"
trap 'rm -rf "$(dirname "$prefix")"' EXIT
[ "$2" = "$1/build/release" ] || { echo "skipped: run.sh installs the release preset only"; exit 77; }
mkdir -p "$prefix/bin"
touch "$prefix/bin/other"
"$1/run.sh" --install-built "$prefix" >/dev/null
"$prefix/bin/vmk" --version
[ -f "$prefix/share/vellumark/VMK Office/Schemas/FictionBook.xsd" ]
"$1/run.sh" --install-built "$prefix" >/dev/null # a second time replaces the first
"$1/run.sh" --uninstall "$prefix" >/dev/null
left=$(cd "$prefix" && find . -type f -o -type d -empty)
[ "$left" = ./bin/other ] || { echo "remained: $left"; exit 1; }
if "$1/run.sh" --uninstall "$prefix" 2>/dev/null; then
    echo "a second removal did not fail"
    exit 1
fi
