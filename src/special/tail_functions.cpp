// Upper-tail probabilities P(X >= x) for the statistical tests of the
// library.
#include <cfloat>
#include <cstdint>

#include "special/special.h"

namespace vel::special {

extern "C" double _vel_normal_c(double x) { return _vel_Gauss_cdf(x, DBL_MAX, 0.0, 1.0); }

extern "C" double _vel_chi_square_c(double x, uint64_t df) {
  return Gamma_cdf(x, DBL_MAX, 0.5 * static_cast<double>(df), 2.0);
}

extern "C" double _vel_F_distribution_c(double x, uint64_t d1, double d2) {
  if (d2 <= 0.0) return 0.0;
  const double n1 = static_cast<double>(d1);
  // Guards d1 * x + d2 against overflow; the upper tail's limit is 0.
  if (x >= (DBL_MAX - d2) / n1) return 0.0;
  const double t = n1 * x;
  return Beta_cdf(t / (t + d2), 1.0, 0.5 * n1, 0.5 * d2, 0.0, 1.0);
}

}  // namespace vel::special
