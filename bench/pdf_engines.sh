#!/usr/bin/env bash
# Installs the HTML-to-PDF engines that bench_pdf compares Corvanta's PDF output with
# (WeasyPrint and wkhtmltopdf). They are for the benchmark only, so they are not among the
# project's packages in scripts/packages.txt. Uses sudo when not run as root.
set -euo pipefail

exec "$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/scripts/setup.sh" weasyprint wkhtmltopdf
