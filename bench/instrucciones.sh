#!/usr/bin/env bash
# Instructions per movement of each side of bench_entrega, counted by
# callgrind (they do not depend on the machine's load): one run of an order
# of N lines (100 by default), each side collected on its own.
#
# Usage: bench/instrucciones.sh [lines=100] [bench_entrega binary]
set -euo pipefail
lineas=${1:-100}
bench=${2:-$(dirname "$0")/../build/bin/bench_entrega}
movimientos=$((lineas * 6)) # five components and the kit per line
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
for lado in componente bare; do
    case $lado in
    componente) funcion='*entregaConComponente*' ;;
    bare) funcion='*Bare::entrega*' ;;
    esac
    valgrind --tool=callgrind --callgrind-out-file="$tmp/$lado.out" \
        --toggle-collect="$funcion" "$bench" 1 --lineas "$lineas" >/dev/null 2>"$tmp/$lado.err"
    total=$(sed -n 's/.*Collected : \([0-9]*\).*/\1/p' "$tmp/$lado.err")
    printf '%s: %s instructions, %s per movement\n' "$lado" "$total" $((total / movimientos))
    eval "ir_$lado=$total"
done
awk -v c="$ir_componente" -v b="$ir_bare" 'BEGIN { printf "instruction ratio: %.2f\n", c / b }'
