#!/usr/bin/env bash
# Sets up what is missing, builds, and starts Corvanta: the desktop program when a display is
# there, else the headless demo of the command-line front end. Arguments are always a command of
# the command-line front end (the desktop program takes none).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="$root/build"
"$root/scripts/setup.sh"
if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCORVANTA_BUILD_TESTS=OFF -DCORVANTA_BUILD_BENCH=OFF >/dev/null
fi
if [ $# -gt 0 ]; then
    cmake --build "$build" --target corvanta-cli >/dev/null
    exec "$build/bin/corvanta-cli" "$@"
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    cmake --build "$build" --target corvanta-cli >/dev/null
    # Without a display there is no window to show: the command-line front end makes a demo
    # company database instead and shows what it holds.
    echo "No display found (neither DISPLAY nor WAYLAND_DISPLAY is set): running the headless demo," \
        "corvanta-cli demo, instead."
    echo
    exec "$build/bin/corvanta-cli" demo
fi
cmake --build "$build" --target corvanta >/dev/null
echo "Starting Corvanta on the company database selected in ~/.local/share/corvanta."
# The web view's sandbox cannot run as root; an ordinary user keeps it.
if [ "$(id -u)" -eq 0 ]; then
    export QTWEBENGINE_DISABLE_SANDBOX=1
fi
exec "$build/bin/corvanta"
