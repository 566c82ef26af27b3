// Results of inference and configured values: stated from outside (a model
// file's inference block) or written by propagation.  Every change
// invalidates the cached function-node values and the tables that were
// computed from the old results, and keeps the nodes' variance fields current.
#include <cfloat>
#include <cmath>
#include <string>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/read_count_internal.h"
#include "host/storage_internal.h"
#include "table_generator/entries.h"

using namespace vel::host;

namespace {

// Sets a usage error naming the node; always returns vel_error_usage.
int refuse(const vel_node_t *node, const char *what) {
  return guarded<int>(vel_error_out_of_memory,
                      [&] { return usage(std::string("node ") + node->name + " " + what); });
}

// A result of the node was stated: its variance fields (when `moments`),
// the readers of the old results and the function nodes computed from them
// follow.  Returns 0, the call's success.
int results_changed(vel_node_t *node, bool moments) {
  if (moments) write_variance(node);
  outdate_inference_readers(node->domain, node);
  _vel_invalidate_function_children(node, vel_mode_inference);
  return _vel_error_code = 0;
}

bool fits_float(double x) { return std::fabs(x) <= FLT_MAX; }

bool is_utility(const vel_node_t *node) { return node->category == vel_category_utility; }

// A utility node's expected utility or its variance (`field`); -1 with a
// usage error for any other node.
float utility_reading(const char *function, const vel_node_t *node, double vel_node_t::*field) {
  vel::host::count_value_read();
  if (!check_not_null(function, "node", node)) return -1.0f;
  if (!is_utility(node)) {
    refuse(node, "is not a utility node");
    return -1.0f;
  }
  _vel_error_code = 0;
  return static_cast<float>(node->*field);
}

}  // namespace

extern "C" int _vel_node_check_inference_results(const vel_node_t *node) {
  if (!node->domain->is_compiled) return vel::fail(vel_error_not_compiled);
  const vel_junction_tree_t *jt = node->junction_tree;
  if (jt == nullptr || jt->equilibrium == vel_equilibrium_none) return vel::fail(vel_error_not_propagated);
  if (jt->equilibrium == vel_equilibrium_sum &&
      (jt->evidence_mode == vel_evidence_mode_normal || jt->evidence_pending == 0))
    return 0;
  return vel::fail(vel_error_computation);
}

namespace vel::host {

bool belief_moments(const vel_node_t *node, double *mean, double *variance) {
  const float *beliefs = node->belief_table->data;
  double total = 0.0, sum = 0.0;
  for (uint64_t i = 0; i < node->state_count; ++i) {
    total += beliefs[i];
    sum += beliefs[i] * node->state_values[i];
  }
  if (!(total > 0.0)) return false;
  *mean = sum / total;
  double squares = 0.0;
  for (uint64_t i = 0; i < node->state_count; ++i) {
    double deviation = node->state_values[i] - *mean;
    squares += beliefs[i] * deviation * deviation;
  }
  *variance = squares / total;
  return true;
}

// A utility's variance is kept as the single-precision value that
// vel_node_get_variance_of_utility gives, as function nodes read it.
void write_variance(vel_node_t *node) {
  if (node->kind > 0) {
    node->variance = node->propagated_variance;
  } else if (is_utility(node)) {
    node->variance = static_cast<float>(node->utility_variance);
  } else if (is_discrete(node) && node->subtype == vel_subtype_numbered) {
    double mean = 0.0, variance = 0.0;
    node->variance = belief_moments(node, &mean, &variance) ? variance : std::nan("");
  }
}

}  // namespace vel::host

extern "C" {

int vel_node_set_beliefs(vel_node_t *node, const double *beliefs, size_t count) {
  if (!check_not_null("vel_node_set_beliefs", "node", node)) return vel_error_usage;
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  if (count != node->state_count) return refuse(node, "needs one belief per state");
  if (count > 0 && !check_not_null("vel_node_set_beliefs", "beliefs", beliefs))
    return vel_error_usage;
  for (size_t i = 0; i < count; ++i)
    if (!(beliefs[i] >= 0.0 && beliefs[i] <= FLT_MAX))
      return refuse(node, "takes finite, non-negative beliefs only");
  float *data = node->belief_table->data;
  for (size_t i = 0; i < count; ++i) data[i] = static_cast<float>(beliefs[i]);
  return results_changed(node, true);
}

double vel_node_get_belief(const vel_node_t *node, size_t state) {
  if (!check_not_null("vel_node_get_belief", "node", node)) return -1.0;
  if (!vel::host::is_discrete(node) || state >= node->state_count) {
    refuse(node, "has no such state");
    return -1.0;
  }
  _vel_error_code = 0;
  return node->belief_table->data[state];
}

int vel_node_set_evidence(vel_node_t *node, int64_t state) {
  if (!check_not_null("vel_node_set_evidence", "node", node)) return vel_error_usage;
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  if (state < -1 || state >= static_cast<int64_t>(node->state_count))
    return refuse(node, "has no such state");
  node->evidence.state = state;
  return results_changed(node, false);
}

int vel_node_set_mean_and_variance(vel_node_t *node, double mean, double variance) {
  if (!check_not_null("vel_node_set_mean_and_variance", "node", node)) return vel_error_usage;
  if (node->kind <= 0) return refuse(node, "is not continuous");
  if (!std::isfinite(mean) || !(variance >= 0.0) || !std::isfinite(variance))
    return refuse(node, "takes a finite mean and a finite, non-negative variance");
  node->mean = mean;
  node->propagated_variance = variance;
  return results_changed(node, true);
}

double vel_node_get_mean(const vel_node_t *node) {
  vel::host::count_value_read();
  if (!check_not_null("vel_node_get_mean", "node", node)) return -1.0;
  if (node->kind > 0) {
    _vel_error_code = 0;
    return node->mean;
  }
  if (!vel::host::is_discrete(node) || node->subtype != vel_subtype_numbered) {
    refuse(node, "is neither continuous nor numbered");
    return -1.0;
  }
  double mean = 0.0, variance = 0.0;
  if (!vel::host::belief_moments(node, &mean, &variance)) {
    vel::fail(vel_error_computation);
    return -1.0;
  }
  _vel_error_code = 0;
  return mean;
}

int vel_node_set_expected_utility(vel_node_t *node, double expected_utility, double variance) {
  if (!check_not_null("vel_node_set_expected_utility", "node", node)) return vel_error_usage;
  if (!is_utility(node)) return refuse(node, "is not a utility node");
  if (!fits_float(expected_utility) || !(variance >= 0.0) || !fits_float(variance))
    return refuse(node, "takes single-precision expected utilities and variances");
  node->expected_utility = expected_utility;
  node->utility_variance = variance;
  return results_changed(node, true);
}

float vel_node_get_expected_utility(const vel_node_t *node, int) {
  return utility_reading("vel_node_get_expected_utility", node, &vel_node_t::expected_utility);
}

float vel_node_get_variance_of_utility(const vel_node_t *node) {
  return utility_reading("vel_node_get_variance_of_utility", node, &vel_node_t::utility_variance);
}

int vel_node_set_configured_state(vel_node_t *node, int64_t state) {
  if (!check_not_null("vel_node_set_configured_state", "node", node)) return vel_error_usage;
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  if (state < -1 || state >= static_cast<int64_t>(node->state_count))
    return refuse(node, "has no such state");
  node->configured_state = state;
  _vel_invalidate_function_children(node, vel_mode_configured);
  return _vel_error_code = 0;
}

// A real-valued function node's configured value is its mode-1 cache, which
// only its model may set.
int vel_node_set_configured_value(vel_node_t *node, double value) {
  if (!check_not_null("vel_node_set_configured_value", "node", node)) return vel_error_usage;
  if (vel::host::is_discrete(node)) return refuse(node, "takes a configured state, not a value");
  if (is_real_function(node)) return refuse(node, "gets its value from its model");
  if (node->kind > 0)
    node->evidence.value = value;
  else
    node->configured_value = value;
  _vel_invalidate_function_children(node, vel_mode_configured);
  return _vel_error_code = 0;
}

// Continuous nodes: the propagated variance.  Numbered nodes: the variance
// of the state values under the normalised beliefs.
double _vel_node_get_variance(const vel_node_t *node, int) {
  vel::host::count_value_read();
  if (!node) {
    vel::fail(vel_error_usage);
    return -1.0;
  }
  if (node->kind > 0) return node->propagated_variance;
  if (!vel::host::is_discrete(node) || node->subtype != vel_subtype_numbered) {
    vel::fail(vel_error_usage);
    return -1.0;
  }
  double mean = 0.0, variance = 0.0;
  if (!vel::host::belief_moments(node, &mean, &variance)) {
    vel::fail(vel_error_computation);
    return -1.0;
  }
  return variance;
}

}  // extern "C"
