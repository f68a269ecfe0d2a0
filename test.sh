#!/usr/bin/env bash
# Installs what is missing (Debian 12), builds Vellumark and runs all its tests.
# Anything given is handed to ctest: ./test.sh -R Base64
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
mkdir -p build
. packaging/common.sh

install_missing_packages
build_preset release
say "Running the tests"
ctest --preset release --parallel "$(nproc)" "$@" </dev/null
