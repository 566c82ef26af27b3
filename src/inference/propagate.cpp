// Propagation of a compiled domain's evidence, and the results that only the
// junction forest holds.
#include "common/error.h"
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"

using namespace vel::host;
using vel::inference::forest_of;
using vel::inference::JunctionForest;

namespace {

// The domain's forest, or nullptr with vel_error_not_compiled.
JunctionForest *compiled_forest(const vel_domain_t *domain) {
  JunctionForest *forest = forest_of(domain);
  if (!forest) {
    vel::set_error_message(domain->is_compiled ? "the domain's results are stated, not computed: "
                                                 "vel_domain_compile builds its junction trees"
                                               : "the domain is not compiled");
    vel::fail(vel_error_not_compiled);
  }
  return forest;
}

// The forest after a propagation of the given kind (either kind when 0);
// nullptr with vel_error_not_compiled or vel_error_not_propagated.
JunctionForest *propagated_forest(const vel_domain_t *domain, int equilibrium) {
  JunctionForest *forest = compiled_forest(domain);
  if (!forest) return nullptr;
  const int current = domain->junction_tree->equilibrium;
  const bool fits = equilibrium ? current == equilibrium
                                : current == vel_equilibrium_sum || current == vel_equilibrium_max;
  if (fits) return forest;
  vel::set_error_message(equilibrium == vel_equilibrium_max ? "the domain has not been propagated for the most probable configuration"
                                                            : "the domain has not been propagated");
  vel::fail(vel_error_not_propagated);
  return nullptr;
}

// Tables whose models changed since compilation are generated again; those
// generated from results of inference keep their tables until they are
// generated from these results.
int prepare_tables(vel_domain_t *domain) {
  const std::vector<vel_node_t *> deferred = vel::inference::outdated_readers(domain);
  if (int code = vel::inference::generate_tables(domain, deferred)) return code;
  vel::inference::fill_provisional_tables(deferred);
  return 0;
}

}  // namespace

extern "C" {

int vel_domain_propagate(vel_domain_t *domain, int equilibrium) {
  if (!domain) return usage("vel_domain_propagate: domain is NULL");
  if (equilibrium != vel_equilibrium_sum && equilibrium != vel_equilibrium_max)
    return usage("vel_domain_propagate: the equilibrium must be vel_equilibrium_sum or vel_equilibrium_max");
  domain->host->failed_node = nullptr;
  vel::set_error_message(nullptr);
  return guarded<int>(vel_error_out_of_memory, [&] {
    JunctionForest *forest = compiled_forest(domain);
    if (!forest) return _vel_error_code;
    if (int code = prepare_tables(domain)) return code;
    return vel::inference::propagate_results(domain, *forest, equilibrium);
  });
}

double vel_domain_get_probability_of_evidence(const vel_domain_t *domain) {
  if (!domain) {
    usage("vel_domain_get_probability_of_evidence: domain is NULL");
    return -1.0;
  }
  const JunctionForest *forest = propagated_forest(domain, 0);
  if (!forest) return -1.0;
  _vel_error_code = 0;
  return forest->probability_of_evidence;
}

double vel_domain_get_probability_of_configuration(const vel_domain_t *domain) {
  if (!domain) {
    usage("vel_domain_get_probability_of_configuration: domain is NULL");
    return -1.0;
  }
  const JunctionForest *forest = propagated_forest(domain, vel_equilibrium_max);
  if (!forest) return -1.0;
  _vel_error_code = 0;
  return forest->probability_of_configuration;
}

int64_t vel_node_get_most_probable_state(const vel_node_t *node) {
  if (!node) return usage("vel_node_get_most_probable_state: node is NULL"), -1;
  if (!vel::host::is_discrete(node)) {
    guarded<int>(vel_error_out_of_memory, [&] { return usage(std::string("node ") + node->name + " has no states"); });
    return -1;
  }
  const JunctionForest *forest = propagated_forest(node->domain, vel_equilibrium_max);
  if (!forest) return -1;
  _vel_error_code = 0;
  return forest->configuration[forest->variable_of[node->index]];
}

size_t vel_domain_get_clique_table_size(const vel_domain_t *domain) {
  if (!domain) {
    usage("vel_domain_get_clique_table_size: domain is NULL");
    return static_cast<size_t>(-1);
  }
  const JunctionForest *forest = compiled_forest(domain);
  if (!forest) return static_cast<size_t>(-1);
  _vel_error_code = 0;
  return forest->total_size;
}

vel_node_t *vel_domain_get_failed_node(const vel_domain_t *domain) {
  if (!domain) {
    usage("vel_domain_get_failed_node: domain is NULL");
    return nullptr;
  }
  _vel_error_code = 0;
  return domain->host->failed_node;
}

}  // extern "C"
