#!/usr/bin/env bash
# Configures and builds into build/ (or $ZUVI_BUILD_DIR). Safe to run again.
# Extra arguments go to CMake's configure step (for example -DZUVI_SANITIZADORES=ON).
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
build=${ZUVI_BUILD_DIR:-$raiz/build}
cmake -S "$raiz" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build" -j"$(nproc)"
