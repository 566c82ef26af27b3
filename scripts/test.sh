#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite.
#   scripts/test.sh            normal build in build/
#   scripts/test.sh --sanitize the same suite with the sanitizers, in build-sanitize/
#   scripts/test.sh --thread   the threads test alone under the thread sanitizer,
#                              in build-tsan/
# VEL_WERROR=ON makes warnings errors (CI sets it).
# The set-up and build output goes to BUILD/test-build.log and is shown only
# when something fails; what remains is the test summary.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build
flags=(-DVEL_WERROR="${VEL_WERROR:-OFF}")
case "${1:-}" in
  --sanitize) build=build-sanitize; flags+=(-DVEL_SANITIZE=ON) ;;
  --thread) build=build-tsan; flags+=(-DVEL_TSAN=ON) ;;
esac

mkdir -p "$build"
log="$build/test-build.log"
if ! { bash scripts/setup.sh &&
       cmake -S . -B "$build" "${flags[@]}" &&
       cmake --build "$build" -j"$(nproc)"; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "test: setting up or building failed; the output above is also in $log" >&2
  exit 1
fi
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
