// Quantiles of a discrete node's beliefs.  Beliefs that do not sum to 1 are
// normalised: the cumulative belief of a state is divided by the total, so
// the last state with positive belief always reaches p = 1.
#include <cfloat>
#include <cmath>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

constexpr double failed = -1.0;

double fail_with(int code) {
  vel::fail(code);
  return failed;
}

// The state where the cumulative belief first reaches p * total; only states
// with positive belief qualify, so p = 0 gives the lowest state in the support.
uint64_t quantile_state(const float *beliefs, uint64_t n, double target, double *below) {
  double cumulative = 0.0;
  uint64_t last_positive = n;
  for (uint64_t i = 0; i < n; ++i) {
    if (!(beliefs[i] > 0.0f)) continue;
    *below = cumulative;
    cumulative += beliefs[i];
    last_positive = i;
    if (cumulative >= target) return i;
  }
  return last_positive;
}

double interval_point(const double *bounds, uint64_t state, double fraction) {
  double lo = bounds[state], hi = bounds[state + 1];
  bool lo_infinite = lo <= -DBL_MAX, hi_infinite = hi >= DBL_MAX;
  if (lo_infinite && hi_infinite) return 0.0;
  if (lo_infinite) return hi;
  if (hi_infinite) return lo;
  return lo + fraction * (hi - lo);
}

}  // namespace

extern "C" double vel_node_get_quantile(const vel_node_t *node, double p) {
  if (!check_not_null("vel_node_get_quantile", "node", node)) return failed;
  if (!vel::host::is_discrete(node)) {
    usage("vel_node_get_quantile: the node has no states");
    return failed;
  }
  if (!(p >= 0.0 && p <= 1.0)) {
    usage("vel_node_get_quantile: the probability must lie in [0, 1]");
    return failed;
  }
  if (_vel_node_check_inference_results(node)) return failed;

  const float *beliefs = node->belief_table->data;
  uint64_t n = node->state_count;
  double total = 0.0;
  for (uint64_t i = 0; i < n; ++i) total += beliefs[i];
  if (!(total > 0.0)) return fail_with(vel_error_computation);

  double below = 0.0;
  uint64_t state = quantile_state(beliefs, n, p * total, &below);
  double result;
  if (node->subtype == vel_subtype_numbered) {
    result = node->state_values[state];
  } else if (node->subtype == vel_subtype_interval) {
    double fraction = (p * total - below) / beliefs[state];
    result = interval_point(node->state_values, state, std::fmin(1.0, std::fmax(0.0, fraction)));
  } else {
    result = static_cast<double>(state);
  }
  _vel_error_code = 0;
  return result;
}
