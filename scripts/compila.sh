#!/usr/bin/env bash
# Configures and builds into build/ (or $ZUVI_BUILD_DIR). Safe to run again.
# Extra arguments go to CMake's configure step (for example -DZUVI_SANITIZADORES=ON).
set -euo pipefail
raiz=$(cd "$(dirname "$0")/.." && pwd)
build=${ZUVI_BUILD_DIR:-$raiz/build}
# With ccache on the machine, a second checkout (another folder, a CI clone)
# reuses what the first compiled: paths below the checkout are hashed relative.
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$raiz}
cmake -S "$raiz" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$build" -j"$(nproc)"
