#!/usr/bin/env bash
# Several stations delivering at once on one MariaDB server, against one
# station doing the same deliveries one after another. Each station is its
# own zuvi-produccion process delivering its own order of kits; the server
# is a private one on loopback (scripts/mariadb-pruebas.sh). Prints the kit
# lines delivered per second each way and, last, "ratio: R" (several
# stations over one). Not part of the test run.
#
# Usage: bench/estaciones.sh [stations=8] [lines per order=200] [zuvi-produccion]
set -euo pipefail
n=${1:-8}
lineas=${2:-200}
raiz=$(cd "$(dirname "$0")/.." && pwd)
programa=${3:-$raiz/build/bin/zuvi-produccion}
dir=$(mktemp -d)
trap 'bash "$raiz/scripts/mariadb-pruebas.sh" stop "$dir/servidor" >/dev/null 2>&1 || true; rm -rf "$dir"' EXIT
bash "$raiz/scripts/mariadb-pruebas.sh" start "$dir/servidor" >/dev/null
url=$(cat "$dir/servidor/url")
puerto=$(cat "$dir/servidor/puerto")
export ZUVI_REGISTRO=$dir/componentes.ini QT_QPA_PLATFORM=offscreen
"$programa" registra >/dev/null

sql() {
    mariadb --no-defaults -h 127.0.0.1 -P "$puerto" -u root "$1"
}

# One order of SOPORTE kits per station, orders 101 onward, stock allowed below zero.
prepara() {
    local base=$1 k p
    "$programa" crea-base --demo --base "$url$base" >/dev/null
    {
        echo "UPDATE estaciones SET existencianegativa = 1;"
        for k in $(seq 1 "$n"); do
            echo "INSERT INTO op (op, estado, almacen) VALUES ($((100 + k)), 'PE', 3);"
            echo -n "INSERT INTO oppart (id_entrada, op, articulo, cantidad, partida) VALUES "
            for p in $(seq 1 "$lineas"); do
                [ "$p" -gt 1 ] && echo -n ","
                echo -n "($((k * 100000 + p)), $((100 + k)), 'SOPORTE', 1, $p)"
            done
            echo ";"
        done
    } | sql "$base"
}

entrega() {
    "$programa" --base "$url$1" --estacion "$2" entrega "$((100 + $2))" >/dev/null 2>>"$dir/errores.log"
}

comprueba() {
    local hay
    hay=$(echo "SELECT COUNT(*) FROM movimientos WHERE tipo = 'E' AND concepto = 'OP'" |
        sql "$1" | tail -n 1)
    if [ "$hay" != $((n * lineas)) ]; then
        echo "$1: $hay entradas de kit en lugar de $((n * lineas))" >&2
        tail -n 20 "$dir/errores.log" >&2
        exit 1
    fi
}

prepara una
prepara varias
inicio=$(date +%s.%N)
for k in $(seq 1 "$n"); do entrega una "$k"; done
una=$(echo "$(date +%s.%N) - $inicio" | bc)
inicio=$(date +%s.%N)
for k in $(seq 1 "$n"); do entrega varias "$k" & done
wait
varias=$(echo "$(date +%s.%N) - $inicio" | bc)
comprueba una
comprueba varias
awk -v n="$n" -v l="$lineas" -v a="$una" -v b="$varias" 'BEGIN {
    printf "1 estación, %d órdenes de %d líneas seguidas: %.2f s, %.1f líneas/s\n", n, l, a, n * l / a
    printf "%d estaciones a la vez: %.2f s, %.1f líneas/s\n", n, b, n * l / b
    printf "ratio: %.2f\n", a / b
}'
