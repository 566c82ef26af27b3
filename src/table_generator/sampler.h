// The one sampler of interval parents, for probability and utility rows
// alike: numbered parents take their state's value, an interval parent takes
// each of its sample points in turn (the midpoints of `samples` equal parts
// of a bounded state, the one point unbounded_interval_point gives an
// unbounded one) and the rows computed at the points are averaged, with
// their entry-wise minimum and maximum.  A row is three rows of n doubles
// (mean, minimum, maximum); a later sample point is computed in the three
// rows after the block and folded in.
#pragma once

#include <bit>
#include <cstdint>

#include "host/records.h"
#include "table_generator/table_generator.h"

// Folds the rows at `scratch` (one later sample point) into the block.
inline void fold_sample(double *block, const double *scratch, uint64_t n) {
  double *mean = block, *low = block + n, *high = block + 2 * n;
  for (uint64_t j = 0; j < n; ++j) {
    mean[j] += scratch[j];
    if (scratch[n + j] < low[j]) low[j] = scratch[n + j];
    if (high[j] < scratch[2 * n + j]) high[j] = scratch[2 * n + j];
  }
}

// A sum of `samples` points over their count.  When the count is a power of
// two its reciprocal is exact, and the product is the quotient to the bit at
// a fraction of a division's cost.
inline double per_sample(double sum, uint64_t samples) {
  if ((samples & (samples - 1)) == 0) {
    // 2^-k, built from its exponent bits rather than by a division.
    const uint64_t exponent = 1023 - static_cast<uint64_t>(std::countr_zero(samples));
    return sum * std::bit_cast<double>(exponent << 52);
  }
  return sum / static_cast<double>(samples);
}

// Walks `nodes` up to the first position for which at_leaf(position) holds,
// then calls leaf(position, block); the block needs three rows of n per
// interval parent after it.
template <typename AtLeaf, typename Leaf>
int sample_parents(vel_node_t **nodes, double *block, uint64_t n, uint64_t samples, AtLeaf at_leaf,
                   Leaf &leaf) {
  if (at_leaf(nodes)) return leaf(nodes, block);
  vel_node_t *parent = nodes[0];
  if (parent->subtype == vel_subtype_numbered) {
    parent->value = parent->state_values[parent->state_index];
  } else if (parent->subtype == vel_subtype_interval) {
    const double lo = parent->state_values[parent->state_index];
    const double hi = parent->state_values[parent->state_index + 1];
    double point;
    if (unbounded_interval_point(lo, hi, &point)) {
      parent->value = point;
    } else {
      const double width = (hi - lo) / static_cast<double>(samples);
      parent->value = lo + 0.5 * width;
      if (int code = sample_parents(nodes + 1, block, n, samples, at_leaf, leaf)) return code;
      if (width == 0.0) return 0;
      double *scratch = block + 3 * n;
      for (uint64_t k = 1; k < samples; ++k) {
        parent->value = lo + (static_cast<double>(k) + 0.5) * width;
        if (int code = sample_parents(nodes + 1, scratch, n, samples, at_leaf, leaf)) return code;
        fold_sample(block, scratch, n);
      }
      for (uint64_t j = 0; j < n; ++j) block[j] = per_sample(block[j], samples);
      return 0;
    }
  }
  return sample_parents(nodes + 1, block, n, samples, at_leaf, leaf);
}
