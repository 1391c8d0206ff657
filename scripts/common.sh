# shellcheck shell=bash
# What the scripts share. To be sourced; afterwards the current folder is the repository's root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Debian's names. The kit itself needs a compiler only; libsystemd is for the BlueZ radio, and CLI11
# and terminfo, of ncurses, for the command-line host.
build_packages=(cmake g++ libcli11-dev libncurses-dev libsystemd-dev ninja-build pkgconf)
test_packages=(dbus libgtest-dev nlohmann-json3-dev python3 python3-tinycss2)
page_packages=(cmake emscripten ninja-build nodejs)
emscripten_toolchain=/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake
export build_packages test_packages page_packages emscripten_toolchain

heading() { printf '\n== %s\n' "$*"; }

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Installs those of the packages that are missing; where none is, it is one look at the list.
require_packages() {
    if ! command -v dpkg-query >/dev/null; then
        echo "Not a Debian system. These packages, or what they are called here, are needed: $*"
        return
    fi
    local missing=() package
    for package; do
        [[ $(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null) == 'ii ' ]] ||
            missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    heading "Installing ${missing[*]}"
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "please install, as root: ${missing[*]}"
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get -o DPkg::Lock::Timeout=300 -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 \
        -q install --yes --no-install-recommends "${missing[@]}" | sed -n '/^Need to get/p'
}

# Passes on what a build prints, but of its steps only a line for each tenth of them.
show_tenths() {
    local line percent shown=0
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\  ]]; then
            percent=$((100 * BASH_REMATCH[1] / BASH_REMATCH[2]))
            ((percent < shown + 10)) && continue
            shown=$((percent - percent % 10))
            line=$(printf '%3d %% of %d steps' "$shown" "${BASH_REMATCH[2]}")
        fi
        printf '%s\n' "$line"
    done
}

# build PRESET [TARGET...]: configures and builds in build/PRESET. On a terminal the steps take turns
# on one line.
build() {
    local preset=$1
    shift
    local targets=()
    (($#)) && targets=(--target "$@")
    heading "Building in build/$preset"
    cmake --preset "$preset" --log-level=NOTICE
    local command=(cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}")
    if [[ -t 1 ]]; then "${command[@]}"; else "${command[@]}" | show_tenths; fi
}

# build_page TARGET...: the kit as WebAssembly, as small as it gets, in build/page.
page_package=build/page/bindings/web/package
export page_package
build_page() {
    heading "Building in build/page"
    cmake -S . -B build/page -G Ninja --log-level=NOTICE \
        "-DCMAKE_TOOLCHAIN_FILE=$emscripten_toolchain" \
        -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS_RELEASE=-Oz -DNDEBUG -fwasm-exceptions" \
        -DINKORA_TESTS=OFF -DINKORA_TOOLS=OFF -DINKORA_PYTHON=OFF -DINKORA_EXAMPLES=OFF
    # Emscripten's own scripts want Debian's modules, whichever node runs them.
    NODE_PATH=/usr/share/nodejs cmake --build build/page --parallel "$(nproc)" --target "$@" | show_tenths
}

# The package for pages, packed of what build_page has made of InkoraPage: the tarball's path.
packed_page() { echo "build/page/$(npm pack --silent --pack-destination build/page "./$page_package")"; }
