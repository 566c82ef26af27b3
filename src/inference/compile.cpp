// Compilation: the junction forest of the domain's discrete nodes, every
// model's table, and a first propagation.  Tables generated from results of
// inference (probability, quantile, variance, aggregate, function-node
// values, a discrete function node's parents) are generated after that
// propagation, from its results, and the domain is propagated once more with
// them.  No fixed point is sought: those tables reflect the first
// propagation, whose results they may themselves have changed.
#include <memory>

#include "common/error.h"
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"

using namespace vel::host;

namespace {

void uncompile(vel_domain_t *domain) {
  domain->host->junction_forest.reset();
  domain->is_compiled = 0;
  domain->junction_tree->equilibrium = vel_equilibrium_none;
  domain->junction_tree->evidence_pending = 0;
}

// A failed compilation leaves the domain uncompiled; the failure's code and
// message stay.
int fail_compilation(vel_domain_t *domain, int code) {
  uncompile(domain);
  vel::host::inference_state_changed(domain);
  return vel::fail(code);
}

int compile(vel_domain_t *domain) {
  using namespace vel::inference;
  uncompile(domain);
  domain->junction_tree->evidence_mode = vel_evidence_mode_normal;
  if (int code = check_node_tables(domain)) return fail_compilation(domain, code);
  std::unique_ptr<JunctionForest> built;
  if (int code = build_junction_forest(domain, &built)) return fail_compilation(domain, code);
  JunctionForest &forest = *built;
  domain->host->junction_forest = std::shared_ptr<JunctionForest>(std::move(built));
  if (int code = give_uniform_policies(domain)) return fail_compilation(domain, code);

  const std::vector<vel_node_t *> deferred = outdated_readers(domain);
  if (int code = generate_tables(domain, deferred)) return fail_compilation(domain, code);
  fill_provisional_tables(deferred);
  domain->is_compiled = 1;
  if (int code = propagate_results(domain, forest, vel_equilibrium_sum)) return fail_compilation(domain, code);
  if (deferred.empty()) return 0;
  if (int code = generate_tables(domain, {})) return fail_compilation(domain, code);
  if (int code = propagate_results(domain, forest, vel_equilibrium_sum)) return fail_compilation(domain, code);
  return 0;
}

}  // namespace

extern "C" int vel_domain_compile(vel_domain_t *domain) {
  if (!domain) return usage("vel_domain_compile: domain is NULL");
  if (domain->is_class) return usage("vel_domain_compile: a class cannot be compiled");
  domain->host->failed_node = nullptr;
  vel::set_error_message(nullptr);
  return guarded<int>(vel_error_out_of_memory, [&] {
    const int code = compile(domain);
    return code ? code : (_vel_error_code = 0);
  });
}
