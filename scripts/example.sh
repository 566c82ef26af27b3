#!/usr/bin/env bash
# Sets up, builds the program and generates the tables of a bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake -S . -B build >/dev/null
cmake --build build -j"$(nproc)" --target vel_program
./build/bin/vel generate examples/${1:-lead_time.yaml}
