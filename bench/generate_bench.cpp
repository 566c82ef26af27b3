// Generation of a large conditional probability table against the interval
// probabilities it is made of.
//
// X = Normal(A + B, 25) on 50 intervals, A and B interval parents with 200
// and 100 unit-width states sampled at 10 points each: 1,000,000 entries,
// 100 sample points per row, 51 calls of _vel_Gauss_cdf per sample point (the
// normaliser and one per state).  Each iteration times the generation, then
// the same calls with the same arguments in a bare loop; the counters give
// entries per second, both costs per call and the generator's overhead over
// the calls (in thread CPU time, so that other load on the machine does not
// count), and how much the resident set grew during generation.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cfloat>
#include <ctime>
#include <vector>

#include "special/special.h"
#include "vel/vel.h"

using namespace vel::special;

namespace {

constexpr int kStatesA = 200;
constexpr int kStatesB = 100;
constexpr int kStatesX = 50;
constexpr int kSamples = 10;
constexpr double kVariance = 25.0;

struct Fixture {
  vel_domain_t *domain = vel_domain_new();
  vel_node_t *a = nullptr, *b = nullptr, *x = nullptr;
  vel_model_t *model = nullptr;
  std::vector<double> bounds_a, bounds_b, bounds_x;

  vel_node_t *interval(const char *name, const std::vector<double> &bounds) {
    vel_node_t *node = vel_domain_new_node(domain, vel_category_chance, vel_kind_discrete,
                                           vel_subtype_interval, name);
    vel_node_set_number_of_states(node, bounds.size() - 1);
    for (size_t i = 0; i < bounds.size(); ++i) vel_node_set_state_value(node, i, bounds[i]);
    return node;
  }

  Fixture() {
    for (int i = 0; i <= kStatesA; ++i) bounds_a.push_back(i);
    for (int i = 0; i <= kStatesB; ++i) bounds_b.push_back(i - 50.0);
    // The means run over [-50, 250): open ends and 49 bounds spread over them.
    bounds_x.push_back(-vel_infinity);
    for (int i = 0; i < kStatesX - 1; ++i) bounds_x.push_back(-50.0 + 300.0 * i / (kStatesX - 2));
    bounds_x.push_back(vel_infinity);
    a = interval("A", bounds_a);
    b = interval("B", bounds_b);
    x = interval("X", bounds_x);
    vel_node_add_parent(x, a);
    vel_node_add_parent(x, b);
    vel_node_t *none[] = {nullptr};
    model = vel_node_new_model(x, none);
    vel_model_set_expression(model, 0, vel_parse_expression("Normal(A + B, 25)", x));
    vel_model_set_samples_per_interval(model, kSamples);
    vel_node_get_table(x);  // the table itself is allocated before timing
  }
  ~Fixture() { vel_domain_delete(domain); }
};

// The sample points the generator uses for a bounded state [lo, hi).
void sample_points(double lo, double hi, double *points) {
  const double width = (hi - lo) / kSamples;
  for (int i = 0; i < kSamples; ++i) points[i] = lo + (i + 0.5) * width;
}

// The generator's calls of _vel_Gauss_cdf, without the generator.
double bare_calls(const Fixture &f) {
  const double *v = f.bounds_x.data();
  double sum = 0.0;
  double pa[kSamples], pb[kSamples];
  for (int i = 0; i < kStatesA; ++i) {
    sample_points(f.bounds_a[i], f.bounds_a[i + 1], pa);
    for (int j = 0; j < kStatesB; ++j) {
      sample_points(f.bounds_b[j], f.bounds_b[j + 1], pb);
      for (double va : pa) {
        for (double vb : pb) {
          const double mean = va + vb;
          sum += _vel_Gauss_cdf(-DBL_MAX, DBL_MAX, mean, kVariance);
          for (int s = 0; s < kStatesX; ++s) sum += _vel_Gauss_cdf(v[s], v[s + 1], mean, kVariance);
        }
      }
    }
  }
  return sum;
}

// CPU time of this thread: the machine's other load does not count.
double thread_seconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

long max_rss_kb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void GenerateNormalOverTwoIntervalParents(benchmark::State &state) {
  Fixture f;
  double generate_seconds = 0.0, bare_seconds = 0.0;
  long rss_growth = 0;
  for (auto _ : state) {
    vel_model_set_tables_outdated(f.model, 1);
    const long rss_before = max_rss_kb();
    const double t0 = thread_seconds();
    const int code = vel_node_generate_table(f.x);
    const double t1 = thread_seconds();
    rss_growth += max_rss_kb() - rss_before;
    if (code != 0) {
      state.SkipWithError("generation failed");
      break;
    }
    benchmark::DoNotOptimize(bare_calls(f));
    const double t2 = thread_seconds();
    generate_seconds += t1 - t0;
    bare_seconds += t2 - t1;
    state.SetIterationTime(t1 - t0);
  }
  const double iterations = static_cast<double>(state.iterations());
  const double entries = static_cast<double>(vel_table_get_size(vel_node_get_table(f.x)));
  const double calls =
      static_cast<double>(kStatesA) * kStatesB * kSamples * kSamples * (kStatesX + 1);
  state.counters["entries"] = entries;
  state.counters["entries_per_s"] = entries * iterations / generate_seconds;
  state.counters["gauss_calls"] = calls;
  state.counters["generate_ns_per_call"] = 1e9 * generate_seconds / (iterations * calls);
  state.counters["bare_ns_per_call"] = 1e9 * bare_seconds / (iterations * calls);
  state.counters["overhead_pct"] = 100.0 * (generate_seconds / bare_seconds - 1.0);
  state.counters["rss_growth_kb"] = static_cast<double>(rss_growth) / iterations;
}
BENCHMARK(GenerateNormalOverTwoIntervalParents)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
