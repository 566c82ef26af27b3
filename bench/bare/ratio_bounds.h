// Which bounds of a row the interval functions need.  Bounds are clamped to
// an interval [lo, hi] first (truncation, support); a state whose clamped ends
// do not increase is 0 without any call, so a bound is needed only where one
// of its two states has positive length.
#pragma once

#include <cstddef>
#include <vector>

namespace bare {

// clamped[j] = bounds[j] inside [lo, hi]; needed[j] as said above.
inline void clamp_bounds(const std::vector<double> &bounds, double lo, double hi,
                         std::vector<double> &clamped, std::vector<char> &needed) {
  const size_t count = bounds.size();
  for (size_t j = 0; j < count; ++j) {
    const double x = bounds[j];
    clamped[j] = x < lo ? lo : x > hi ? hi : x;
  }
  for (size_t j = 0; j < count; ++j) {
    needed[j] = (j > 0 && clamped[j - 1] < clamped[j]) || (j + 1 < count && clamped[j] < clamped[j + 1]);
  }
}

}  // namespace bare
