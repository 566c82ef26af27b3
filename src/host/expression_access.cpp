// Reading expression records through the public API: operator, type and the
// operand that the operator carries.
#include <cmath>
#include <limits>

#include "host/record_queries.h"
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

// The expression when it is not NULL and carries the operand asked for, else
// NULL with a usage error naming the accessor.
const vel_expression_t *operand_of(const vel_expression_t *expression, bool fits,
                                   const char *accessor) {
  if (!check_not_null(accessor, "expression", expression)) return nullptr;
  if (!fits) {
    vel::host::guarded<int>(vel_error_usage, [&] {
      return usage(std::string(accessor) + ": the operator has no such operand");
    });
    return nullptr;
  }
  _vel_error_code = 0;
  return expression;
}

}  // namespace

extern "C" {

int vel_expression_get_operator(const vel_expression_t *expression) {
  return checked_get("vel_expression_get_operator", expression, 0,
                     [&] { return static_cast<int>(expression->operator_); });
}

int vel_expression_get_type(const vel_expression_t *expression) {
  return checked_get("vel_expression_get_type", expression, 0,
                     [&] { return static_cast<int>(expression->type); });
}

vel_expression_t *vel_expression_get_argument(const vel_expression_t *expression, size_t index) {
  const vel_expression_t *e =
      operand_of(expression, expression && has_arguments(expression), "vel_expression_get_argument");
  if (!e) return nullptr;
  for (size_t i = 0; i < index; ++i)
    if (!e->arguments[i]) return nullptr;
  return e->arguments[index];
}

double vel_expression_get_number(const vel_expression_t *expression) {
  const vel_expression_t *e = operand_of(
      expression, expression && expression->operator_ == vel_op_number, "vel_expression_get_number");
  return e ? e->number : std::numeric_limits<double>::quiet_NaN();
}

const char *vel_expression_get_label(const vel_expression_t *expression) {
  const vel_expression_t *e = operand_of(
      expression, expression && expression->operator_ == vel_op_label, "vel_expression_get_label");
  return e ? e->label : nullptr;
}

vel_node_t *vel_expression_get_node(const vel_expression_t *expression) {
  const vel_expression_t *e = operand_of(
      expression, expression && expression->operator_ == vel_op_node, "vel_expression_get_node");
  return e ? e->node : nullptr;
}

int vel_expression_get_truth(const vel_expression_t *expression) {
  const vel_expression_t *e = operand_of(
      expression, expression && expression->operator_ == vel_op_truth, "vel_expression_get_truth");
  return e ? e->truth : -1;
}

}  // extern "C"
