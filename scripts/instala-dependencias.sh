#!/usr/bin/env bash
# Installs the Debian packages the project builds, runs and tests with.
# Idempotent: installs only what is missing. Works as root or through sudo.
set -euo pipefail

PAQUETES=(
    build-essential cmake ninja-build pkg-config clang-format
    qt6-base-dev qt6-base-dev-tools libgl-dev
    libqt6sql6-sqlite libqt6sql6-mysql
    mariadb-server mariadb-client
    libsqlite3-dev libbenchmark-dev
    libzint-dev
    libcsv-dev
    clang libfuzzer-14-dev
    # Qt's own Spanish, and lrelease for the few texts it lacks.
    qt6-translations-l10n qt6-l10n-tools
    # The Debian package: dependencies from the linked libraries (dpkg-dev,
    # file) and its checks.
    dpkg-dev file lintian desktop-file-utils appstream
)

faltan=()
for p in "${PAQUETES[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        faltan+=("$p")
    fi
done
[ ${#faltan[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    como=()
elif command -v sudo >/dev/null 2>&1; then
    como=(sudo)
else
    echo "Faltan paquetes (${faltan[*]}) y no hay permisos para instalarlos: ejecute como root o instale sudo." >&2
    exit 1
fi

echo "Instalando: ${faltan[*]}" >&2
export DEBIAN_FRONTEND=noninteractive

# The server package must not start a system-wide service: the tests start
# their own private server on loopback. A policy file refuses service starts
# for the length of the installation, unless the machine already has one.
politica=/usr/sbin/policy-rc.d
puesta=0
if [ ! -e "$politica" ]; then
    printf '#!/bin/sh\nexit 101\n' | "${como[@]}" tee "$politica" >/dev/null
    "${como[@]}" chmod 755 "$politica"
    puesta=1
fi
quita_politica() {
    if [ "$puesta" -eq 1 ]; then
        "${como[@]}" rm -f "$politica"
    fi
}
trap quita_politica EXIT

"${como[@]}" apt-get update -qq
"${como[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${faltan[@]}"
