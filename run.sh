#!/usr/bin/env bash
# Installs missing packages (Debian 12), builds Vellumark and opens the editor.
# ./run.sh [BOOK]: opens BOOK, or a sample by default. Without a display the editor runs briefly under Xvfb, and a
# picture of its window is saved as build/screenshot.png.
# ./run.sh --install [PREFIX]: builds and installs both programs below PREFIX (~/.local by default).
# ./run.sh --install-built [PREFIX]: the same with the programs as they are built now.
# ./run.sh --uninstall [PREFIX]: removes what --install has installed there.
set -euo pipefail
action=open
case ${1:-} in
--install | --install-built | --uninstall)
    action=${1#--}
    prefix=$(realpath -m -- "${2:-$HOME/.local}")
    set --
    ;;
-*)
    echo "usage: ./run.sh [BOOK] | --install [PREFIX] | --install-built [PREFIX] | --uninstall [PREFIX]" >&2
    exit 2
    ;;
esac
book=${1:+$(realpath -- "$1")}
cd "$(dirname "${BASH_SOURCE[0]}")"
mkdir -p build
. packaging/common.sh

# The names of the installed files, relative to the prefix.
manifest=share/vellumark/installed-files

uninstall_from() {
    local file folder
    [ -f "$1/$manifest" ] || fail "Nothing is installed by this script in $1."
    while IFS= read -r file; do
        rm -f -- "$1/$file"
        folder=$(dirname -- "$1/$file")
        # Folders that are empty now are removed, up to the prefix.
        while [ "$folder" != "$1" ] && rmdir -- "$folder" 2>/dev/null; do folder=$(dirname -- "$folder"); done
    done < <(cat "$1/$manifest"; echo "$manifest")
}

install_to() {
    # Files of an older version that this one lacks do not remain.
    [ ! -f "$1/$manifest" ] || uninstall_from "$1"
    cmake --install build/release --prefix "$1" >build/install.log || { cat build/install.log >&2; fail "The installation failed."; }
    # The list of cmake has no line end after its last name.
    local file
    while IFS= read -r file || [ -n "$file" ]; do printf '%s\n' "${file#"$1/"}"; done \
        <build/release/install_manifest.txt >"$1/$manifest"
}

if [ "$action" = uninstall ]; then
    uninstall_from "$prefix"
    say "Vellumark is removed from $prefix"
    exit
fi

if [ "$action" != install-built ]; then
    install_missing_packages
    build_preset release vellumark vmk
fi

if [ "$action" != open ]; then
    install_to "$prefix"
    say "Installed: $prefix/bin/vellumark and $prefix/bin/vmk"
    case :$PATH: in *":$prefix/bin:"*) ;; *) say "$prefix/bin is not in PATH" ;; esac
    exit
fi

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
