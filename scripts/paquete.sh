#!/usr/bin/env bash
# Builds the Debian package in build/ (or $1), checks it with lintian,
# desktop-file-validate and appstreamcli, unpacks it into a temporary root and
# runs the installed program there, from another folder and with a registry
# and a home of its own, so that nothing of the build tree is used.
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$raiz/build}" && pwd)

cmake --build "$build" --target package >/dev/null
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
deb=$build/zuvi-produccion_${version}_amd64.deb
[ -f "$deb" ] || { echo "No se generó $deb" >&2; exit 1; }

# Errors fail the step; warnings are shown.
lintian --fail-on error "$deb" 2> >(grep -v "root privileges" >&2)

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
dpkg -x "$deb" "$tmp/raiz"
desktop-file-validate "$tmp"/raiz/usr/share/applications/*.desktop
appstreamcli validate --no-net --pedantic "$tmp"/raiz/usr/share/metainfo/*.metainfo.xml >/dev/null

programa=$tmp/raiz/usr/bin/zuvi-produccion
mkdir -p "$tmp/casa" "$tmp/otra"
cd "$tmp/otra"
export HOME=$tmp/casa ZUVI_REGISTRO=$tmp/casa/componentes.ini QT_QPA_PLATFORM=offscreen
unset LD_LIBRARY_PATH QT_PLUGIN_PATH

# Every library of ours resolves inside the unpacked tree.
if ldd "$programa" | grep -E "libzuvi_|not found" | grep -v "$tmp/raiz"; then
    echo "El programa instalado usa bibliotecas fuera de su árbol." >&2
    exit 1
fi
[ "$("$programa" --version)" = "zuvi-produccion $version" ]
"$programa" crea-base --demo --base "$tmp/prueba.db"
"$programa" entrega 1 --base "$tmp/prueba.db" --si
# The component was registered from the installed plugin, not the build's.
grep -qF "$tmp/raiz/usr/" "$ZUVI_REGISTRO" || {
    echo "El registro no nombra el componente instalado:" >&2
    cat "$ZUVI_REGISTRO" >&2
    exit 1
}
echo "$(basename "$deb"): lintian, desktop-file-validate y appstreamcli sin errores; el programa instalado funciona."
