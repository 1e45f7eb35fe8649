#!/usr/bin/env bash
# Installs the HTML-to-PDF engines that bench_pdf compares Corvanta's PDF output with
# (WeasyPrint and wkhtmltopdf). They are for the benchmark only, so they are not among the
# project's packages in scripts/packages.txt. Uses sudo when not run as root.
set -euo pipefail

engines=(weasyprint wkhtmltopdf)
missing=()
for pkg in "${engines[@]}"; do
    status="$(dpkg-query -W -f='${db:Status-Status}' "$pkg" 2>/dev/null || true)"
    [ "$status" = "installed" ] || missing+=("$pkg")
done
if [ "${#missing[@]}" -eq 0 ]; then
    echo "pdf_engines: ${engines[*]} already installed"
    exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
    sudo=()
elif command -v sudo >/dev/null 2>&1; then
    sudo=(sudo)
else
    echo "pdf_engines: ${missing[*]} missing and neither root nor sudo is available" >&2
    exit 1
fi

echo "pdf_engines: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
