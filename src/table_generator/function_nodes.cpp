// Values of real-valued function nodes, computed on demand in two modes (from
// inference results, or from configured values) and cached per mode in the
// node.  One computation marks the ancestors it needs, computes each of them
// once, and clears the marks again.
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

namespace {

bool is_real_function(const vel_node_t *node) {
  return node->category == vel_category_function && node->kind < 0;
}

double &cached_value(vel_node_t *node, uint32_t mode) {
  return mode == vel_mode_inference ? node->inferred_value : node->configured_value;
}

// Scratch mark of the first clearing pass; never a status or -1.
constexpr int64_t being_cleared = INT64_MIN;

// The edges that a computation may follow from a node: to its value source,
// or else, from a function node, to its parents.
template <typename Visit>
void for_each_source(vel_node_t *node, Visit visit) {
  if (node->value_source != nullptr) {
    visit(node->value_source);
  } else if (is_real_function(node) && node->parents != nullptr) {
    for (vel_node_t **p = node->parents; *p != nullptr; ++p) visit(*p);
  }
}

void flag_for_clearing(vel_node_t *node) {
  if (node->mark == being_cleared) return;
  node->mark = being_cleared;
  for_each_source(node, flag_for_clearing);
}

void clear_flagged(vel_node_t *node) {
  if (node->mark != being_cleared) return;
  node->mark = 0;
  for_each_source(node, clear_flagged);
}

// Value and state of a node other than a function node, from its configured
// value or state.
int configured_value(vel_node_t *node) {
  if (node->kind == vel_kind_discrete) {
    const int64_t state = node->configured_state;
    // An interval state has no single value; from configuration that is
    // refused even where only the state would be read.
    if (node->subtype == vel_subtype_interval) return vel::fail(vel_error_invalid_expression);
    if (node->subtype == vel_subtype_numbered) node->value = _vel_node_get_state_value(node, state);
    node->state_index = state;
  } else if (node->kind < 0) {
    node->value = node->configured_value;
  } else {
    node->value = node->evidence.value;
  }
  return vel::fail(vel_error_none);
}

int variance_of(vel_node_t *node, uint32_t mode) {
  if (mode == vel_mode_configured) {
    if (node->kind == vel_kind_discrete && node->subtype != vel_subtype_numbered) {
      return vel::fail(vel_error_invalid_expression);
    }
    node->variance = 0.0;
    return vel::fail(vel_error_none);
  }
  const double x = node->kind < 0 ? static_cast<double>(vel_node_get_variance_of_utility(node))
                                  : _vel_node_get_variance(node, 1);
  if (x < 0.0) {
    if (_vel_error_code == vel_error_usage) return vel::fail(vel_error_invalid_expression);
    return _vel_error_code;
  }
  node->variance = x;
  return 0;
}

}  // namespace

int model_uses_node(const vel_model_t *model, const vel_node_t *node) {
  if (model == nullptr) return 0;
  return _vel_node_appears_in_model(model, node) || _vel_node_in_list(node, model->nodes);
}

extern "C" int _vel_node_compute_function_value(vel_node_t *node, uint32_t mode) {
  if (node == nullptr || mode > vel_mode_configured || !is_real_function(node)) {
    return vel::fail(vel_error_usage);
  }
  const int status = evaluate_function_node(node, mode);
  // A usage failure inside the computation means the value cannot be
  // produced; to the caller that is a computation error, not a bad argument.
  return vel::fail(status == vel_error_usage ? vel_error_computation : status);
}

int evaluate_function_node(vel_node_t *node, uint32_t mode) {
  if (node->function_status[mode] >= 0) return vel::fail(node->function_status[mode]);
  initialize_ancestors(node, mode);
  const int status = compute_function_value(node, mode);
  clear_ancestors(node);
  return status;
}

void initialize_ancestors(vel_node_t *node, uint32_t mode) {
  if (node->mark != 0) return;
  if (!is_real_function(node)) {
    node->mark = -1;
    if (node->value_source != nullptr) initialize_ancestors(node->value_source, mode);
    return;
  }
  node->mark = node->function_status[mode];
  if (node->mark == 0) {
    node->value = cached_value(node, mode);
  } else if (node->mark < 0) {
    if (node->value_source != nullptr) {
      initialize_ancestors(node->value_source, mode);
    } else if (node->parents != nullptr) {
      for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
        if (model_uses_node(node->model, *p)) initialize_ancestors(*p, mode);
      }
    }
  }
}

// Every node reachable along the computation's edges ends with mark 0.  Two
// passes, so that ancestors shared along many paths are visited once each
// instead of once per path.
void clear_ancestors(vel_node_t *node) {
  flag_for_clearing(node);
  clear_flagged(node);
}

int compute_function_value(vel_node_t *node, uint32_t mode) {
  if (node->mark >= 0) return vel::fail(static_cast<int>(node->mark));
  const vel_domain_t *domain = node->domain;
  if (domain != nullptr && domain->source_domain != nullptr) {
    if (vel_node_t *source = node->value_source) {
      const int status = compute_function_value(source, mode);
      if (is_real_function(node)) node->function_status[mode] = static_cast<int8_t>(status);
      node->mark = status;
      if (status == 0) {
        node->value = source->value;
        if (node->kind == vel_kind_discrete) {
          node->state_index = source->state_index;
        } else if (is_real_function(node)) {
          cached_value(node, mode) = node->value;
        }
      }
      return status;
    }
    if (_vel_node_in_list(node, domain->blocked_nodes) || node->external_link != nullptr) {
      node->mark = vel_error_computation;
      return vel::fail(vel_error_computation);
    }
  }
  const int status = compute_function_value_aux(node, mode);
  if (is_real_function(node)) {
    node->function_status[mode] = static_cast<int8_t>(status);
    if (status == 0) cached_value(node, mode) = node->value;
  }
  node->mark = status;
  return status;
}

int compute_function_value_aux(vel_node_t *node, uint32_t mode) {
  if (!is_real_function(node)) {
    return mode == vel_mode_inference ? compute_dcu_value(node) : configured_value(node);
  }
  const vel_model_t *model = node->model;
  if (model == nullptr) return vel::fail(vel_error_invalid_expression);
  for (vel_node_t **m = model->nodes; m != nullptr && *m != nullptr; ++m) {
    if (compute_function_value(*m, mode) != 0) return _vel_error_code;
  }
  vel_expression_t *expression = get_expression(model);
  if (expression == nullptr || !_vel_assign_types(expression, 1) ||
      expression->type != vel_type_number) {
    return vel::fail(vel_error_invalid_expression);
  }
  if (eval_expression_nodes(expression, mode) != 0) return _vel_error_code;
  if (eval_numeric_expr(expression, &node->value) != 0) return _vel_error_code;
  return 0;
}

vel_expression_t *get_expression(const vel_model_t *model) {
  uint64_t index = 0;
  for (vel_node_t **m = model->nodes; m != nullptr && *m != nullptr; ++m) {
    if ((*m)->state_index < 0) return nullptr;
    index = index * (*m)->state_count + static_cast<uint64_t>((*m)->state_index);
  }
  if (model->expressions == nullptr) return nullptr;
  return model->expressions[index];
}

int eval_expression_nodes(const vel_expression_t *expression, uint32_t mode) {
  switch (expression->operator_) {
    case vel_op_node:
      return compute_function_value(expression->node, mode);
    case vel_op_number:
    case vel_op_label:
    case vel_op_truth:
      return vel::fail(vel_error_none);
    case vel_op_variance:
      return variance_of(expression->arguments[0]->node, mode);
    default:
      break;
  }
  for (vel_expression_t **a = expression->arguments; *a != nullptr; ++a) {
    if (eval_expression_nodes(*a, mode) != 0) return _vel_error_code;
  }
  return vel::fail(vel_error_none);
}
