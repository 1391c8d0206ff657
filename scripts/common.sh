# shellcheck shell=bash
# What the scripts share. To be sourced; afterwards the current folder is the repository's root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Debian's names. The kit itself needs a compiler only; libsystemd is for the BlueZ radio, and CLI11
# and terminfo, of ncurses, for the command-line host.
build_packages=(cmake g++ libcli11-dev libncurses-dev libsystemd-dev ninja-build pkgconf)
test_packages=(dbus libgtest-dev nlohmann-json3-dev python3 python3-tinycss2)
export build_packages test_packages

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
        -qq install --yes --no-install-recommends "${missing[@]}" >/dev/null
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

# find_lab: sets $lab to the virtual hardware lab's folder: $INKORA_LAB, else ../shared/lab beside the
# checkout. Where there is none there is nothing to be done, and the script ends.
lab=
find_lab() {
    lab=${INKORA_LAB:-$PWD/../shared/lab}
    if [[ ! -x $lab/lab ]]; then
        [[ -z ${INKORA_LAB:-} ]] || fail "there is no lab in INKORA_LAB=$INKORA_LAB"
        echo "Skipped: there is no hardware lab in ../shared/lab, and INKORA_LAB is not set."
        exit 0
    fi
    [[ -x $lab/air ]] && return
    # The lab's `air` is a link to its `pen`. Where copying has made a plain file of it no guest
    # comes up, and a copy with the link is used.
    local copy
    copy=$(mktemp -d)
    # shellcheck disable=SC2064 # the folder's name as it is now
    trap "rm -rf '$copy'" EXIT
    cp -a "$lab/." "$copy"
    chmod -R u+w "$copy"
    ln -sf pen "$copy/air"
    lab=$copy
}
