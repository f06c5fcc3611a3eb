#!/usr/bin/env bash
# Installs what is missing, then: checks the format, builds with warnings as
# errors and runs every test (SQLite and MariaDB), then builds again with
# AddressSanitizer and UndefinedBehaviorSanitizer in build-san/ and runs the
# whole suite once more there. Extra arguments go to both ctest runs (for
# example -R tst_lineacomandos). Each step prints its time.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
build=${ZUVI_BUILD_DIR:-$raiz/build}
build_san=${ZUVI_BUILD_SAN_DIR:-$raiz/build-san}

paso() {
    local nombre=$1
    shift
    local inicio=$SECONDS
    echo "== $nombre"
    "$@"
    echo "== $nombre: $((SECONDS - inicio)) s"
}

pruebas() {
    (cd "$1" && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j"$(nproc)" "${@:2}")
}

paso "instalación" bash "$raiz/scripts/instala-dependencias.sh"
paso "formato" bash "$raiz/scripts/formato.sh"
paso "compilación (advertencias como errores)" \
    env ZUVI_BUILD_DIR="$build" bash "$raiz/scripts/compila.sh" -DZUVI_WERROR=ON
paso "pruebas" pruebas "$build" "$@"
paso "compilación con sanitizadores" \
    env ZUVI_BUILD_DIR="$build_san" bash "$raiz/scripts/compila.sh" -DZUVI_WERROR=ON \
    -DZUVI_SANITIZADORES=ON -DZUVI_BENCH=OFF -DCMAKE_BUILD_TYPE=None "-DCMAKE_CXX_FLAGS=-O1 -g1"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export LSAN_OPTIONS=suppressions=$raiz/scripts/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
paso "pruebas con sanitizadores" pruebas "$build_san" "$@"
