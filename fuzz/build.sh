#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer, ASan and UBSan in
# build-fuzz/ (build-fuzz/fuzz/fuzz_TARGET).  The output goes to
# build-fuzz/build.log and is shown only when something fails.
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build-fuzz
log=build-fuzz/build.log
if ! { bash scripts/setup.sh &&
       cmake -S . -B build-fuzz -DVEL_FUZZ=ON -DVEL_BUILD_TESTS=OFF -DCMAKE_CXX_COMPILER=clang++ \
             -DVEL_WERROR="${VEL_WERROR:-OFF}" &&
       nice -n 10 cmake --build build-fuzz -j"$(nproc)"; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "fuzz: setting up or building failed; the output above is also in $log" >&2
  exit 1
fi
