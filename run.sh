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
exec "$build/bin/corvanta-cli" "$@"
