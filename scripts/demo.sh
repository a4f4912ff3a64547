#!/usr/bin/env bash
# Builds torvanex and runs the demo job on the embedded demo installation.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVANEX_TESTS=OFF >/dev/null
cmake --build build -j "$(nproc)" --target torvanex
build/torvanex demo "$@"
