// Boolean evaluation: 1 true, 0 false, negative when evaluation failed.
#include <climits>
#include <cstring>

#include "common/error.h"
#include "table_generator/numeric_operators.h"
#include "table_generator/table_generator.h"

namespace {

// Compares the two arguments by the type of the first: 1 equal, 0 unequal,
// -1 failure.
int equal_arguments(const vel_expression_t *e) {
  const vel_expression_t *first = e->arguments[0];
  const vel_expression_t *second = e->arguments[1];
  switch (first->type) {
    case vel_type_boolean: {
      const int a = eval_boolean_expr(first);
      if (a < 0) return -1;
      const int b = eval_boolean_expr(second);
      if (b < 0) return -1;
      return a == b;
    }
    case vel_type_number: {
      double a;
      double b;
      if (eval_numeric_expr(first, &a) || eval_numeric_expr(second, &b)) return -1;
      return a == b;
    }
    case vel_type_label: {
      const char *a = eval_label_expr(first);
      if (!a) return -1;
      const char *b = eval_label_expr(second);
      if (!b) return -1;
      return std::strcmp(a, b) == 0;
    }
    default:
      vel::fail(vel_error_unsupported);
      return -1;
  }
}

int compare(const vel_expression_t *e) {
  double a;
  double b;
  if (eval_numeric_expr(e->arguments[0], &a) || eval_numeric_expr(e->arguments[1], &b))
    return -1;
  return numeric::with_comparison(e->operator_, [&]<uint32_t Op>() -> int {
    return numeric::compare<Op>(a, b);
  });
}

int node_truth(const vel_node_t *node) {
  const int64_t index = node->state_index;
  if (index < 0) {
    vel::fail(vel_error_computation);
    return index < INT_MIN ? -1 : static_cast<int>(index);
  }
  return index != 0;
}

}  // namespace

int eval_boolean_expr(const vel_expression_t *expression) {
  switch (expression->operator_) {
    case vel_op_node:
      return node_truth(expression->node);
    case vel_op_truth:
      return expression->truth;
    default:
      break;
  }
  vel_expression_t *const *args = expression->arguments;
  switch (expression->operator_) {
    case vel_op_if: {
      const int condition = eval_boolean_expr(args[0]);
      if (condition < 0) return -1;
      return eval_boolean_expr(args[condition ? 1 : 2]);
    }
    case vel_op_and:
      for (; *args; ++args) {
        const int v = eval_boolean_expr(*args);
        if (v < 0) return -1;
        if (!v) return 0;
      }
      return 1;
    case vel_op_or:
      for (; *args; ++args) {
        const int v = eval_boolean_expr(*args);
        if (v < 0) return -1;
        if (v) return 1;
      }
      return 0;
    case vel_op_not: {
      const int v = eval_boolean_expr(args[0]);
      if (v < 0) return -1;
      return !v;
    }
    case vel_op_equals:
    case vel_op_not_equals: {
      const int equal = equal_arguments(expression);
      if (equal < 0) return -1;
      return expression->operator_ == vel_op_equals ? equal : !equal;
    }
    case vel_op_less_than:
    case vel_op_greater_than:
    case vel_op_less_or_equal:
    case vel_op_greater_or_equal:
      return compare(expression);
    default:
      vel::fail(vel_error_unsupported);
      return -1;
  }
}
