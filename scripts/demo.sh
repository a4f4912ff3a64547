#!/usr/bin/env bash
# Builds torvanex and shows it at work on the shipped sample drawing: the drawing is built
# from its readable JSON form, dumped back, and the two forms are compared.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target torvanex
out=build/demo
mkdir -p "$out"
build/torvanex drawing build examples/drawings/sample-punch.json -o "$out/sample-punch.drw"
build/torvanex drawing dump "$out/sample-punch.drw" > "$out/sample-punch.json"
build/torvanex drawing build "$out/sample-punch.json" -o "$out/sample-punch-again.drw"
cmp "$out/sample-punch.drw" "$out/sample-punch-again.drw"
echo "Built $out/sample-punch.drw ($(stat -c %s "$out/sample-punch.drw") bytes); its dump builds back byte for byte."
echo "First lines of the dump:"
head -n 40 "$out/sample-punch.json"
