#!/usr/bin/env bash
# Builds torvanex and runs the demo job: the embedded turret-punch installation is unpacked into
# ./torvanex-demo (or the folder given), its job is run there, and the program is shown.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target torvanex
build/torvanex demo "$@"
