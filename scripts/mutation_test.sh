#!/usr/bin/env bash
# Mutation testing: a fixed list of faults planted one at a time in the
# library, the loaders and the program; each must make the test suite fail.
#   scripts/mutation_test.sh           apply each mutant, rebuild build/, run the suite
#   scripts/mutation_test.sh --check   only check that each mutant's text occurs once
# Each mutant is FILE|ORIGINAL|REPLACEMENT (an exact text occurring exactly
# once in FILE).  The suite is run without the Python and install tests;
# the quick unit tests first, the program, hostile-file and NumPy inference
# tests only if those pass.  The file is restored with git checkout after each mutant,
# and on interrupt.
set -uo pipefail
cd "$(dirname "$0")/.."
build=${VEL_MUTATION_BUILD:-build}
limit=${VEL_MUTATION_TIMEOUT:-600}

mutants=(
  # special functions
  'src/special/calerf.cpp|if (x < 0.0) result = 2.0 - result;|if (x > 0.0) result = 2.0 - result;'
  'src/special/calerf.cpp|3.20937758913846947E03|3.20937758913846947E02'
  'src/special/interval_cdfs_continuous.cpp|if (x2 >= DBL_MAX) return e1->upper;|if (x2 >= DBL_MAX) return e1->lower;'
  # host: nodes, states, tables, printing
  'src/host/node_states.cpp|if (node->evidence.state >= static_cast<int64_t>(count))|if (node->evidence.state > static_cast<int64_t>(count))'
  'src/host/table.cpp|if (size > vel_max_table_entries) {|if (size > 2 * vel_max_table_entries) {'
  'src/host/printer.cpp|    right = multiplicative_precedence;|    right = additive_precedence;'
  # table generator
  'src/table_generator/compute_distribution.cpp|if (condition) p *= q;|if (!condition) p *= q;'
  'src/table_generator/compute_distribution.cpp|if (result[i] < 0.0) {|if (result[i] < -1.0) {'
  'src/table_generator/discrete.cpp|mass * law->q * (kk - 1 + r) / kk|mass * law->q * (kk + r) / kk'
  'src/table_generator/discrete.cpp|if (static_cast<double>(n) <= law->first)|if (static_cast<double>(n) < law->first)'
  # batch evaluation
  'src/table_generator/batch_rows.cpp|lowest[k] = w[k] < lowest[k] ? w[k] : lowest[k];|lowest[k] = 0.0;'
  'src/table_generator/batch_compile.cpp|last[o] = code[o].level == code[r].level ? static_cast<int32_t>(r) : kept;|last[o] = static_cast<int32_t>(r);'
  'src/table_generator/sampler.h|const uint64_t exponent = 1023 - |const uint64_t exponent = 1022 - '
  'src/table_generator/sampler.h|parent->value = lo + 0.5 * width;|parent->value = lo + 0.25 * width;'
  # inference
  'src/inference/propagation.cpp|if (static_cast<int64_t>(j) != state) clique.values[i] = 0.0;|if (static_cast<int64_t>(j) == state) clique.values[i] = 0.0;'
  'src/inference/results.cpp|total = max ? std::fmax(total, m) : total + m;|total = max ? total + m : std::fmax(total, m);'
  'src/inference/junction_forest.cpp|return x.weight != y.weight ? x.weight > y.weight :|return x.weight != y.weight ? x.weight < y.weight :'
  'src/inference/most_probable_configuration.cpp|for (uint64_t k = table->node_count; k-- > 0;) {|for (uint64_t k = table->node_count - 1; k-- > 0;) {'
  # loaders and writers
  'src/io/uai_writer.cpp|if (++state[k] < nodes[node.parents[p]].states.size()) break;|if (++state[k] <= nodes[node.parents[p]].states.size()) break;'
  'src/io/table_csv.cpp|find_first_of(",\"\r\n")|find_first_of("\"\r\n")'
  'src/io/evidence.cpp|if (!positive) source.fail(|if (!positive && decl.name.empty()) source.fail('
  'src/io/bif_reader.cpp|if (declared != variable.states.size())|if (declared > variable.states.size())'
  'src/io/node_parents.cpp|if (parent->node == decl.node) source.fail(|if (parent->node == nullptr) source.fail('
  # the program
  'tools/vel/main.cpp|return app.exit(error) == 0 ? 0 : 2;|return app.exit(error) == 0 ? 0 : 1;'
  'tools/vel/check_warnings.cpp|if (!(std::fabs(sum - 1.0) <= 1e-6))|if (!(std::fabs(sum - 1.0) <= 1e-2))'
  'tools/vel/infer_command.cpp|if (c.state >= 0) shown[c.node]|if (c.state > 0) shown[c.node]'
  'tools/vel/check_command.cpp|return options.strict && !findings.empty() ? 1 : 0;|return !findings.empty() ? 1 : 0;'
  'tools/vel/log_view.cpp|if (started_ <= shown_) std::fwrite(|if (started_ < shown_) std::fwrite('
)

current=""
restore() { [[ -n $current ]] && git checkout -q -- "$current"; current=""; }
trap 'restore; exit 130' INT TERM
trap restore EXIT

# Replaces the single occurrence of $2 in file $1 by $3; fails unless there is
# exactly one.
occurrences() {
  local text=$(<"$1") without
  without=${text//"$2"/}
  echo $(((${#text} - ${#without}) / ${#2}))
}
apply() {
  local text=$(<"$1")
  printf '%s\n' "${text/"$2"/"$3"}" >"$1"
}

for m in "${mutants[@]}"; do
  IFS='|' read -r file original replacement <<<"$m"
  n=$(occurrences "$file" "$original")
  if [[ $n != 1 ]]; then
    echo "mutation_test: '$original' occurs $n times in $file" >&2
    exit 2
  fi
done
[[ ${1:-} == --check ]] && { echo "${#mutants[@]} mutants, each text found once"; exit 0; }

if ! git diff --quiet -- src tools; then
  echo "mutation_test: src/ or tools/ has uncommitted changes" >&2
  exit 2
fi

results=()
killed=0
for i in "${!mutants[@]}"; do
  IFS='|' read -r file original replacement <<<"${mutants[$i]}"
  current=$file
  apply "$file" "$original" "$replacement"
  start=$SECONDS
  if ! cmake --build "$build" -j2 >"$build/mutation-build.log" 2>&1; then
    outcome="no-build"
    echo "mutation_test: mutant $((i + 1)) does not compile (see $build/mutation-build.log)" >&2
    restore
    exit 2
  fi
  outcome=survived
  # Under an 8 GB address-space limit: a mutant that lets a huge table
  # through then fails to allocate it instead of filling the machine's memory.
  if ! (ulimit -v 8000000
        timeout "$limit" ctest --test-dir "$build" -j2 --stop-on-failure \
          -E 'inference_|python|install|^cli$|hostile' >/dev/null 2>&1 &&
        timeout "$limit" ctest --test-dir "$build" -j2 --stop-on-failure \
          -R '^cli$|hostile|inference_' >/dev/null 2>&1); then
    outcome=killed
    killed=$((killed + 1))
  fi
  restore
  results+=("$(printf '%2d  %-8s %4ds  %s: %s' $((i + 1)) "$outcome" $((SECONDS - start)) "$file" "$replacement")")
  echo "${results[-1]}"
done

# Leave the build matching the sources again.
cmake --build "$build" -j2 >"$build/mutation-build.log" 2>&1

echo
echo "mutant  outcome  time   file: replacement"
printf '%s\n' "${results[@]}"
echo "killed $killed of ${#mutants[@]}"

