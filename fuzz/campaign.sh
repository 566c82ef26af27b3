#!/usr/bin/env bash
# A longer random fuzzing campaign on one target, at the lowest priority:
#   bash fuzz/campaign.sh TARGET MINUTES          TARGET: expression, model_file, bif, xmlbif
#   bash fuzz/campaign.sh --merge TARGET          add the campaign's new inputs to the corpus
# The campaign goes on after a crash, a timeout or running out of memory and
# keeps each failing input in build-fuzz/findings/TARGET/; inputs that reach
# new code collect in build-fuzz/campaign/TARGET/.  --merge adds to
# fuzz/corpus/TARGET those among them that cover something the corpus does
# not, ready to be committed.  A failing input, once its fault is fixed,
# joins the corpus under a name that says what it found.
set -euo pipefail
cd "$(dirname "$0")/.."
source fuzz/targets.sh

usage() {
  echo "usage: bash fuzz/campaign.sh TARGET MINUTES | --merge TARGET   (TARGET: ${targets[*]})" >&2
  exit 2
}
merge=0
if [ "${1:-}" = --merge ]; then merge=1; shift; fi
target=${1:-}
[[ " ${targets[*]} " == *" $target "* ]] || usage

bash fuzz/build.sh
program=build-fuzz/fuzz/fuzz_$target
new=build-fuzz/campaign/$target
findings=build-fuzz/findings/$target
mkdir -p "$new" "$findings"

if [ $merge = 1 ]; then
  before=$(ls "fuzz/corpus/$target" | wc -l)
  # shellcheck disable=SC2046
  nice -n 19 "$program" -merge=1 $(fuzz_options "$target") "fuzz/corpus/$target" "$new" >build-fuzz/merge.log 2>&1
  echo "fuzz/corpus/$target: $before inputs, now $(ls "fuzz/corpus/$target" | wc -l)"
  exit 0
fi

minutes=${2:-}
[[ "$minutes" =~ ^[0-9]+$ ]] || usage
log=build-fuzz/campaign-$target.log
echo "campaign: $target for $minutes minutes; log in $log" >&2
# shellcheck disable=SC2046
nice -n 19 "$program" -max_total_time=$((minutes * 60)) $(fuzz_options "$target") -fork=1 \
  -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 -artifact_prefix="$findings/" \
  "$new" "fuzz/corpus/$target" >"$log" 2>&1 || true
grep -E '^#[0-9]+: cov:' "$log" | tail -n 1 >&2 || true
count=$(find "$findings" -type f | wc -l)
echo "campaign: $target: $count failing inputs in $findings, $(ls "$new" | wc -l) new inputs in $new" >&2
[ "$count" = 0 ]
