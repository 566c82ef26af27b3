#!/usr/bin/env bash
# The benchmark suite in one command: installs what is missing, builds the
# program and the bare loops, checks and times every model (bench/suite.py).
#   bash bench/run.sh [--runs N] [--model NAME]... [--markdown]
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
exec /usr/bin/python3 bench/suite.py "$@"
