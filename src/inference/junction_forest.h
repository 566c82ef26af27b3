// The junction trees of a compiled domain, one per connected component of
// its moral graph, and the functions of the inference unit that build,
// propagate and read them.  A domain's forest lives in its host data
// (junction_forest) from a successful vel_domain_compile until the domain's
// structure changes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/records.h"

namespace vel::inference {

// No clique table, and not their total, may hold more entries than this
// (1 GiB of doubles); a larger one is refused before anything is allocated.
constexpr uint64_t max_clique_entries = uint64_t{1} << 27;

// One stride per variable of a potential: how far the index into a smaller
// table over some of those variables moves when that variable's state goes
// up by one (0 for a variable the table does not have).
using Strides = std::vector<uint64_t>;

// A node table multiplied into a clique when its potential is initialised.
struct CliqueTable {
  vel_node_t *node;
  Strides strides;
};

struct Clique {
  std::vector<uint32_t> variables;  // ascending positions in JunctionForest::nodes
  std::vector<uint64_t> counts;     // their state counts
  std::vector<double> values;       // potential; the last variable varies fastest
  int32_t tree = 0;
  int32_t parent = -1;              // -1: the root of its tree
  int32_t separator = -1;           // the separator shared with the parent
  Strides to_separator;             // this clique's entries onto the separator's
  Strides parent_to_separator;      // the parent's entries onto the separator's
  std::vector<CliqueTable> tables;
};

// A utility node and the clique that holds its discrete parents (-1 when it
// has none: its table is one number).
struct UtilityPlace {
  vel_node_t *node;
  int32_t clique;
  Strides strides;
};

struct JunctionForest {
  std::vector<vel_node_t *> nodes;   // the discrete nodes (the variables), in file order
  std::vector<int32_t> variable_of;  // by node index in the domain: position in nodes, or -1
  std::vector<Clique> cliques;
  std::vector<std::vector<double>> separators;
  std::vector<double> scratch;       // one separator's worth, for distribution
  std::vector<int32_t> order;        // every clique after its parent
  std::vector<int32_t> home;         // per variable: the smallest clique that holds it
  std::vector<UtilityPlace> utilities;
  int32_t tree_count = 0;
  uint64_t total_size = 0;           // entries of all clique tables

  // Results of the last successful propagation.
  double probability_of_evidence = 0.0;
  double probability_of_configuration = 0.0;  // after max propagation
  std::vector<int64_t> configuration;         // per variable, after max propagation
};

// The forest of a domain compiled by vel_domain_compile; nullptr otherwise.
JunctionForest *forest_of(const vel_domain_t *domain);

// The discrete nodes with the moral graph's edges: each family (a node and
// its discrete parents) and each utility node's discrete parents married.
struct MoralGraph {
  std::vector<vel_node_t *> nodes;                // file order
  std::vector<std::vector<uint32_t>> neighbours;  // ascending
};
MoralGraph build_moral_graph(vel_domain_t *domain);

// The maximal cliques of a triangulation of the graph (min-fill elimination,
// ties to the smaller clique, then to the earlier node), each ascending.
std::vector<std::vector<uint32_t>> triangulate(const MoralGraph &graph);

// Builds the forest: cliques, their trees (largest separators first), table
// assignments and strides.  Fails with vel_error_too_large, naming the
// clique's nodes, before allocating a table beyond the limit.
int build_junction_forest(vel_domain_t *domain, std::unique_ptr<JunctionForest> *result);

// Extra hard evidence, used while the most probable configuration is sought.
struct Clamp {
  uint32_t variable;
  int64_t state;
};

// Initialises every clique from the node tables, the entered evidence and
// the clamps, and propagates (sum, or max when `max`).  On success *mass is
// the total mass (sum: the probability of the evidence; max: that of the
// most probable configuration).  Evidence of probability 0 gives
// vel_error_impossible_evidence with *failed_tree set; only the cliques and
// separators are written.
int propagate_forest(JunctionForest &forest, bool max, const std::vector<Clamp> &clamps,
                     double *mass, int32_t *failed_tree);

// A variable's marginal in its home clique: sums, or maxima when `max`,
// unnormalised, written to out[0 .. state count).
void variable_marginal(const JunctionForest &forest, uint32_t variable, bool max, double *out);

// After a max propagation: the most probable configuration, choosing among
// tied states the smallest index, node by node in file order.  Propagates
// again (with clamps) where ties remain.  Its probability, with the evidence,
// is computed from the tables.
int find_most_probable_configuration(JunctionForest &forest, std::vector<int64_t> *configuration,
                                     double *probability);

// The whole of a propagation: passes, results, the junction-tree codes,
// invalidation.  equilibrium: vel_equilibrium_sum or vel_equilibrium_max.
// On failure nothing but scratch data changes.
int propagate_results(vel_domain_t *domain, JunctionForest &forest, int equilibrium);

// Tables before propagation (table_preparation.cpp).
// Refuses discrete nodes without states and chance, function and utility
// nodes that have neither a table nor a model.
int check_node_tables(vel_domain_t *domain);
// Gives a decision node without either a uniform policy (after the clique
// sizes have been checked, since the policy is allocated).
int give_uniform_policies(vel_domain_t *domain);
// The models whose tables are outdated and are generated from results of inference.
std::vector<vel_node_t *> outdated_readers(vel_domain_t *domain);
// Generates every outdated table but those of `deferred` through the
// module's junction-tree entry; on failure records the failing node.
int generate_tables(vel_domain_t *domain, const std::vector<vel_node_t *> &deferred);
// Deferred discrete nodes whose tables hold nothing yet take part as uniform tables.
void fill_provisional_tables(const std::vector<vel_node_t *> &deferred);

// Text of a node's evidence for messages: "A = yes", "B = likelihood (0.9, 0.2)";
// empty when the node has none.
std::string describe_evidence(const vel_node_t *node);

}  // namespace vel::inference
