// Unwrapping of distribution-typed expressions, and the entry points that
// accept either a plain value or a distribution.
#include "common/error.h"
#include "table_generator/table_generator.h"

namespace {

// Narrows [lower, upper] by one truncate; a NaN bound changes nothing.
int apply_truncation(const vel_expression_t *e, double *lower, double *upper,
                     const vel_expression_t **distribution) {
  vel_expression_t *const *args = e->arguments;
  const vel_expression_t *lower_bound = nullptr;
  const vel_expression_t *upper_bound;
  if (args[0]->type == vel_type_number) {
    lower_bound = args[0];
    *distribution = args[1];
    upper_bound = args[2];
  } else {
    *distribution = args[0];
    upper_bound = args[1];
  }
  double v;
  if (lower_bound) {
    if (eval_numeric_expr(lower_bound, &v)) return _vel_error_code;
    if (v > *lower) *lower = v;
  }
  if (upper_bound) {
    if (eval_numeric_expr(upper_bound, &v)) return _vel_error_code;
    if (*upper > v) *upper = v;
  }
  return 0;
}

// The branch of a mixed `if` chosen by its condition, or NULL on failure.
const vel_expression_t *chosen_branch(const vel_expression_t *e) {
  if (e->operator_ != vel_op_if) {
    vel::fail(vel_error_unsupported);
    return nullptr;
  }
  const int condition = eval_boolean_expr(e->arguments[0]);
  if (condition < 0) return nullptr;
  return e->arguments[condition ? 1 : 2];
}

int store_distribution(const vel_expression_t *e, const vel_expression_t **slot,
                       double *lower, double *upper) {
  *slot = eval_distribution_expr(e, lower, upper);
  return *slot ? 0 : _vel_error_code;
}

}  // namespace

const vel_expression_t *eval_distribution_expr(const vel_expression_t *expression,
                                               double *lower, double *upper) {
  for (;;) {
    switch (expression->operator_) {
      case vel_op_truncate:
        if (apply_truncation(expression, lower, upper, &expression)) return nullptr;
        break;
      case vel_op_if: {
        const int condition = eval_boolean_expr(expression->arguments[0]);
        if (condition < 0) return nullptr;
        expression = expression->arguments[condition ? 1 : 2];
        break;
      }
      default:
        return expression;
    }
  }
}

int eval_distribution_or_numeric_expr(const vel_expression_t *expression, double *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper) {
  switch (expression->type) {
    case vel_type_distribution_or_number: {
      const vel_expression_t *branch = chosen_branch(expression);
      if (!branch) return _vel_error_code;
      return eval_distribution_or_numeric_expr(branch, value, slot, lower, upper);
    }
    case vel_type_number:
      *slot = nullptr;
      return eval_numeric_expr(expression, value);
    case vel_type_distribution:
      return store_distribution(expression, slot, lower, upper);
    default:
      return vel::fail(vel_error_unsupported);
  }
}

int eval_distribution_or_label_expr(const vel_expression_t *expression, const char **value,
                                    const vel_expression_t **slot, double *lower,
                                    double *upper) {
  switch (expression->type) {
    case vel_type_distribution_or_label: {
      const vel_expression_t *branch = chosen_branch(expression);
      if (!branch) return _vel_error_code;
      return eval_distribution_or_label_expr(branch, value, slot, lower, upper);
    }
    case vel_type_label:
      *slot = nullptr;
      *value = eval_label_expr(expression);
      return *value ? 0 : _vel_error_code;
    case vel_type_distribution:
      return store_distribution(expression, slot, lower, upper);
    default:
      return vel::fail(vel_error_unsupported);
  }
}

int eval_distribution_or_boolean_expr(const vel_expression_t *expression, int *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper) {
  switch (expression->type) {
    case vel_type_distribution_or_boolean: {
      const vel_expression_t *branch = chosen_branch(expression);
      if (!branch) return _vel_error_code;
      return eval_distribution_or_boolean_expr(branch, value, slot, lower, upper);
    }
    case vel_type_boolean:
      *slot = nullptr;
      *value = eval_boolean_expr(expression);
      return *value < 0 ? _vel_error_code : 0;
    case vel_type_distribution:
      return store_distribution(expression, slot, lower, upper);
    default:
      return vel::fail(vel_error_unsupported);
  }
}
