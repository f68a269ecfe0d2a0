#!/usr/bin/env bash
# Builds a Debian package of the programs in build/release and prints its name. Takes the release preset as it is
# configured; builds only the two programs.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mkdir -p build
. packaging/common.sh

install_missing_packages
build_preset release vellumark vmk
rm -rf build/release/package
# Files that cmake copies keep their modes, so the user's mask must not matter.
umask 022
(cd build/release && cpack -G DEB >package.log 2>&1) || {
    cat build/release/package.log >&2
    fail "The package could not be made."
}
package=$(ls build/release/package/*.deb)
say "Checking $package"
lintian --fail-on error,warning --tag-display-limit 0 "$package"
say "The package is $package"
