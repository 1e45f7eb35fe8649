#!/usr/bin/env bash
# Configures and builds one build tree. Usage: scripts/build.sh BUILD_DIR [extra cmake arguments...]
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$1"
shift
if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja "$@" >/dev/null
else
    cmake -S "$root" -B "$build" "$@" >/dev/null
fi
cmake --build "$build" -j "$(nproc)"
