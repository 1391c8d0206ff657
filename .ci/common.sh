# shellcheck shell=bash
# What the stages of .ci/run and .ci/weekly share. To be sourced.
# shellcheck source=scripts/common.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/common.sh"

# stage WHAT COMMAND...: with a heading, and the time it took.
stage() {
    local what=$1 began=$SECONDS
    shift
    heading "$what"
    "$@"
    printf -- '-- %s: %d s\n' "$what" $((SECONDS - began))
}

# fuzz SECONDS: each fuzzer of the asan build for so long.
fuzz() {
    local fuzzer name options
    for fuzzer in build/asan/tests/fuzz/*-fuzzer; do
        name=$(basename "$fuzzer" -fuzzer)
        options=(-max_total_time="$1" -verbosity=0 -print_final_stats=1
            -artifact_prefix="$fuzzer-")
        [[ -f tests/fuzz/$name.dict ]] && options+=(-dict="tests/fuzz/$name.dict")
        heading "$name, for $1 s"
        # What is found goes into the first folder; the seeds stay as they are.
        "$fuzzer" "${options[@]}" "$(mktemp -d)" "tests/fuzz/seeds/$name"
    done
}
