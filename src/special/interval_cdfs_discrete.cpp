// Interval masses P(x1 <= X < x2) of the discrete distributions, from the
// upper tails P(X >= c) at c1 = ceil(x1) and c2 = ceil(x2).
#include <cfloat>
#include <cmath>

#include "common/error.h"
#include "special/interval_difference.h"
#include "special/special.h"

// P(X >= c) = I_p(c, n - c + 1).
extern "C" double _vel_Binomial_cdf(double x1, double x2, double n, double p, double q) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c1 > n || c2 <= 0.0 || c1 >= c2) return 0.0;
  const double b1 = n - c1 + 1.0;
  const double b2 = n - c2 + 1.0;
  double w1 = 1.0, v1 = 0.0, w2 = 0.0, v2 = 1.0;
  if (c1 > 0.0 && beta_ratio(&w1, &v1, c1, b1, p, q) != 0) return -1.0;
  if (b2 > 0.0 && beta_ratio(&w2, &v2, c2, b2, p, q) != 0) return -1.0;
  return difference_in_smaller_tail(w2, v2, w1, v1);
}

// P(X >= c) = P(c, lambda), the lower incomplete gamma ratio.
extern "C" double _vel_Poisson_cdf(double x1, double x2, double lambda) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c2 <= 0.0 || c1 >= c2) return 0.0;
  if (lambda == 0.0) return c1 <= 0.0 ? 1.0 : 0.0;
  double w1 = 1.0, v1 = 0.0, w2 = 0.0, v2 = 1.0;
  if (c1 > 0.0 && gamma_ratio(&w1, &v1, c1, lambda) != 0) return -1.0;
  if (c2 < DBL_MAX && gamma_ratio(&w2, &v2, c2, lambda) != 0) return -1.0;
  return difference_in_smaller_tail(w2, v2, w1, v1);
}

// Failures before the r-th success: P(X >= c) = I_q(c, r).
double NegativeBinomial_cdf(double x1, double x2, double r, double p, double q) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c2 <= 0.0 || c1 >= c2) return 0.0;
  double w1 = 1.0, v1 = 0.0, w2 = 0.0, v2 = 1.0;
  if (c1 > 0.0 && beta_ratio(&w1, &v1, c1, r, q, p) != 0) return -1.0;
  if (c2 < DBL_MAX && beta_ratio(&w2, &v2, c2, r, q, p) != 0) return -1.0;
  return difference_in_smaller_tail(w2, v2, w1, v1);
}

double Geometric_cdf(double x1, double x2, double p, double q) { return NegativeBinomial_cdf(x1, x2, 1.0, p, q); }
