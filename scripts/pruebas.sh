#!/usr/bin/env bash
# Installs what is missing, then: checks the format, builds with warnings as
# errors and runs every test (SQLite and MariaDB), builds the Debian package
# and runs the program installed from it (scripts/paquete.sh), then builds again with
# AddressSanitizer and UndefinedBehaviorSanitizer in build-san/ and runs the
# whole suite once more there. When clang is installed, the fuzz targets are
# built in build-fuzz/ and each runs for 30 s from its seeds in fuzz/semillas.
# Extra arguments go to both ctest runs (for example -R tst_lineacomandos).
# Each step prints its time.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
build=${ZUVI_BUILD_DIR:-$raiz/build}
build_san=${ZUVI_BUILD_SAN_DIR:-$raiz/build-san}
build_fuzz=${ZUVI_BUILD_FUZZ_DIR:-$raiz/build-fuzz}

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

# Each target for 30 s, two at a time, from a fixed random seed so that a run
# can be repeated (ZUVI_FUZZ_SEMILLA chooses another); the corpus grows in a temporary folder
# (the seeds in the repository stay as they are) and a failing input is kept
# in build-fuzz/ as fallo-TARGET-*.
fuzz() {
    cmake -S "$raiz/fuzz" -B "$build_fuzz" -G Ninja -DCMAKE_CXX_COMPILER=clang++ >/dev/null
    cmake --build "$build_fuzz" -j"$(nproc)"
    local corpus
    corpus=$(mktemp -d)
    local objetivos=(filtros sentencias direccion recordset) fallos=0 i
    for ((i = 0; i < ${#objetivos[@]}; i += 2)); do
        local pids=()
        for o in "${objetivos[@]:i:2}"; do
            mkdir -p "$corpus/$o"
            "$build_fuzz/fuzz_$o" -max_total_time=30 -max_len=1024 -print_final_stats=1 \
                -seed="${ZUVI_FUZZ_SEMILLA:-1}" \
                -artifact_prefix="$build_fuzz/fallo-$o-" "$corpus/$o" "$raiz/fuzz/semillas/$o" \
                >"$corpus/$o.log" 2>&1 &
            pids+=($!)
        done
        for p in "${pids[@]}"; do wait "$p" || fallos=$((fallos + 1)); done
    done
    for o in "${objetivos[@]}"; do
        grep -h -E 'stat::number_of_executed_units|Falla:|ERROR:|runtime error' "$corpus/$o.log" |
            sed "s/^/fuzz_$o: /" || true
    done
    rm -rf "$corpus"
    [ "$fallos" -eq 0 ]
}

paso "instalación" bash "$raiz/scripts/instala-dependencias.sh"
paso "formato" bash "$raiz/scripts/formato.sh"
paso "compilación (advertencias como errores)" \
    env ZUVI_BUILD_DIR="$build" bash "$raiz/scripts/compila.sh" -DZUVI_WERROR=ON
paso "pruebas" pruebas "$build" "$@"
paso "paquete" bash "$raiz/scripts/paquete.sh" "$build"
if command -v clang++ >/dev/null 2>&1; then
    paso "fuzzing" fuzz
fi
paso "compilación con sanitizadores" \
    env ZUVI_BUILD_DIR="$build_san" bash "$raiz/scripts/compila.sh" -DZUVI_WERROR=ON \
    -DZUVI_SANITIZADORES=ON -DZUVI_BENCH=OFF -DCMAKE_BUILD_TYPE=None "-DCMAKE_CXX_FLAGS=-O1 -g1"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export LSAN_OPTIONS=suppressions=$raiz/scripts/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
paso "pruebas con sanitizadores" pruebas "$build_san" "$@"
