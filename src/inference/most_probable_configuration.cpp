// The most probable configuration after a max propagation.  Nodes are fixed
// in file order, each to the smallest state whose max-marginal equals the
// largest (within rounding); a node whose max-marginal ties between states
// is clamped to its choice and the forest propagated again, so that later
// choices stay in a most probable configuration.  Without ties no further
// propagation is needed.
#include <cmath>

#include "common/error.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"

namespace vel::inference {

namespace {

// Max-marginals closer than this (relatively) to the largest count as ties:
// the rounding of max-products along different paths is far below it.
constexpr double tie_tolerance = 1e-12;

// P(configuration, evidence): the product of the table entries and
// likelihoods that the configuration selects.
double probability_of(const JunctionForest &forest, const std::vector<int64_t> &configuration) {
  double product = 1.0;
  for (const Clique &clique : forest.cliques)
    for (const CliqueTable &entry : clique.tables) {
      const vel_table_t *table = vel_node_get_table(entry.node);
      uint64_t index = 0, stride = 1;
      for (uint64_t k = table->node_count; k-- > 0;) {
        const vel_node_t *node = table->nodes[k];
        index += static_cast<uint64_t>(configuration[forest.variable_of[node->index]]) * stride;
        stride *= node->state_count;
      }
      product *= table->data[index];
    }
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    const host::NodeStorage &storage = host::storage_of(forest.nodes[v]);
    if (storage.entered_state >= 0 && storage.entered_state != configuration[v]) return 0.0;
    if (!storage.entered_likelihood.empty()) product *= storage.entered_likelihood[configuration[v]];
  }
  return product;
}

}  // namespace

int find_most_probable_configuration(JunctionForest &forest, std::vector<int64_t> *configuration,
                                     double *probability) {
  std::vector<int64_t> chosen(forest.nodes.size(), -1);
  std::vector<Clamp> clamps;
  std::vector<double> marginal;
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    marginal.resize(forest.nodes[v]->state_count);
    variable_marginal(forest, v, true, marginal.data());
    double best = 0.0;
    for (double m : marginal) best = std::fmax(best, m);
    const double threshold = best * (1.0 - tie_tolerance);
    int candidates = 0;
    for (std::size_t s = 0; s < marginal.size(); ++s) {
      if (marginal[s] < threshold) continue;
      if (candidates++ == 0) chosen[v] = static_cast<int64_t>(s);
    }
    if (candidates < 2) continue;
    clamps.push_back({v, chosen[v]});
    double mass = 0.0;
    int32_t failed_tree = -1;
    if (int code = propagate_forest(forest, true, clamps, &mass, &failed_tree)) return code;
  }
  *probability = probability_of(forest, chosen);
  *configuration = std::move(chosen);
  return _vel_error_code = 0;
}

}  // namespace vel::inference
