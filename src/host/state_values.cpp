// Host operations on state labels and state values: lookups in both
// directions and the verdicts on whether the values are usable.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

#include "common/error.h"
#include "host/host.h"
#include "host/read_count_internal.h"

namespace {

bool is_numbered(const vel_node_t *node) {
  return node->kind == vel_kind_discrete && node->subtype == vel_subtype_numbered;
}
bool is_interval(const vel_node_t *node) {
  return node->kind == vel_kind_discrete && node->subtype == vel_subtype_interval;
}
bool has_labels(const vel_node_t *node) {
  return node->kind == vel_kind_discrete &&
         (node->subtype == vel_subtype_labeled || node->subtype == vel_subtype_boolean);
}

// The largest finite double stands for infinity; anything at or beyond it counts.
bool is_plus_infinite(double x) { return x >= DBL_MAX; }
bool is_minus_infinite(double x) { return x <= -DBL_MAX; }

// Strictly increasing (NaN never increases), then finite: a numbered state
// has no infinite value.
int numbered_verdict(const double *v, uint64_t n) {
  for (uint64_t i = 0; i < n; ++i)
    if (std::isnan(v[i]) || (i > 0 && !(v[i - 1] < v[i]))) return 1;
  for (uint64_t i = 0; i < n; ++i)
    if (is_plus_infinite(v[i]) || is_minus_infinite(v[i])) return 2;
  return 0;
}

// Bounds may repeat once (a zero-width state [v, v)) but not twice, and only
// the outer bounds may be infinite.
int interval_verdict(const double *b, uint64_t n) {
  for (uint64_t i = 0; i <= n; ++i) {
    if (std::isnan(b[i])) return 1;
    if (i > 0 && b[i] < b[i - 1]) return 1;
    if (i > 1 && b[i] == b[i - 1] && b[i - 1] == b[i - 2]) return 1;
  }
  for (uint64_t i = 0; i <= n; ++i) {
    if (i > 0 && is_minus_infinite(b[i])) return 2;
    if (i < n && is_plus_infinite(b[i])) return 2;
  }
  return 0;
}

}  // namespace

extern "C" {

double _vel_node_get_state_value(const vel_node_t *node, int64_t state) {
  vel::host::count_value_read();
  if (node && state >= 0) {
    uint64_t index = static_cast<uint64_t>(state);
    if ((is_numbered(node) && index < node->state_count) ||
        (is_interval(node) && index <= node->state_count))
      return node->state_values[index];
  }
  vel::fail(vel_error_usage);
  return std::numeric_limits<double>::quiet_NaN();
}

const char *_vel_node_get_state_label(const vel_node_t *node, int64_t state) {
  if (node && has_labels(node) && state >= 0 && static_cast<uint64_t>(state) < node->state_count)
    return node->state_labels[state];
  vel::fail(vel_error_usage);
  return nullptr;
}

int64_t _vel_node_get_state_index(const vel_node_t *node, const char *label) {
  if (!node || !label || !has_labels(node)) return -1;
  int64_t found = -1;
  for (uint64_t i = 0; i < node->state_count; ++i)
    if (std::strcmp(node->state_labels[i], label) == 0) {
      if (found >= 0) return -1;
      found = static_cast<int64_t>(i);
    }
  return found;
}

int64_t _vel_node_state_value_to_state_index(const vel_node_t *node, double value) {
  if (!node || std::isnan(value)) return -1;
  uint64_t n = node->state_count;
  const double *v = node->state_values;
  if (is_numbered(node)) {
    for (uint64_t i = 0; i < n; ++i)
      if (v[i] == value) return static_cast<int64_t>(i);
    return -1;
  }
  if (!is_interval(node) || n == 0) return -1;
  if (is_plus_infinite(value) && is_plus_infinite(v[n])) return static_cast<int64_t>(n - 1);
  if (is_minus_infinite(value) && is_minus_infinite(v[0])) return 0;
  for (uint64_t i = 0; i < n; ++i)
    if (v[i] == value && v[i + 1] == value) return static_cast<int64_t>(i);
  for (uint64_t i = 0; i < n; ++i)
    if (v[i] <= value && value < v[i + 1]) return static_cast<int64_t>(i);
  return -1;
}

int _vel_node_check_status_of_state_values(const vel_node_t *node) {
  if (!node) return 0;
  if (is_numbered(node)) return numbered_verdict(node->state_values, node->state_count);
  if (is_interval(node)) return interval_verdict(node->state_values, node->state_count);
  return 0;
}

int _vel_is_wellformed_numbered_node(const vel_node_t *node) {
  if (!node || !is_numbered(node) || node->state_count == 0) return 0;
  for (uint64_t i = 0; i < node->state_count; ++i)
    if (node->state_values[i] != static_cast<double>(i)) return 0;
  return 1;
}

int _vel_is_wellformed_interval_node(const vel_node_t *node) {
  if (!node || !is_interval(node) || node->state_count == 0) return 0;
  const double *b = node->state_values;
  uint64_t n = node->state_count;
  for (uint64_t i = 0; i < n; ++i)
    if (!(b[i] < b[i + 1])) return 0;
  for (uint64_t i = 1; i < n; ++i)
    if (is_minus_infinite(b[i]) || is_plus_infinite(b[i])) return 0;
  return !is_plus_infinite(b[0]) && !is_minus_infinite(b[n]);
}

}  // extern "C"
