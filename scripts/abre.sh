#!/usr/bin/env bash
# Installs what is missing, builds, registers the component and opens the
# back-office shell on the embedded SQLite database (created with demo data on
# first use). Extra arguments go to the program.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
bash "$raiz/scripts/instala-dependencias.sh"
bash "$raiz/scripts/compila.sh"
build=${ZUVI_BUILD_DIR:-$raiz/build}
"$build/bin/zuvi-produccion" registra >/dev/null
exec "$build/bin/zuvi-produccion" "$@"
