#!/usr/bin/env bash
# Continuous integration of the fuzz targets: each replays its committed
# corpus (fuzz/corpus/TARGET), then runs a fixed number of fresh mutations
# from a fixed seed, so that every run does the same work.  Any crash, leak,
# timeout (10 s per input) or use of more than 2 GB fails the run; the
# failing input is left in build-fuzz/artifacts/ and the log in
# build-fuzz/logs/.
set -euo pipefail
cd "$(dirname "$0")/.."
source fuzz/targets.sh

# Mutations per target, each about a minute on one shared core.
declare -A runs=([expression]=250000 [model_file]=60000 [bif]=120000 [xmlbif]=120000)

bash fuzz/build.sh
mkdir -p build-fuzz/artifacts build-fuzz/logs
failed=0
for target in "${targets[@]}"; do
  # New inputs go to a scratch directory, never into the committed corpus.
  scratch=$(mktemp -d)
  log=build-fuzz/logs/$target.log
  start=$SECONDS
  # shellcheck disable=SC2046
  if build-fuzz/fuzz/fuzz_$target -seed=1 -runs="${runs[$target]}" $(fuzz_options "$target") \
       -artifact_prefix="build-fuzz/artifacts/$target-" "$scratch" "fuzz/corpus/$target" >"$log" 2>&1; then
    echo "fuzz $target: $(ls "fuzz/corpus/$target" | wc -l) corpus inputs and ${runs[$target]} runs passed" \
         "in $((SECONDS - start)) s ($(grep -o 'cov: [0-9]*' "$log" | tail -1))"
  else
    tail -n 40 "$log" >&2
    echo "fuzz $target: FAILED; the input is in build-fuzz/artifacts/, the log in $log" >&2
    failed=1
  fi
  rm -rf "$scratch"
done
exit $failed
