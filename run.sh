#!/usr/bin/env bash
# Sets up what is missing, builds, and starts Corvanta.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
exec "$root/build/bin/corvanta-cli" "$@"
