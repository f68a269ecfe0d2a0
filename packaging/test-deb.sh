#!/usr/bin/env bash
# test-deb.sh [--debootstrap] PACKAGE: installs a package into an empty root folder, opens, edits, validates and saves a
# book as an ordinary user in the installed program under Xvfb, and removes the package. Nothing may remain, and the
# program may write only below the user's home.
#
# Without the option, the root folder contains nothing else, and the libraries are those of this system. With it, the
# root is a new Debian system with exactly the packages that the package depends on; this needs root and a mirror.
#
# Returns 77 (skipped) if a needed program or right is missing.
set -euo pipefail
debootstrap=
[ "$1" != --debootstrap ] || { debootstrap=yes; shift; }
package=$(realpath -- "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. packaging/x-display.sh
have_programs Xvfb xdotool dpkg setpriv python3 || exit 77
[ "$(id -u)" -eq 0 ] || { echo "skipped: a package is installed by root only"; exit 77; }

fail() { echo "FAILED: $1"; exit 1; }
root=$folder/root
user=65534
home=/home/reader

make_empty_root() {
    mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers,parts,alternatives} "$root$home"
    touch "$root"/var/lib/dpkg/{status,available}
    install=(dpkg --root="$root" --force-depends --log=/dev/null --install "$package")
    remove=(dpkg --root="$root" --force-depends --log=/dev/null --purge vellumark)
    # The paths of the installed program, as the user sees them.
    as_user=(setpriv --reuid="$user" --regid="$user" --clear-groups)
    seen=$root
}

make_debian_root() {
    have_programs debootstrap chroot || exit 77
    local mirror
    mirror=$(grep -rhoE 'https?://[^ ]*debian/?( |$)' /etc/apt/sources.list /etc/apt/sources.list.d/ 2>/dev/null | head -n 1 || true)
    debootstrap --variant=minbase bookworm "$root" ${mirror:+"$mirror"} >"$folder/debootstrap.log" 2>&1 ||
        { tail -n 5 "$folder/debootstrap.log"; exit 77; }
    mkdir -p "$root$home"
    cp "$package" "$root/package.deb"
    cp -r /etc/apt/apt.conf.d /etc/apt/sources.list* "$root/etc/apt/" 2>/dev/null || true
    chroot "$root" apt-get update >"$folder/apt.log" 2>&1 || { tail -n 5 "$folder/apt.log"; exit 77; }
    install=(chroot "$root" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends /package.deb)
    remove=(chroot "$root" env DEBIAN_FRONTEND=noninteractive apt-get purge -y vellumark)
    as_user=(chroot --userspec="$user:$user" "$root")
    seen=
}

# All files of the root except the database of dpkg, its logs and caches, and the user's files.
files_of_root() {
    (cd "$root" && find . \( -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/cache -o -path ./var/log -o -path ".$home" \
        -o -path ./proc -o -path ./dev -o -path ./tmp -o -path ./run \) -prune -o -print | LC_ALL=C sort)
}

start_x_display
XAUTHORITY=/dev/null
if [ -n "$debootstrap" ]; then make_debian_root; else make_empty_root; fi
chmod 755 "$folder"
chown "$user:$user" "$root$home"

files_of_root >"$folder/before"
"${install[@]}" >"$folder/install.log" 2>&1 || { tail -n 20 "$folder/install.log"; fail "the package was not installed"; }
files_of_root >"$folder/installed"

cat >"$root$home/book.fb2" <<'BOOK'
<?xml version="1.0" encoding="utf-8"?>
<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0">
<description><title-info><genre>sf</genre><author><nickname>N</nickname></author><book-title>T</book-title><lang>en</lang></title-info>
<document-info><author><nickname>N</nickname></author><date>2026</date><id>1</id><version>1.0</version></document-info></description>
<body><section><p>One line.</p></section></body>
</FictionBook>
BOOK
chown "$user:$user" "$root$home/book.fb2"
environment=(env -i HOME="$seen$home" DISPLAY="$DISPLAY" PATH=/usr/bin:/bin LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb)

run_installed() { "${as_user[@]}" "${environment[@]}" "$@"; }
run_installed "$seen/usr/bin/vmk" validate "$seen$home/book.fb2" || fail "vmk does not validate the book"
run_installed "$seen/usr/bin/vellumark" --version

start "${as_user[@]}" "${environment[@]}" "$seen/usr/bin/vellumark" "$seen$home/book.fb2"
program=$started
window=$(wait_for_window 'VMK: ')
focus_window "$window"
settle "$program"
xdotool mousemove 300 300 click 1
settle "$program"
# The caret moves to the first character of the paragraph.
xdotool key ctrl+End
for _ in 1 2 3; do xdotool key Up; done
xdotool key Home
for _ in 1 2 3; do xdotool key Right; done
xdotool type --delay 30 'zebra '
xdotool key F8
settle "$program"
xdotool key F4
settle "$program"
grep -q 'zebra ' "$root$home/book.fb2" || fail "the edited book was not saved"
run_installed "$seen/usr/bin/vmk" validate "$seen$home/book.fb2" || fail "the saved book is not valid"
xdotool key --delay 60 F10 Down Up Return
wait_for_end "$program" 30 || fail "the program did not end"
[ -d "$root$home/.local/share/vellumark/VMK Office" ] || fail "the user has no workspace"

files_of_root | diff "$folder/installed" - || fail "the program wrote into the installed system"
"${remove[@]}" >"$folder/remove.log" 2>&1 || { tail -n 20 "$folder/remove.log"; fail "the package was not removed"; }
if [ -n "$debootstrap" ]; then
    # The packages that came with it remain.
    ! files_of_root | grep -iE 'vellumark|/vmk' || fail "files remain"
else
    files_of_root | diff "$folder/before" - || fail "files remain"
fi
echo "ok: installed, used as an ordinary user, and removed without leftovers"
