#!/usr/bin/env bash
# Sets up what is missing, builds, and starts Corvanta.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="$root/build"
"$root/scripts/setup.sh"
if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCORVANTA_BUILD_TESTS=OFF -DCORVANTA_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$build" --target corvanta-cli >/dev/null
# Without a display there is no window to show: the command-line front end makes a demo company
# database instead and shows what it holds.
if [ $# -eq 0 ] && [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found (neither DISPLAY nor WAYLAND_DISPLAY is set): running the headless demo," \
        "corvanta-cli demo, instead."
    echo
    exec "$build/bin/corvanta-cli" demo
fi
exec "$build/bin/corvanta-cli" "$@"
