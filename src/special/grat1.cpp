// P(a, x) and Q(a, x) for a <= 1: GRAT1 of ACM TOMS 708, the series and
// continued fraction that the incomplete beta expansion BGRAT relies on.
#include <cmath>

#include "special/special.h"
#include "special/toms_shared.h"

namespace vel::special {

// P(a, x) and Q(a, x) for a < 1 and x < 1.1 from the Taylor series of
// P(a, x) / x^a; GRATIO and GRAT1 publish the same branch with different
// tolerances.
int small_x_ratios(double a, double x, double tol, double *p, double *q) {
  double an = 3.0;
  double c = x;
  double sum = x / (a + 3.0);
  double t;
  do {
    an += 1.0;
    c = -c * (x / an);
    t = c / (a + an);
    sum += t;
  } while (std::fabs(t) > tol);
  const double j = a * x * ((sum / 6.0 - 0.5 / (a + 2.0)) * x + 1.0 / (a + 1.0));

  const double z = a * std::log(x);
  const double h = gam1(a);
  const double g = 1.0 + h;
  const bool use_rexp = x < 0.25 ? z > -.13394 : a < x / 2.59;
  if (!use_rexp) {
    *p = std::exp(z) * g * (0.5 + (0.5 - j));
    *q = 0.5 + (0.5 - *p);
    return 0;
  }
  const double l = rexp(z);
  const double w = 0.5 + (0.5 + l);
  *q = (w * j - l) * g - h;
  if (*q < 0.0) {
    *p = 1.0;
    *q = 0.0;
  } else {
    *p = 0.5 + (0.5 - *q);
  }
  return 0;
}

// Q(a, x) / r for x >= 1.1 by the continued fraction that GRATIO and GRAT1
// both publish, iterated until two successive convergents agree within tol.
double continued_fraction_q_over_r(double a, double x, double tol) {
  double a2nm1 = 1.0;
  double a2n = 1.0;
  double b2nm1 = x;
  double b2n = x + (1.0 - a);
  double c = 1.0;
  double am0;
  double an0;
  do {
    a2nm1 = x * a2n + c * a2nm1;
    b2nm1 = x * b2n + c * b2nm1;
    am0 = a2nm1 / b2nm1;
    c += 1.0;
    const double cma = c - a;
    a2n = a2nm1 + cma * a2n;
    b2n = b2nm1 + cma * b2n;
    an0 = a2n / b2n;
  } while (std::fabs(an0 - am0) >= tol * an0);
  return an0;
}

int grat1(double a, double x, double r, double *p, double *q, double eps) {
  if (a * x == 0.0) {
    if (x <= a) {
      *p = 0.0;
      *q = 1.0;
    } else {
      *p = 1.0;
      *q = 0.0;
    }
    return 0;
  }
  if (a == 0.5) {
    if (x < 0.25) {
      *p = erf1(std::sqrt(x));
      *q = 0.5 + (0.5 - *p);
    } else {
      *q = erfc1(0, std::sqrt(x));
      *p = 0.5 + (0.5 - *q);
    }
    return 0;
  }

  if (x < 1.1) return small_x_ratios(a, x, 0.1 * eps / (a + 1.0), p, q);

  *q = r * continued_fraction_q_over_r(a, x, eps);
  *p = 0.5 + (0.5 - *q);
  return 0;
}

}  // namespace vel::special
