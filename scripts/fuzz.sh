#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each one for the given number of seconds
# (default 10) over its seed corpus, from a fixed random seed (TORVANEX_FUZZ_SEED, default 1) so
# that a run is repeatable. Any crash or sanitizer report fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-10}
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++-14 -DTORVANEX_FUZZ=ON >/dev/null
cmake --build build-fuzz -j "$(nproc)"
for target in build-fuzz/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  corpus=build-fuzz/corpus/$name
  mkdir -p "$corpus"
  seeds=fuzz/seeds/${name#fuzz_}
  echo "fuzz: $name for ${seconds}s"
  if [ -d "$seeds" ]; then
    "$target" -seed="${TORVANEX_FUZZ_SEED:-1}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 "$corpus" "$seeds" >"$corpus.log" 2>&1 \
      || { tail -40 "$corpus.log"; exit 1; }
  else
    "$target" -seed="${TORVANEX_FUZZ_SEED:-1}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 "$corpus" >"$corpus.log" 2>&1 \
      || { tail -40 "$corpus.log"; exit 1; }
  fi
done
echo "fuzz: all targets clean"
