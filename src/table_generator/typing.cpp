// Type assignment of expression trees and the structural walks over them.
#include "host/record_queries.h"
#include "table_generator/table_generator.h"

namespace {

bool is_num(const vel_expression_t *e) {
  return e->type == vel_type_number || e->type == vel_type_any;
}

bool is_bool(const vel_expression_t *e) {
  return e->type == vel_type_boolean || e->type == vel_type_any;
}

bool all_arguments(const vel_expression_t *e, bool (*test)(const vel_expression_t *)) {
  for (vel_expression_t *const *a = e->arguments; *a; ++a)
    if (!test(*a)) return false;
  return true;
}

bool is_reference(const vel_expression_t *e) { return e && e->operator_ == vel_op_node; }

bool is_discrete_reference(const vel_expression_t *e) {
  return is_reference(e) && e->node->kind == vel_kind_discrete;
}

int type_node_reference(vel_expression_t *e, uint32_t mode) {
  const vel_node_t *node = e->node;
  if (node->kind != vel_kind_discrete) return 1;  // the builder's type stands
  if (mode == 0) {
    e->type = vel_type_any;
    return 1;
  }
  switch (node->subtype) {
    case vel_subtype_numbered:
    case vel_subtype_interval:
      e->type = vel_type_number;
      return 1;
    case vel_subtype_labeled:
      e->type = vel_type_label;
      return 1;
    case vel_subtype_boolean:
      e->type = vel_type_boolean;
      return 1;
    default:
      return 0;
  }
}

// Types an `if` from the types of its branches; the table of outcomes is
// symmetric in the two branches.
int type_if(vel_expression_t *e) {
  vel_expression_t *const *args = e->arguments;
  if (!is_bool(args[0])) return 0;
  const uint32_t then_type = args[1]->type;
  const uint32_t else_type = args[2]->type;
  e->type = then_type;
  if (else_type == then_type) return 1;
  const uint32_t a = then_type > else_type ? then_type : else_type;
  const uint32_t b = then_type > else_type ? else_type : then_type;
  e->type = a;
  if (a >= vel_type_number && a <= vel_type_boolean) return 0;
  if (a == vel_type_any) {
    e->type = b;
    return 1;
  }
  if (a == vel_type_distribution) {
    e->type = b + 5;
    return 1;
  }
  if (a >= vel_type_distribution_or_number && a <= vel_type_distribution_or_boolean)
    return b == vel_type_distribution || b == a - 5 || b == vel_type_any;
  if (a == vel_type_distribution_or_any) {
    if (b >= vel_type_distribution_or_number && b <= vel_type_distribution_or_boolean)
      e->type = b;
    else if (b >= vel_type_number && b <= vel_type_any)
      e->type = b + 5;
  }
  return 1;
}

int check_noisy_or(const vel_expression_t *e) {
  vel_expression_t *const *args = e->arguments;
  for (size_t i = 0; args[i]; i += 2) {
    if (!is_bool(args[i]) || !args[i + 1] || !is_num(args[i + 1])) return 0;
  }
  return 1;
}

int check_truncate(const vel_expression_t *e) {
  vel_expression_t *const *args = e->arguments;
  if (is_num(args[0]) && args[1]->type == vel_type_distribution)
    return !args[2] || is_num(args[2]);
  return args[0]->type == vel_type_distribution && args[1] && is_num(args[1]) && !args[2];
}

int check_variance(const vel_expression_t *e) {
  const vel_expression_t *ref = e->arguments[0];
  if (!is_reference(ref)) return 0;
  const vel_node_t *node = ref->node;
  return node->kind >= 0 || node->category == vel_category_utility;
}

int check_equality(const vel_expression_t *e) {
  const uint32_t t0 = e->arguments[0]->type;
  const uint32_t t1 = e->arguments[1]->type;
  if (t0 > vel_type_any || t1 > vel_type_any) return 0;
  return t0 == t1 || t0 == vel_type_any || t1 == vel_type_any;
}

int check_operator(vel_expression_t *e) {
  const uint32_t code = e->operator_;
  vel_expression_t *const *args = e->arguments;
  if ((code >= vel_op_Normal && code <= vel_op_Distribution) ||
      (code >= vel_op_min && code <= vel_op_mod) ||
      (code >= vel_op_add && code <= vel_op_negate) || code == vel_op_less_than ||
      code == vel_op_greater_than || code == vel_op_less_or_equal ||
      code == vel_op_greater_or_equal)
    return all_arguments(e, is_num);
  switch (code) {
    case vel_op_NoisyOR:
      return check_noisy_or(e);
    case vel_op_truncate:
      return check_truncate(e);
    case vel_op_aggregate:
      return is_discrete_reference(args[0]) && is_discrete_reference(args[1]);
    case vel_op_probability:
    case vel_op_and:
    case vel_op_or:
    case vel_op_not:
      return all_arguments(e, is_bool);
    case vel_op_variance:
      return check_variance(e);
    case vel_op_quantile:
      return is_discrete_reference(args[0]) && is_num(args[1]);
    case vel_op_state_index_of:
      return is_discrete_reference(args[0]);
    case vel_op_equals:
    case vel_op_not_equals:
      return check_equality(e);
    case vel_op_if:
      return type_if(e);
    default:
      return 0;
  }
}

}  // namespace

extern "C" int _vel_assign_types(vel_expression_t *expression, uint32_t mode) {
  switch (expression->operator_) {
    case vel_op_number:
    case vel_op_label:
    case vel_op_truth:
      return 1;
    case vel_op_node:
      return type_node_reference(expression, mode);
    default:
      break;
  }
  if (!has_arguments(expression)) return 0;
  for (vel_expression_t *const *a = expression->arguments; *a; ++a)
    if (!_vel_assign_types(*a, mode)) return 0;
  return check_operator(expression);
}

int node_check_expression(vel_node_t *node, vel_expression_t *expression) {
  if (!_vel_assign_types(expression, 1)) return 0;
  const uint32_t type = expression->type;
  if (node->kind != vel_kind_discrete) return type == vel_type_number;
  switch (type) {
    case vel_type_number:
    case vel_type_distribution_or_number:
      return node->subtype == vel_subtype_numbered || node->subtype == vel_subtype_interval;
    case vel_type_label:
    case vel_type_distribution_or_label:
      return node->subtype == vel_subtype_labeled;
    case vel_type_boolean:
    case vel_type_distribution_or_boolean:
      return node->subtype == vel_subtype_boolean;
    case vel_type_distribution:
      return 1;
    default:
      return 0;
  }
}

int value_is_used(const vel_node_t *node, const vel_expression_t *expression) {
  const uint32_t code = expression->operator_;
  if (code == vel_op_node) return expression->node == node;
  // Leaves, state_index_of and aggregate read states, never values.
  if (!has_arguments(expression) || code == vel_op_state_index_of || code == vel_op_aggregate)
    return 0;
  for (vel_expression_t *const *a = expression->arguments; *a; ++a)
    if (value_is_used(node, *a)) return 1;
  return 0;
}

int node_value_is_used_in_model(const vel_model_t *model, const vel_node_t *node) {
  if (!model || !model->expressions) return 0;
  for (uint64_t i = 0; i < model->expression_count; ++i) {
    const vel_expression_t *e = model->expressions[i];
    if (e && value_is_used(node, e)) return 1;
  }
  return 0;
}

int get_unique_node(const vel_expression_t *expression, vel_node_t **slot) {
  const uint32_t code = expression->operator_;
  if (code == vel_op_node) {
    if (!*slot) {
      *slot = expression->node;
      return 1;
    }
    return *slot == expression->node;
  }
  if (!has_arguments(expression)) return 1;
  for (vel_expression_t *const *a = expression->arguments; *a; ++a)
    if (!get_unique_node(*a, slot)) return 0;
  return 1;
}
