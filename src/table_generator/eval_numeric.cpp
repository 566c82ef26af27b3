// Numeric evaluation of an expression for the current states and values of
// the nodes it refers to.
#include <cmath>
#include <cstdint>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/numeric_operators.h"
#include "table_generator/table_generator.h"

namespace {

int binary(const vel_expression_t *e, double *result) {
  double a;
  double b;
  if (eval_numeric_expr(e->arguments[0], &a)) return _vel_error_code;
  if (eval_numeric_expr(e->arguments[1], &b)) return _vel_error_code;
  const int code = numeric::with_binary(e->operator_, [&]<uint32_t Op>() {
    return numeric::binary<Op>(a, b, result);
  });
  return code ? vel::fail(code) : 0;
}

int unary(const vel_expression_t *e, double *result) {
  double x;
  if (eval_numeric_expr(e->arguments[0], &x)) return _vel_error_code;
  const int code = numeric::with_unary(e->operator_, [&]<uint32_t Op>() {
    return numeric::unary<Op>(x, result);
  });
  return code ? vel::fail(code) : 0;
}

int extremum(const vel_expression_t *e, double *result) {
  vel_expression_t *const *args = e->arguments;
  if (eval_numeric_expr(args[0], result)) return _vel_error_code;
  const bool is_min = e->operator_ == vel_op_min;
  for (size_t i = 1; args[i]; ++i) {
    double t;
    if (eval_numeric_expr(args[i], &t)) return _vel_error_code;
    *result = is_min ? numeric::min_step(*result, t) : numeric::max_step(*result, t);
  }
  return 0;
}

int conditional(const vel_expression_t *e, double *result) {
  const int condition = eval_boolean_expr(e->arguments[0]);
  if (condition < 0) return _vel_error_code;
  return eval_numeric_expr(e->arguments[condition ? 1 : 2], result);
}

int state_index_of(const vel_expression_t *e, double *result) {
  const int64_t index = e->arguments[0]->node->state_index;
  if (index < 0) return vel::fail(vel_error_computation);
  *result = static_cast<double>(index);
  return 0;
}

int quantile(const vel_expression_t *e, double *result) {
  double p;
  if (eval_numeric_expr(e->arguments[1], &p)) return _vel_error_code;
  if (p < 0 || p > 1) return vel::fail(vel_error_invalid_argument);
  *result = vel_node_get_quantile(e->arguments[0]->node, p);
  return _vel_error_code;
}

// Sum of the beliefs of the states in which the condition holds; 0.0 for a
// node without states.  The node's state_index and value are borrowed for
// the sweep and always given back.
int sum_beliefs(vel_node_t *node, const vel_expression_t *condition, double *result) {
  const float *beliefs = node->state_count > 0 ? node->belief_table->data : nullptr;
  const double saved_value = node->value;
  double sum = 0.0;
  for (uint64_t i = 0; i < node->state_count; ++i) {
    if (!(beliefs[i] > 0)) continue;
    node->state_index = static_cast<int64_t>(i);
    if (node->subtype == vel_subtype_numbered)
      node->value = _vel_node_get_state_value(node, static_cast<int64_t>(i));
    const int holds = eval_boolean_expr(condition);
    if (holds < 0) {
      node->state_index = -1;
      node->value = saved_value;
      return _vel_error_code;
    }
    if (holds) sum += static_cast<double>(beliefs[i]);
  }
  node->state_index = -1;
  node->value = saved_value;
  *result = sum;
  return 0;
}

int probability(const vel_expression_t *e, double *result) {
  const vel_expression_t *condition = e->arguments[0];
  vel_node_t *node = nullptr;
  // With several nodes the first one met is used; the answer is not needed.
  get_unique_node(condition, &node);
  if (!node) return vel::fail(vel_error_invalid_expression);
  if (node->subtype == vel_subtype_interval && value_is_used(node, condition))
    return vel::fail(vel_error_invalid_expression);
  if (_vel_node_check_inference_results(node)) return _vel_error_code;
  if (node->state_index >= 0) {
    const int holds = eval_boolean_expr(condition);
    if (holds < 0) return _vel_error_code;
    *result = holds ? 1.0 : 0.0;
    return 0;
  }
  return sum_beliefs(node, condition, result);
}

}  // namespace

int eval_numeric_expr(const vel_expression_t *expression, double *result) {
  switch (expression->operator_) {
    case vel_op_number:
      *result = expression->number;
      return 0;
    case vel_op_node:
      *result = expression->node->value;
      return 0;
    case vel_op_add:
    case vel_op_subtract:
    case vel_op_multiply:
    case vel_op_divide:
    case vel_op_power:
    case vel_op_mod:
      return binary(expression, result);
    case vel_op_negate:
    case vel_op_log:
    case vel_op_log2:
    case vel_op_log10:
    case vel_op_exp:
    case vel_op_sin:
    case vel_op_cos:
    case vel_op_tan:
    case vel_op_sinh:
    case vel_op_cosh:
    case vel_op_tanh:
    case vel_op_sqrt:
    case vel_op_abs:
    case vel_op_floor:
    case vel_op_ceil:
      return unary(expression, result);
    case vel_op_min:
    case vel_op_max:
      return extremum(expression, result);
    case vel_op_if:
      return conditional(expression, result);
    case vel_op_state_index_of:
      return state_index_of(expression, result);
    case vel_op_probability:
      return probability(expression, result);
    case vel_op_variance:
      *result = expression->arguments[0]->node->variance;
      return 0;
    case vel_op_quantile:
      return quantile(expression, result);
    default:
      return vel::fail(vel_error_unsupported);
  }
}
