#!/usr/bin/env bash
# Sets up, builds the program and generates the tables of a model file:
#   scripts/example.sh                     the bundled examples/lead_time.yaml
#   scripts/example.sh FILE [OPTIONS...]   any model file, with vel generate's options
# The set-up and build output goes to build/example-build.log and is shown
# only when something fails, and the generator's log is left out unless an
# option asks for it (--log FILE, --log -), so that just the tables show.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
model="${1:-$root/examples/lead_time.yaml}"
# A bare name of a bundled example is found in examples/.
if [ ! -e "$model" ] && [ -e "$root/examples/$model" ]; then model="$root/examples/$model"; fi
mkdir -p "$root/build"
log="$root/build/example-build.log"
if ! { bash "$root/scripts/setup.sh" &&
       cmake -S "$root" -B "$root/build" &&
       cmake --build "$root/build" -j"$(nproc)" --target vel_program; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "example: setting up or building failed; the output above is also in $log" >&2
  exit 1
fi
options=("${@:2}")
case " ${options[*]-} " in
  *" --log"*|*" --no-log "*) ;;
  *) options+=(--no-log) ;;
esac
exec "$root/build/bin/vel" generate "$model" "${options[@]}"
