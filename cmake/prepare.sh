# Sourced by ./run and ./test: what the build needs, the build itself, quietly.
# Expects `root`, the repository's root. Needs neither git nor a network once
# the packages are there.
# shellcheck shell=bash disable=SC2154

build=$root/build/dev

packages=(g++ cmake ninja-build libmupdf-dev libfreetype-dev libjpeg62-turbo-dev zlib1g-dev
    libharfbuzz0b libmujs2 libgumbo1 libopenjp2-7 libjbig2dec0 qt6-base-dev libsqlite3-dev
    libgtest-dev)

say() { printf '%s\n' "$*"; }

# Runs a command with its output kept in a file; shows the end of it on failure.
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if "$@" >"$log" 2>&1; then
        return 0
    fi
    say "Failed: $*"
    say "The end of $log:"
    tail -n 60 "$log"
    return 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        say "Neither root nor sudo: please install these yourself: ${missing[*]}"
        return 1
    fi
}

install_missing() {
    command -v dpkg-query >/dev/null 2>&1 || return 0 # not a Debian: the configuration will tell
    missing=()
    local package
    for package in "${packages[@]}"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing with apt-get: ${missing[*]}"
    quietly "$build/apt-update.log" as_root apt-get update || return 1
    quietly "$build/apt-install.log" as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# build_targets [TARGET ...]: all of them without an argument.
build_targets() {
    local launcher=()
    command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    if [ ! -f "$build/build.ninja" ]; then
        say "Configuring and building in $build; the first time takes some minutes."
        (cd "$root" && quietly "$build/configure.log" cmake --preset dev "${launcher[@]}") ||
            return 1
    fi
    quietly "$build/build.log" cmake --build "$build" ${1:+--target "$@"}
}
