// The distribution of a sum of a random number of independent copies of an
// interval-valued variable, discretised onto intervals (aggregate_sum.cpp
// describes the model and the method).
#pragma once

#include <cstdint>

namespace vel::special {

// Masses of S = X_1 + ... + X_N on the intervals (bounds[i], bounds[i + 1]),
// i < n: N's state i is the count i with weight count_beliefs[i]; X has
// belief item_beliefs[i] on (item_bounds[i], item_bounds[i + 1]).  Returns 0,
// vel_error_state_range when the intervals miss part of S's support, or
// vel_error_computation when the weights are unusable or the work would
// exceed its budget.  May throw std::bad_alloc.
int aggregate_sum(const float *count_beliefs, uint64_t count_states, const float *item_beliefs,
                  const double *item_bounds, uint64_t item_states, const double *bounds, uint64_t n,
                  double *out);

}  // namespace vel::special
