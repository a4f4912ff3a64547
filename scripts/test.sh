#!/usr/bin/env bash
# Runs every test: the plain build, the sanitized build, and a short run of each fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
jobs=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTORVANEX_TESTS=ON >/dev/null
cmake --build build -j "$jobs"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
ctest --test-dir build -j "$jobs" --output-on-failure | tee "$log"
plain=$(sed -n 's/.*tests passed, 0 tests failed out of \([0-9]*\).*/\1/p' "$log")

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTORVANEX_SANITIZE=ON >/dev/null
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan -j "$jobs" --output-on-failure | tee "$log"
sanitized=$(sed -n 's/.*tests passed, 0 tests failed out of \([0-9]*\).*/\1/p' "$log")

if [ "${TORVANEX_SKIP_FUZZ:-0}" != 1 ]; then
  scripts/fuzz.sh "${TORVANEX_FUZZ_SECONDS:-10}"
fi

echo "plain build: ${plain:-0} tests passed; sanitized build: ${sanitized:-0} tests passed"
echo "all: $(( ${plain:-0} + ${sanitized:-0} )) passed, 0 failed"
