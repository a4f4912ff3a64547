#!/usr/bin/env bash
# Runs every test: the plain build, the sanitized build, and a short run of each fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
jobs=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVANEX_TESTS=ON >/dev/null
cmake --build build -j "$jobs"
ctest --test-dir build -j "$jobs" --output-on-failure

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTORVANEX_SANITIZE=ON >/dev/null
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan -j "$jobs" --output-on-failure

if [ "${TORVANEX_SKIP_FUZZ:-0}" != 1 ]; then
  scripts/fuzz.sh "${TORVANEX_FUZZ_SECONDS:-10}"
fi
