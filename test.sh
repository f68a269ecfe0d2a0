#!/usr/bin/env bash
# Installs missing packages (Debian 12), builds Vellumark and runs all tests.
# Arguments are passed to ctest: ./test.sh -R Base64
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
mkdir -p build
. packaging/common.sh

install_missing_packages
build_preset release
say "Running the tests"
ctest --preset release --parallel "$(nproc)" "$@" </dev/null
