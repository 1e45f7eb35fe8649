#!/usr/bin/env bash
# Sets up what is missing, builds with warnings as errors, and runs every test twice:
# once in the normal build and once under AddressSanitizer + UndefinedBehaviorSanitizer.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
"$root/scripts/setup.sh"

# The normal build (2.5 GiB), the sanitizer build (7.6 GiB) and the fuzzing build, with room for
# the compiler's temporary files; a full disk shows up only as a compiler failing to write one,
# so say it first.
free_kib="$(df -Pk "$root" | awk 'NR == 2 { print $4 }')"
if [ "$free_kib" -lt $((12 * 1024 * 1024)) ]; then
    echo "warning: only $((free_kib / 1024 / 1024)) GiB free beside $root; the builds need about 12 GiB" >&2
fi

export QT_QPA_PLATFORM=offscreen
export QTWEBENGINE_DISABLE_SANDBOX=1

echo "== build (warnings as errors)"
"$root/scripts/build.sh" "$root/build-test" -DCMAKE_BUILD_TYPE=Debug -DCORVANTA_WERROR=ON
echo "== tests"
ctest --test-dir "$root/build-test" --output-on-failure -j "$(nproc)"
echo "== crash soak"
soak_dir="$(mktemp -d)"
"$root/build-test/bin/crash_soak" --cli "$root/build-test/bin/corvanta-cli" --seconds 30 --workdir "$soak_dir"
rm -rf "$soak_dir"

echo "== build (address + undefined sanitizers)"
"$root/scripts/build.sh" "$root/build-asan" -DCMAKE_BUILD_TYPE=Debug -DCORVANTA_WERROR=ON -DCORVANTA_SANITIZE=ON
echo "== tests under sanitizers"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir "$root/build-asan" --output-on-failure -j "$(nproc)"

echo "== fuzzing"
"$root/scripts/fuzz.sh" 20
