// Interval probabilities P(x1 < X < x2) of the continuous distributions.
#include <cfloat>
#include <cmath>

#include "common/error.h"
#include "special/interval_difference.h"
#include "special/special.h"

namespace {

// The breakpoint of calerf's first range: below it erf is accurate, above it
// erfc is.
constexpr double erf_breakpoint = 0.46875;

// Area under the rising edge of the triangle (a, m, b) between x and y;
// with a and b exchanged, the area under the falling edge.
double triangular_cdf(double x, double y, double a, double m, double b) {
  return ((y - a) + (x - a)) * (y - x) / ((b - a) * (m - a));
}

// max and min that turn a NaN bound into the support's end.
double at_least(double x, double bound) { return x > bound ? x : bound; }
double at_most(double x, double bound) { return x < bound ? x : bound; }

}  // namespace

extern "C" double _vel_Gauss_cdf(double x1, double x2, double mean, double variance) {
  if (x1 >= x2) return 0.0;
  const double s = std::sqrt(variance + variance);
  double z1 = (x1 - mean) / s;
  double z2 = (x2 - mean) / s;
  if (std::fabs(z1) > std::fabs(z2)) {
    const double t = z1;
    z1 = -z2;
    z2 = -t;
  }
  double d;
  if (z1 >= erf_breakpoint)
    d = calerf(1, z1) - calerf(1, z2);
  else if (z2 <= erf_breakpoint)
    d = calerf(0, z2) - calerf(0, z1);
  else if (z1 < -erf_breakpoint)
    d = 2.0 - (calerf(1, -z1) + calerf(1, z2));
  else
    d = calerf(1, z1) - calerf(1, z2);
  return d > 0.0 ? 0.5 * d : 0.0;
}

double LogNormal_cdf(double x1, double x2, double mean, double variance) {
  if (x1 >= x2 || x2 <= 0.0) return 0.0;
  const double l1 = x1 > 0.0 ? std::log(x1) : -DBL_MAX;
  return _vel_Gauss_cdf(l1, std::log(x2), mean, variance);
}

double Beta_cdf(double x1, double x2, double alpha, double beta, double lower, double upper) {
  const double range = upper - lower;
  x1 = at_least(x1, lower);
  x2 = at_most(x2, upper);
  _vel_error_code = 0;
  if (x1 >= x2) return 0.0;
  const double u1 = (x1 - lower) / range;
  const double u2 = (x2 - lower) / range;
  double p1, q1, p2, q2;
  if (beta_ratio(&p1, &q1, alpha, beta, u1, 1.0 - u1) != 0) return -1.0;
  if (beta_ratio(&p2, &q2, alpha, beta, u2, 1.0 - u2) != 0) return -1.0;
  return difference_in_smaller_tail(p1, q1, p2, q2);
}

double Gamma_cdf(double x1, double x2, double shape, double scale) {
  if (x1 < 0.0) x1 = 0.0;
  if (x1 >= x2) return 0.0;
  double p1, q1;
  if (gamma_ratio(&p1, &q1, shape, x1 / scale) != 0) return -1.0;
  if (x2 >= DBL_MAX) return q1;
  double p2, q2;
  if (gamma_ratio(&p2, &q2, shape, x2 / scale) != 0) return -1.0;
  return difference_in_smaller_tail(p1, q1, p2, q2);
}

double Weibull_cdf(double x1, double x2, double k, double lambda) {
  x1 = at_least(x1, 0.0);
  x2 = at_least(x2, 0.0);
  const bool upper_infinite = x2 >= DBL_MAX;
  double d;
  if (k == 1.0) {
    // The exponential case, without pow.
    if (upper_infinite) return std::exp(-x1 / lambda);
    d = std::exp(-x1 / lambda) - std::exp(-x2 / lambda);
  } else {
    if (upper_infinite) return std::exp(-std::pow(x1 / lambda, k));
    d = std::exp(-std::pow(x1 / lambda, k)) - std::exp(-std::pow(x2 / lambda, k));
  }
  return d > 0.0 ? d : 0.0;
}

double Exponential_cdf(double x1, double x2, double scale) { return Weibull_cdf(x1, x2, 1.0, scale); }

double Uniform_cdf(double x1, double x2, double a, double b) {
  const double lo = at_least(x1, a);
  const double hi = at_most(x2, b);
  if (lo >= hi) return 0.0;
  return (hi - lo) / (b - a);
}

double Triangular_cdf(double x1, double x2, double a, double m, double b) {
  const double lo = at_least(x1, a);
  const double hi = at_most(x2, b);
  if (lo >= hi) return 0.0;
  // Tested in this order so that m == a reaches only the falling edge and
  // m == b only the rising one: neither divides by zero.
  if (m >= hi) return triangular_cdf(lo, hi, a, m, b);
  if (lo < m) return triangular_cdf(lo, m, a, m, b) + triangular_cdf(hi, m, b, m, a);
  return triangular_cdf(hi, lo, b, m, a);
}
