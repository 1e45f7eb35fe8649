#!/usr/bin/env bash
# Installs every Debian package listed in scripts/packages.txt (or the packages named as
# arguments) that is not installed yet. Quiet and quick when everything is there; uses sudo when
# not run as root.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
if [ "$#" -gt 0 ]; then
    wanted=("$@")
else
    mapfile -t wanted < <(grep -v '^\s*#' "$here/packages.txt" | sed '/^\s*$/d')
fi

missing=()
for pkg in "${wanted[@]}"; do
    status="$(dpkg-query -W -f='${db:Status-Status}' "$pkg" 2>/dev/null || true)"
    [ "$status" = "installed" ] || missing+=("$pkg")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    sudo=()
elif command -v sudo >/dev/null 2>&1; then
    sudo=(sudo)
else
    echo "setup: these packages are missing and neither root nor sudo is available: ${missing[*]}" >&2
    exit 1
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
