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

namespace {

// The three evaluators below differ only in the plain type and how a value
// of it is evaluated: follow the chosen branches of a mixed expression, then
// evaluate the plain value (no distribution) or store the distribution.
template <typename Value, typename Plain>
int distribution_or(const vel_expression_t *expression, uint32_t mixed_type, uint32_t plain_type,
                    Value *value, const vel_expression_t **slot, double *lower, double *upper,
                    Plain plain) {
  for (;;) {
    const uint32_t type = expression->type;
    if (type == mixed_type) {
      expression = chosen_branch(expression);
      if (!expression) return _vel_error_code;
    } else if (type == plain_type) {
      *slot = nullptr;
      return plain(expression, value);
    } else if (type == vel_type_distribution) {
      return store_distribution(expression, slot, lower, upper);
    } else {
      return vel::fail(vel_error_unsupported);
    }
  }
}

}  // namespace

int eval_distribution_or_numeric_expr(const vel_expression_t *expression, double *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper) {
  return distribution_or(expression, vel_type_distribution_or_number, vel_type_number, value, slot,
                         lower, upper, eval_numeric_expr);
}

int eval_distribution_or_label_expr(const vel_expression_t *expression, const char **value,
                                    const vel_expression_t **slot, double *lower,
                                    double *upper) {
  return distribution_or(expression, vel_type_distribution_or_label, vel_type_label, value, slot,
                         lower, upper, [](const vel_expression_t *e, const char **out) {
                           *out = eval_label_expr(e);
                           return *out ? 0 : _vel_error_code;
                         });
}

int eval_distribution_or_boolean_expr(const vel_expression_t *expression, int *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper) {
  return distribution_or(expression, vel_type_distribution_or_boolean, vel_type_boolean, value,
                         slot, lower, upper, [](const vel_expression_t *e, int *out) {
                           *out = eval_boolean_expr(e);
                           return *out < 0 ? _vel_error_code : 0;
                         });
}
