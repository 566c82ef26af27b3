// The larger and the smaller of two doubles for the special functions, with
// one NaN policy: a is kept only when the comparison holds, so a NaN a gives
// b (a bound replaces a NaN point), and on equality b is returned.
#pragma once

namespace vel::special {

inline double max_or_second(double a, double b) { return a > b ? a : b; }
inline double min_or_second(double a, double b) { return a < b ? a : b; }

}  // namespace vel::special
