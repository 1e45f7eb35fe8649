#!/usr/bin/env bash
# Builds the libFuzzer harnesses of tests/fuzz (clang, address + undefined sanitizers) in
# build-fuzz and runs each for SECONDS (default 20) on a scratch copy of its seed corpus.
# Prints one line per harness; crash artifacts are kept in build-fuzz/artifacts/ and the logs in
# build-fuzz/logs/. Exits non-zero when any harness found a crash.
# Usage: scripts/fuzz.sh [SECONDS] [HARNESS...]
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
seconds="${1:-20}"
shift || true
build="$root/build-fuzz"

CC=clang CXX=clang++ "$root/scripts/build.sh" "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCORVANTA_FUZZ=ON

if [ "$#" -gt 0 ]; then
    harnesses=("$@")
else
    harnesses=()
    for source in "$root"/tests/fuzz/fuzz_*.cpp; do
        harnesses+=("$(basename "$source" .cpp)")
    done
fi

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$build/artifacts" "$build/logs"
export ASAN_OPTIONS="${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
# Leaks inside outside libraries that no caller can free (listed there, each with its reason).
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$root/tests/fuzz/lsan.supp:print_suppressions=0}"

# The value of one "stat::NAME: VALUE" line of libFuzzer's final statistics.
stat() {
    sed -n "s/^stat::$1:[[:space:]]*//p" "$2" | tail -n 1
}

failed=0
printf '%-20s %12s %8s\n' harness executions crashes
for name in "${harnesses[@]}"; do
    corpus="$scratch/$name"
    mkdir -p "$corpus"
    cp "$root/tests/fuzz/corpus/$name/"* "$corpus/"
    log="$build/logs/$name.log"
    before="$(find "$build/artifacts" -name "$name-*" | wc -l)"
    options=(-max_total_time="$seconds" -print_final_stats=1 -timeout=10 -rss_limit_mb=2048
             -artifact_prefix="$build/artifacts/$name-")
    dictionary="$root/tests/fuzz/$name.dict"
    [ -f "$dictionary" ] && options+=(-dict="$dictionary")
    # The vCard reader's allocations go through glib, whose frames the fast unwinder cannot walk:
    # full stacks let a leak inside libebook-contacts be known as the library's.
    sanitizer="$ASAN_OPTIONS"
    [ "$name" = fuzz_vcard ] && sanitizer="$ASAN_OPTIONS:fast_unwind_on_malloc=0"
    status=0
    ASAN_OPTIONS="$sanitizer" "$build/bin/$name" "$corpus" "${options[@]}" >"$log" 2>&1 || status=$?
    after="$(find "$build/artifacts" -name "$name-*" | wc -l)"
    crashes=$((after - before))
    # A harness that stopped with an error but left no artifact failed all the same.
    if [ "$status" -ne 0 ] && [ "$crashes" -eq 0 ]; then
        crashes=1
    fi
    printf '%-20s %12s %8s\n' "$name" "$(stat number_of_executed_units "$log")" "$crashes"
    if [ "$crashes" -ne 0 ]; then
        failed=1
        grep -E '^(==[0-9]+==ERROR|SUMMARY|artifact_prefix|Test unit written)|runtime error' "$log" | head -n 5 |
            sed 's/^/    /'
        echo "    (full log: $log)"
    fi
done
exit "$failed"
