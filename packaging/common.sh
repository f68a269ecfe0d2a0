# shellcheck shell=bash
# Functions of run.sh, test.sh and .ci/run that install missing packages and build. Sourced in the root folder.

say() { printf '\n== %s\n' "$*"; }
fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# Prints the packages of packaging/debian-packages.txt that are not installed, one per line.
missing_packages() {
    local package
    while read -r package; do
        case $package in '' | '#'*) continue ;; esac
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || echo "$package"
    done <packaging/debian-packages.txt
}

install_missing_packages() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "Not a Debian system: no packages are installed (the list is packaging/debian-packages.txt)"
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages)
    if [ ${#missing[@]} -eq 0 ]; then
        say "All packages are installed"
        return
    fi
    local as_root=(env)
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "These packages are missing, and without root or sudo they cannot be installed: ${missing[*]}"
        as_root=(sudo env)
    fi
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    "${as_root[@]}" apt-get update </dev/null
    "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
        "${missing[@]}" </dev/null
}

# The compiler cache is inside the tree unless the user already has one.
use_compiler_cache() {
    if [ -z "${CCACHE_DIR:-}" ] && [ ! -d "${HOME:-/nonexistent}/.cache/ccache" ] && [ ! -d "${HOME:-/nonexistent}/.ccache" ]; then
        export CCACHE_DIR="$PWD/build/ccache"
    fi
}

# build_preset PRESET [TARGET...]: configures and builds a preset of CMakePresets.json.
build_preset() {
    local preset=$1 targets=()
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    use_compiler_cache
    say "Building the preset $preset in build/$preset"
    cmake --preset "$preset" >"build/$preset.configure.log" 2>&1 || {
        cat "build/$preset.configure.log" >&2
        fail "The configuration of the preset $preset failed."
    }
    cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
}
