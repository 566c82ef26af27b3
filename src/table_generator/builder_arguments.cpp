#include "table_generator/builder_arguments.h"

#include "common/error.h"
#include "table_generator/table_generator.h"

int evaluate_argument(const builder_arguments_t &arguments, size_t i, double *value) {
  if (arguments.values == nullptr) return eval_numeric_expr(arguments.distribution->arguments[i], value);
  // A failed lane is redone by the scalar path, which reports it properly.
  return vel::fail(vel_error_computation);
}

int argument_truth(const builder_arguments_t &arguments, size_t i) {
  if (arguments.values == nullptr) return eval_boolean_expr(arguments.distribution->arguments[i]);
  if (arguments.failed[i]) {
    vel::fail(vel_error_computation);
    return -1;
  }
  return arguments.values[i] != 0.0 ? 1 : 0;
}
