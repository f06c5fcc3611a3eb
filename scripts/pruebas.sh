#!/usr/bin/env bash
# Installs what is missing, builds and runs every test (SQLite and MariaDB).
# Extra arguments go to ctest (for example -R tst_lineacomandos).
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
bash "$raiz/scripts/instala-dependencias.sh"
bash "$raiz/scripts/compila.sh"
build=${ZUVI_BUILD_DIR:-$raiz/build}
cd "$build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" "$@"
