#!/usr/bin/env bash
# Checks that every C++ file in git is as clang-format leaves it (exit 1 and
# the list of files otherwise). With --aplica, formats them in place.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t archivos < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = "--aplica" ]; then
    clang-format -i "${archivos[@]}"
    exit 0
fi
malos=()
for a in "${archivos[@]}"; do
    if ! clang-format --dry-run --Werror "$a" >/dev/null 2>&1; then
        malos+=("$a")
    fi
done
if [ ${#malos[@]} -gt 0 ]; then
    echo "clang-format cambiaría estos archivos (bash scripts/formato.sh --aplica los formatea):" >&2
    printf '  %s\n' "${malos[@]}" >&2
    exit 1
fi
echo "Formato: ${#archivos[@]} archivos sin cambios."
