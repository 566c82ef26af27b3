// Continued fraction of ACM TOMS 708 for I_x(a, b) with a, b > 1 (bfrac).
#include <cmath>

#include "special/beta_internal.h"

namespace vel::special {

double bfrac(double a, double b, double x, double y, double lambda, double eps) {
  const double prefactor = brcomp(a, b, x, y);
  if (prefactor == 0.0) return 0.0;

  const double c = 1.0 + lambda;
  const double c0 = b / a;
  const double c1 = 1.0 + 1.0 / a;
  const double yp1 = y + 1.0;

  double n = 0.0;
  double p = 1.0;
  double s = a + 1.0;
  double an = 0.0;
  double bn = 1.0;
  double anp1 = 1.0;
  double bnp1 = c / c1;
  double r = c1 / c;
  for (;;) {
    n += 1.0;
    double t = n / a;
    const double w = n * (b - n) * x;
    double e = a / s;
    const double alpha = (p * (p + c0) * e * e) * (w * x);
    e = (1.0 + t) / (c1 + t + t);
    const double beta = n + w / s + e * (c + n * yp1);
    p = 1.0 + t;
    s += 2.0;

    t = alpha * an + beta * anp1;
    an = anp1;
    anp1 = t;
    t = alpha * bn + beta * bnp1;
    bn = bnp1;
    bnp1 = t;

    const double r0 = r;
    r = anp1 / bnp1;
    // Negated test so that a NaN ends the iteration instead of looping.
    if (!(std::fabs(r - r0) > eps * r)) break;

    // Rescale to keep the recurrence in range.
    an /= bnp1;
    bn /= bnp1;
    anp1 = r;
    bnp1 = 1.0;
  }
  return prefactor * r;
}

}  // namespace vel::special
