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

# check_with_clang_tidy FOLDERS [OPTION...]: as the asan preset compiles, with clang and no precompiled
# headers, which would hide that a source lacks an #include. What is compiled as C++23 is checked as
# C++20: this version crashes on the library's `if consteval`.
check_with_clang_tidy() {
    local folders=$1
    shift
    cmake --preset asan --log-level=NOTICE
    run-clang-tidy -quiet -p build/asan -j "$(nproc)" -extra-arg=-std=gnu++20 "$@" "^$PWD/$folders/.*cpp"
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
