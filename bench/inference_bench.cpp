// Compilation and propagation of the largest standard network (child, 20
// nodes, converted from BIF into tests/inference/data/child.yaml), without
// evidence and with evidence on four report nodes; sum and max propagation.
// The counter clique_entries is the total size of the clique tables.
#include <benchmark/benchmark.h>

#include <string>

#include "io/model_file.h"
#include "vel/vel.h"

namespace {

vel::io::LoadedModel load_child() {
  return vel::io::load_model_file(std::string(VEL_SOURCE_DIR) + "/tests/inference/data/child.yaml");
}

void enter(vel_domain_t *domain, const char *name, std::size_t state) {
  vel_node_enter_evidence(vel_domain_get_node_by_name(domain, name), state);
}

// Reports seen: an abnormal chest X-ray, grunting, low oxygen, high CO2.
void enter_reports(vel_domain_t *domain) {
  enter(domain, "XrayReport", 3);
  enter(domain, "GruntingReport", 0);
  enter(domain, "LowerBodyO2", 0);
  enter(domain, "CO2Report", 1);
}

void BM_Compile(benchmark::State &state) {
  vel::io::LoadedModel model = load_child();
  if (state.range(0)) enter_reports(model.domain.get());
  for (auto _ : state)
    if (vel_domain_compile(model.domain.get()) != 0) state.SkipWithError(vel_error_message());
  state.counters["clique_entries"] = static_cast<double>(vel_domain_get_clique_table_size(model.domain.get()));
}

void BM_Propagate(benchmark::State &state) {
  vel::io::LoadedModel model = load_child();
  vel_domain_t *domain = model.domain.get();
  if (state.range(0)) enter_reports(domain);
  if (vel_domain_compile(domain) != 0) state.SkipWithError(vel_error_message());
  const int equilibrium = state.range(1) ? vel_equilibrium_max : vel_equilibrium_sum;
  for (auto _ : state)
    if (vel_domain_propagate(domain, equilibrium) != 0) state.SkipWithError(vel_error_message());
  state.counters["clique_entries"] = static_cast<double>(vel_domain_get_clique_table_size(domain));
}

}  // namespace

BENCHMARK(BM_Compile)->ArgName("evidence")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Propagate)->ArgNames({"evidence", "max"})->ArgsProduct({{0, 1}, {0, 1}})->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
