#!/usr/bin/env bash
# Records the golden outputs of the program under tests/golden/expected/, the
# regression record that tests/cli/golden_test.cpp compares byte for byte.
#
#   scripts/record_goldens.sh              every model under tests/golden/models/
#   scripts/record_goldens.sh NAME...      only these models (file names without .yaml)
#   VEL=path/to/vel scripts/record_goldens.sh   another build of the program
#
# For each model NAME.yaml it writes
#   NAME.json         stdout of `vel generate MODEL --format json --log LOGFILE`
#   NAME.log          that LOGFILE, complete
#   NAME.nolog.json   stdout of `vel generate MODEL --format json --no-log`
#   NAME.status       the exit status of both runs
#
# The goldens record what the program produces; they are not reference
# values.  Rule: an output change on purpose re-records only the goldens it
# affects, in one commit that lists them with the reason.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
vel="${VEL:-$root/build/bin/vel}"
models="$root/tests/golden/models"
expected="$root/tests/golden/expected"

if [ ! -x "$vel" ]; then
  echo "record_goldens: no program at $vel; build it first (cmake --build build --target vel_program)" >&2
  exit 2
fi
mkdir -p "$expected"

if [ $# -gt 0 ]; then
  names=("$@")
else
  names=()
  for model in "$models"/*.yaml; do names+=("$(basename "$model" .yaml)"); done
fi

for name in "${names[@]}"; do
  model="$models/$name.yaml"
  if [ ! -f "$model" ]; then
    echo "record_goldens: no model $model" >&2
    exit 2
  fi
  # Absolute model paths, as the test passes them; no golden model may fail
  # to load, so the path never reaches the output.
  set +e
  "$vel" generate "$model" --format json --log "$expected/$name.log" >"$expected/$name.json" 2>/dev/null
  with_log=$?
  "$vel" generate "$model" --format json --no-log >"$expected/$name.nolog.json" 2>/dev/null
  without_log=$?
  set -e
  if [ "$with_log" -eq 2 ] || [ "$without_log" -eq 2 ]; then
    echo "record_goldens: $name does not load or is refused (exit 2)" >&2
    exit 2
  fi
  printf 'log: %d\nno-log: %d\n' "$with_log" "$without_log" >"$expected/$name.status"
  echo "recorded $name (exit $with_log)"
done
