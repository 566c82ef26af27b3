// The normal interval probability from values computed once per bound: the
// branches and operations of _vel_Gauss_cdf, with each bound's error function
// value shared by the two states it separates.
#pragma once

#include <cmath>

#include "special/special.h"

using namespace vel::special;

namespace bare {

constexpr double erf_breakpoint = 0.46875;

// z of one bound and the one calerf value the interval function can need at
// it: erf(z) where |z| is at most the breakpoint (erf is odd there, and
// erfc = 1 - erf), erfc(|z|) beyond it.
struct GaussBound {
  double z;
  double e;
  bool small;
};

inline GaussBound gauss_bound(double x, double mean, double s) {
  GaussBound g;
  g.z = (x - mean) / s;
  g.small = std::fabs(g.z) <= erf_breakpoint;
  g.e = g.small ? calerf(0, g.z) : calerf(1, std::fabs(g.z));
  return g;
}

// erf(sign * z) and erfc(sign * z), sign being 1 or -1, as calerf gives them.
inline double erf_at(const GaussBound &g, double sign) { return sign * g.e; }
inline double erfc_at(const GaussBound &g, double sign) {
  if (g.small) return 1.0 - sign * g.e;
  return sign * g.z < 0.0 ? 2.0 - g.e : g.e;
}

// P(x1 < X < x2) for bounds x1 < x2.
inline double gauss_interval(const GaussBound &lo, const GaussBound &hi) {
  // Reflected so that |a| <= |b|, as the interval function does.
  const bool reflect = std::fabs(lo.z) > std::fabs(hi.z);
  const GaussBound &ga = reflect ? hi : lo;
  const GaussBound &gb = reflect ? lo : hi;
  const double sign = reflect ? -1.0 : 1.0;
  const double a = sign * ga.z, b = sign * gb.z;
  double d;
  if (a >= erf_breakpoint)
    d = erfc_at(ga, sign) - erfc_at(gb, sign);
  else if (b <= erf_breakpoint)
    d = erf_at(gb, sign) - erf_at(ga, sign);
  else if (a < -erf_breakpoint)
    d = 2.0 - (erfc_at(ga, -sign) + erfc_at(gb, sign));
  else
    d = erfc_at(ga, sign) - erfc_at(gb, sign);
  return d > 0.0 ? 0.5 * d : 0.0;
}

}  // namespace bare
