# Functions shared by the scripts in this folder. Source it from bash; it sets `root` to the project's folder.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

# Debian packages: what builds the library, its tools and tests needs besides a compiler, and what the tests of the
# Python package need.
build_packages="cmake ninja-build libgtest-dev libgmock-dev libcli11-dev nlohmann-json3-dev libsqlite3-dev libssl-dev \
    libxxhash-dev libjs-dygraphs"
pytest_packages="pybind11-dev python3-dev python3-pytest python3-pandas python3-xarray python3-matplotlib python3-neo \
    python3-mne python3-dask python3-distributed"

# CMake uses this generator for new build folders.
export CMAKE_GENERATOR=${CMAKE_GENERATOR:-Ninja}

# die TEXT...: prints a message and ends the script with 1.
die() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# offer_help ARGUMENT...: if --help or -h is among the script's arguments, prints the comment at the top of the script
# and ends it. Call it before anything is installed or built.
offer_help() {
    [[ " $* " == *" --help "* || " $* " == *" -h "* ]] || return 0
    sed -n '2,${/^#/!q;s/^# \{0,1\}//p}' "$0"
    exit 0
}

# missing_packages PACKAGE...: prints the packages that aren't installed.
missing_packages() {
    local package
    for package; do
        [[ $(dpkg-query -W -f '${Status}' "$package" 2>/dev/null) == *" installed" ]] || echo "$package"
    done
}

# need PACKAGE...: installs missing Debian packages, as root or with sudo.
need() {
    if ! command -v dpkg-query >/dev/null; then
        echo "This isn't Debian. Make sure that the content of these packages is installed: $*" >&2
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@" | sort -u)
    ((${#missing[@]})) || return 0

    local become_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || die "not root, and sudo is missing; install these packages: ${missing[*]}"
        become_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    if ! { "${become_root[@]}" apt-get update -qq -o Acquire::Retries=3 &&
        "${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq -o Acquire::Retries=3 \
            --no-install-recommends "${missing[@]}" >/dev/null; }; then
        die "could not install packages; install them yourself: ${missing[*]}"
    fi
}

# version: prints the project's version, which CMakeLists.txt defines.
version() { sed -n 's/^  VERSION \([0-9.]*\)$/\1/p' "$root/CMakeLists.txt"; }

# configure_preset NAME [OPTION...]: configures the build folder of a preset.
configure_preset() { (cd "$root" && cmake --preset "$1" "${@:2}" --log-level=WARNING >/dev/null); }

# build_configured NAME ARGUMENT...: builds a preset that is configured. Clang takes a quarter less time with its memory
# in huge pages.
build_configured() {
    (cd "$root" && GLIBC_TUNABLES=glibc.malloc.hugetlb=1 cmake --build --preset "$1" --parallel "$jobs" "${@:2}")
}

# build_preset NAME [-DOPTION...] [TARGET...]: configures a preset and builds all or some targets. Prints errors only.
build_preset() {
    local preset=$1 options=() targets=()
    shift
    while [[ ${1-} == -D* ]]; do options+=("$1") && shift; done
    (($#)) && targets=(--target "$@")
    echo "Building $preset"
    configure_preset "$preset" "${options[@]}"
    build_configured "$preset" "${targets[@]}" -- --quiet ||
        die "can't build $preset; if two sources that are compiled as one define the same name, rename it in one"
}

# build_with_progress NAME TARGET...: the same, and prints how far it is at every tenth.
build_with_progress() {
    configure_preset "$1"
    build_configured "$1" --target "${@:2}" | awk -F '[][/]' '
        !/^\[[0-9]+\/[0-9]+\]/ { print; next }
        int(10 * $2 / $3) > tenth { tenth = int(10 * $2 / $3); print "  " 10 * tenth " %"; fflush() }'
}

# start_wine: starts wine in build/wine, and stops it when the script ends. A server that already runs makes each program
# start faster. It must not hold our streams, or the reader of a stream would wait for it.
start_wine() {
    export WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
    mkdir -p "$WINEPREFIX"
    setsid wineserver -p </dev/null >/dev/null 2>&1
    trap 'wineserver -k' EXIT
    wine wineboot </dev/null >/dev/null 2>&1
}
