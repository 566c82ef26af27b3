// The single number that inference gives a parent of a function node: a
// discrete node's state (and a numbered node's value), a continuous node's
// mean, a utility node's expected utility.
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

int64_t get_inferred_state(const vel_node_t *node) {
  if (node->evidence.state >= 0 && node->junction_tree != nullptr &&
      node->junction_tree->evidence_mode == vel_evidence_mode_normal) {
    return node->evidence.state;
  }
  if (node->belief_table == nullptr) return -1;
  const float *beliefs = node->belief_table->data;
  int64_t state = -1;
  for (uint64_t i = 0; i < node->state_count; ++i) {
    if (!(beliefs[i] > 0.0f)) continue;
    if (state >= 0) return -1;
    state = static_cast<int64_t>(i);
  }
  return state;
}

namespace {

int value_is_needed(const vel_node_t *node) {
  if (node->children == nullptr) return 0;
  for (vel_node_t **c = node->children; *c != nullptr; ++c) {
    const vel_node_t *child = *c;
    if (child->mark < 0 && child->category == vel_category_function &&
        node_value_is_used_in_model(child->model, node)) {
      return 1;
    }
  }
  return 0;
}

double expected_state_value(const vel_node_t *node) {
  double sum = 0.0;
  const float *beliefs = node->belief_table != nullptr ? node->belief_table->data : nullptr;
  for (uint64_t i = 0; beliefs != nullptr && i < node->state_count; ++i) {
    sum += static_cast<double>(beliefs[i]) *
           _vel_node_get_state_value(node, static_cast<int64_t>(i));
  }
  return sum;
}

int compute_discrete_value(vel_node_t *node) {
  if (int code = _vel_node_check_inference_results(node)) return code;
  node->state_index = get_inferred_state(node);
  if (node->subtype == vel_subtype_numbered) {
    node->value = node->state_index >= 0 ? _vel_node_get_state_value(node, node->state_index)
                                         : expected_state_value(node);
  } else if (node->subtype == vel_subtype_interval && value_is_needed(node)) {
    // An interval state has no single value.
    return vel::fail(vel_error_invalid_expression);
  }
  return vel::fail(vel_error_none);
}

}  // namespace

int compute_dcu_value(vel_node_t *node) {
  if (node->kind == vel_kind_discrete) return compute_discrete_value(node);
  if (node->kind < 0) {
    node->value = static_cast<double>(vel_node_get_expected_utility(node, 0));
  } else {
    node->value = vel_node_get_mean(node);
  }
  return _vel_error_code;
}
