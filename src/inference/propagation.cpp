// Propagation in the junction forest, in double precision: each clique
// starts as the product of its tables and the evidence it holds; collection
// (leaves to root) and distribution (root to leaves) pass separator messages,
// each absorption multiplying by new / old separator values (0 / 0 giving 0).
// Sums make every clique proportional to the joint of its nodes and the
// evidence; maxima make it the max-marginal.  Every clique is divided by its
// own total during collection, so that no product of many small numbers
// underflows; the product of those totals is the total mass.
#include <algorithm>

#include "common/error.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"
#include "inference/potential_walk.h"

namespace vel::inference {

namespace {

inline void combine(double &into, double value, bool max) {
  if (!max)
    into += value;
  else if (value > into)
    into = value;
}

Strides variable_strides(const Clique &clique, uint32_t variable) {
  Strides strides(clique.variables.size(), 0);
  strides[std::lower_bound(clique.variables.begin(), clique.variables.end(), variable) - clique.variables.begin()] = 1;
  return strides;
}

void enter_state(JunctionForest &forest, uint32_t variable, int64_t state) {
  Clique &clique = forest.cliques[forest.home[variable]];
  walk(clique.counts, variable_strides(clique, variable), [&](uint64_t i, uint64_t j) {
    if (static_cast<int64_t>(j) != state) clique.values[i] = 0.0;
  });
}

void enter_likelihood(JunctionForest &forest, uint32_t variable, const double *likelihood) {
  Clique &clique = forest.cliques[forest.home[variable]];
  walk(clique.counts, variable_strides(clique, variable),
       [&](uint64_t i, uint64_t j) { clique.values[i] *= likelihood[j]; });
}

int initialise(JunctionForest &forest, const std::vector<Clamp> &clamps) {
  for (Clique &clique : forest.cliques) {
    std::fill(clique.values.begin(), clique.values.end(), 1.0);
    for (const CliqueTable &entry : clique.tables) {
      const vel_table_t *table = vel_node_get_table(entry.node);
      if (!table) return _vel_error_code;
      const float *data = table->data;
      walk(clique.counts, entry.strides, [&](uint64_t i, uint64_t j) { clique.values[i] *= data[j]; });
    }
  }
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
    const host::NodeStorage &storage = host::storage_of(forest.nodes[v]);
    if (storage.entered_state >= 0)
      enter_state(forest, v, storage.entered_state);
    else if (!storage.entered_likelihood.empty())
      enter_likelihood(forest, v, storage.entered_likelihood.data());
  }
  for (const Clamp &clamp : clamps) enter_state(forest, clamp.variable, clamp.state);
  for (std::vector<double> &separator : forest.separators) std::fill(separator.begin(), separator.end(), 1.0);
  return 0;
}

// Divides the clique by its total (sum or maximum) and returns that total.
double normalise(Clique &clique, bool max) {
  double total = 0.0;
  for (double value : clique.values) combine(total, value, max);
  if (total > 0.0)
    for (double &value : clique.values) value /= total;
  return total;
}

void marginalise(const Clique &clique, const Strides &strides, bool max, double *out, std::size_t size) {
  std::fill(out, out + size, 0.0);
  walk(clique.counts, strides, [&](uint64_t i, uint64_t j) { combine(out[j], clique.values[i], max); });
}

int collect(JunctionForest &forest, bool max, double *mass, int32_t *failed_tree) {
  double product = 1.0;
  for (std::size_t k = forest.order.size(); k-- > 0;) {
    Clique &clique = forest.cliques[forest.order[k]];
    const double total = normalise(clique, max);
    if (!(total > 0.0)) {
      *failed_tree = clique.tree;
      return fail(vel_error_impossible_evidence);
    }
    product *= total;
    if (clique.parent < 0) continue;
    std::vector<double> &separator = forest.separators[clique.separator];
    marginalise(clique, clique.to_separator, max, separator.data(), separator.size());
    Clique &parent = forest.cliques[clique.parent];
    walk(parent.counts, clique.parent_to_separator,
         [&](uint64_t i, uint64_t j) { parent.values[i] *= separator[j]; });
  }
  *mass = product;
  return 0;
}

void distribute(JunctionForest &forest, bool max) {
  for (int32_t c : forest.order) {
    Clique &clique = forest.cliques[c];
    if (clique.parent < 0) continue;
    std::vector<double> &separator = forest.separators[clique.separator];
    double *ratio = forest.scratch.data();
    marginalise(forest.cliques[clique.parent], clique.parent_to_separator, max, ratio, separator.size());
    for (std::size_t j = 0; j < separator.size(); ++j) {
      const double fresh = ratio[j];
      ratio[j] = separator[j] > 0.0 ? fresh / separator[j] : 0.0;
      separator[j] = fresh;
    }
    walk(clique.counts, clique.to_separator, [&](uint64_t i, uint64_t j) { clique.values[i] *= ratio[j]; });
  }
}

}  // namespace

int propagate_forest(JunctionForest &forest, bool max, const std::vector<Clamp> &clamps, double *mass,
                     int32_t *failed_tree) {
  if (int code = initialise(forest, clamps)) return code;
  if (int code = collect(forest, max, mass, failed_tree)) return code;
  distribute(forest, max);
  return _vel_error_code = 0;
}

void variable_marginal(const JunctionForest &forest, uint32_t variable, bool max, double *out) {
  const Clique &clique = forest.cliques[forest.home[variable]];
  marginalise(clique, variable_strides(clique, variable), max, out, forest.nodes[variable]->state_count);
}

}  // namespace vel::inference
