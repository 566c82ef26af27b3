#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite.
#   scripts/test.sh            normal build in build/
#   scripts/test.sh --sanitize the same suite with the sanitizers, in build-sanitize/
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

build=build
flags=()
if [ "${1:-}" = "--sanitize" ]; then
  build=build-sanitize
  flags=(-DVEL_SANITIZE=ON -DVEL_BUILD_BENCH=OFF)
fi

cmake -S . -B "$build" "${flags[@]}" >/dev/null
cmake --build "$build" -j"$(nproc)"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
