# shellcheck shell=bash
# Stages of ./test and .ci/run, sourced by them: each runs even if an earlier one failed, and the last
# lines report all of them.

results="$PWD/build/results" # what ctest writes of its tests, a file a stage
mkdir -p "$results"
failed_stages=()
trap 'echo "stopped in: $current_stage" >&2; exit 130' INT TERM
current_stage=""

# stage NAME COMMAND...
stage() {
    current_stage=$1
    printf '\n== %s (%ss)\n' "$1" "$SECONDS"
    "${@:2}" || failed_stages+=("$1")
}

# run_ctest PRESET NAME ARGUMENT...: the tests of a preset, their results in NAME.xml.
run_ctest() {
    ctest --preset "$1" -j"$(nproc)" "${@:3}" --test-output-size-passed 1000000 \
        --test-output-size-failed 10000000 --output-junit "$results/$2.xml"
}

# finish NAME...: reports the results of these names and exits.
finish() {
    printf '\n== results (%ss)\n' "$SECONDS"
    local name code=0
    for name in "$@"; do
        tools/test-summary "$name" "$results/$name.xml" || code=1
    done
    if [ ${#failed_stages[@]} -gt 0 ]; then
        printf 'failed stage: %s\n' "${failed_stages[@]}"
        code=1
    fi
    [ "$code" -eq 0 ] && echo "everything passed" || echo "something failed"
    exit "$code"
}
