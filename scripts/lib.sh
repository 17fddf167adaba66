# Functions that the scripts of this folder share. Source it from bash; it sets `root` to the project's folder.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

# CMake's choice for build folders that don't exist yet.
export CMAKE_GENERATOR=${CMAKE_GENERATOR:-Ninja}

# die TEXT...: ends the script with a message.
die() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# missing_packages PACKAGE...: prints those that aren't installed.
missing_packages() {
    local package
    for package; do
        [[ $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null) == *" installed" ]] || echo "$package"
    done
}

# need PACKAGE...: installs Debian packages, as root or by sudo. It does nothing if all are there.
need() {
    if ! command -v dpkg-query >/dev/null; then
        echo "This is no Debian system: what these packages hold must be there already: $*" >&2
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@" | sort -u)
    ((${#missing[@]})) || return 0

    local become_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || die "not root and no sudo; have these packages installed: ${missing[*]}"
        become_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    if ! { "${become_root[@]}" apt-get update -qq -o Acquire::Retries=3 &&
        "${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq -o Acquire::Retries=3 \
            --no-install-recommends "${missing[@]}" >/dev/null; }; then
        die "could not install packages; have these installed: ${missing[*]}"
    fi
}

# build_preset NAME [TARGET...]: configures a preset and builds it, without words as long as nothing goes wrong.
build_preset() {
    local preset=$1 targets=()
    shift
    (($#)) && targets=(--target "$@")
    echo "Building $preset"
    (cd "$root" && cmake --preset "$preset" --log-level=WARNING >/dev/null &&
        cmake --build --preset "$preset" --parallel "$jobs" "${targets[@]}" -- --quiet)
}

# start_wine: starts wine in build/wine and ends it with the script. A server that is there before the first program,
# and holds none of our streams, keeps each start short and nobody waiting for it.
start_wine() {
    export WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
    mkdir -p "$WINEPREFIX"
    setsid wineserver -p </dev/null >/dev/null 2>&1
    trap 'wineserver -k' EXIT
    wine wineboot </dev/null >/dev/null 2>&1
}
