// One propagation from start to results: a sum pass always (the probability
// of the evidence, expected utilities, and for a sum propagation the
// beliefs), a max pass for a max propagation (max-marginals as beliefs, the
// most probable configuration).  Nothing the user can read changes until
// every pass has succeeded; then the results are written into the nodes, the
// junction-tree codes set, and whatever was computed from earlier results
// marked outdated.
#include <cmath>
#include <string>

#include "common/error.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"
#include "inference/potential_walk.h"

namespace vel::inference {

namespace {

struct Results {
  double probability_of_evidence = 0.0;
  std::vector<std::vector<float>> beliefs;       // per variable
  std::vector<double> expected_utilities;        // per utility place
  std::vector<double> utility_variances;
  std::vector<int64_t> configuration;
  double probability_of_configuration = 0.0;
};

// Marginals normalised by their sum, or max-marginals by their largest value.
void collect_beliefs(const JunctionForest &forest, bool max, Results &results) {
  std::vector<double> marginal;
  results.beliefs.resize(forest.nodes.size());
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    marginal.resize(forest.nodes[v]->state_count);
    variable_marginal(forest, v, max, marginal.data());
    double total = 0.0;
    for (double m : marginal) total = max ? std::fmax(total, m) : total + m;
    std::vector<float> &beliefs = results.beliefs[v];
    for (double m : marginal) beliefs.push_back(static_cast<float>(m / total));
  }
}

// E[U] and Var[U] under the clique's distribution of the utility's parents.
int collect_utilities(const JunctionForest &forest, Results &results) {
  for (const UtilityPlace &place : forest.utilities) {
    const vel_table_t *table = vel_node_get_table(place.node);
    if (!table) return _vel_error_code;
    const float *utility = table->data;
    double expected = utility[0], variance = 0.0;
    if (place.clique >= 0) {
      const Clique &clique = forest.cliques[place.clique];
      double total = 0.0, sum = 0.0;
      walk(clique.counts, place.strides, [&](uint64_t i, uint64_t j) {
        total += clique.values[i];
        sum += clique.values[i] * utility[j];
      });
      expected = sum / total;
      double squares = 0.0;
      walk(clique.counts, place.strides, [&](uint64_t i, uint64_t j) {
        const double deviation = utility[j] - expected;
        squares += clique.values[i] * deviation * deviation;
      });
      variance = squares / total;
    }
    results.expected_utilities.push_back(expected);
    results.utility_variances.push_back(variance);
  }
  return 0;
}

// Names the evidence of the tree whose mass vanished.
int report_impossible(const JunctionForest &forest, int32_t tree) {
  std::string evidence;
  const vel_node_t *first = nullptr;
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    if (forest.cliques[forest.home[v]].tree != tree) continue;
    if (!first) first = forest.nodes[v];
    const std::string text = describe_evidence(forest.nodes[v]);
    if (!text.empty()) evidence += (evidence.empty() ? "" : ", ") + text;
  }
  if (evidence.empty())
    evidence = std::string("no configuration of ") + first->name +
               " and the nodes connected to it has positive probability: check their tables";
  else
    evidence = "the evidence " + evidence + " is impossible (probability 0)";
  set_error_message(evidence.c_str());
  return fail(vel_error_impossible_evidence);
}

int run_passes(JunctionForest &forest, bool max, Results &results) {
  double mass = 0.0;
  int32_t failed_tree = -1;
  int code = propagate_forest(forest, false, {}, &mass, &failed_tree);
  if (code == vel_error_impossible_evidence) return report_impossible(forest, failed_tree);
  if (code) return code;
  results.probability_of_evidence = mass;
  if ((code = collect_utilities(forest, results))) return code;
  if (!max) {
    collect_beliefs(forest, false, results);
    return 0;
  }
  code = propagate_forest(forest, true, {}, &mass, &failed_tree);
  if (code == vel_error_impossible_evidence) return report_impossible(forest, failed_tree);
  if (code) return code;
  collect_beliefs(forest, true, results);
  return find_most_probable_configuration(forest, &results.configuration, &results.probability_of_configuration);
}

void commit(vel_domain_t *domain, JunctionForest &forest, Results &results, int equilibrium) {
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    vel_node_t *node = forest.nodes[v];
    std::copy(results.beliefs[v].begin(), results.beliefs[v].end(), node->belief_table->data);
    node->evidence.state = host::storage_of(node).entered_state;
  }
  for (std::size_t u = 0; u < forest.utilities.size(); ++u) {
    forest.utilities[u].node->expected_utility = results.expected_utilities[u];
    forest.utilities[u].node->utility_variance = results.utility_variances[u];
  }
  forest.probability_of_evidence = results.probability_of_evidence;
  forest.configuration = std::move(results.configuration);
  forest.probability_of_configuration = results.probability_of_configuration;
  domain->junction_tree->equilibrium = equilibrium;
  domain->junction_tree->evidence_pending = 0;
  for (vel_node_t *node = domain->first_node; node; node = node->next) host::write_variance(node);
  host::inference_state_changed(domain);
}

}  // namespace

int propagate_results(vel_domain_t *domain, JunctionForest &forest, int equilibrium) {
  Results results;
  if (int code = run_passes(forest, equilibrium == vel_equilibrium_max, results)) return code;
  commit(domain, forest, results, equilibrium);
  return _vel_error_code = 0;
}

}  // namespace vel::inference
