// Interval probability from the two tails at both ends, subtracting in the
// smaller tail so that a small mass far out in one tail keeps its relative
// accuracy.
#pragma once

namespace vel::special {

// lower1/upper1 are P(X below) and P(X above) at the lower end, lower2/upper2
// the same at the upper end.  Returns the mass between the ends, or exactly
// 0 when the difference is not strictly positive (round-off, NaN).
inline double difference_in_smaller_tail(double lower1, double upper1, double lower2, double upper2) {
  const double d = upper2 >= lower1 ? lower2 - lower1 : upper1 - upper2;
  return d > 0.0 ? d : 0.0;
}

}  // namespace vel::special
