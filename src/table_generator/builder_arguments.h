// Where a distribution builder's arguments come from: their expressions,
// evaluated for the configuration at hand, or the values that the batch
// evaluation has computed for one of its lanes.
#pragma once

#include <cstddef>

#include "host/records.h"

struct builder_arguments_t {
  const vel_expression_t *distribution;  // the builder (operator and argument list)
  const double *values;  // batch: one value per argument (conditions 0 or 1); NULL: evaluate
  const bool *failed;    // batch: whether the argument's evaluation failed in the lane
};

// Argument i evaluated from its expression (argument_number's slow side).
int evaluate_argument(const builder_arguments_t &arguments, size_t i, double *value);

// Argument i as a number: 0, or the error code of its evaluation (set).
inline int argument_number(const builder_arguments_t &arguments, size_t i, double *value) {
  if (arguments.values == nullptr || arguments.failed[i]) return evaluate_argument(arguments, i, value);
  *value = arguments.values[i];
  return 0;
}
// Argument i as a condition: 1 true, 0 false, negative when it failed.
int argument_truth(const builder_arguments_t &arguments, size_t i);
// Whether the builder was written with an argument i (optional arguments).
inline bool has_argument(const builder_arguments_t &arguments, size_t i) {
  for (size_t k = 0; k <= i; ++k)
    if (arguments.distribution->arguments[k] == nullptr) return false;
  return true;
}
