// Interval probabilities P(x1 < X < x2) of the continuous distributions.
#include <cfloat>
#include <cmath>
#include <utility>

#include "common/error.h"
#include "special/interval_difference.h"
#include "special/interval_ends.h"
#include "special/min_max.h"
#include "special/special.h"

namespace vel::special {

namespace {

// The breakpoint of calerf's first range: below it erf is accurate, above it
// erfc is.
constexpr double erf_breakpoint = 0.46875;

// Area under the rising edge of the triangle (a, m, b) between x and y;
// with a and b exchanged, the area under the falling edge.
double triangular_cdf(double x, double y, double a, double m, double b) {
  return ((y - a) + (x - a)) * (y - x) / ((b - a) * (m - a));
}

// calerf(jint, z) or calerf(jint, -z) of the end, computed once.
double erf_value(GaussEnd &end, unsigned jint, bool negated) {
  const unsigned i = 2 * jint + (negated ? 1 : 0);
  if (!(end.known >> i & 1u)) {
    end.value[i] = calerf(jint, negated ? -end.z : end.z);
    end.known |= 1u << i;
  }
  return end.value[i];
}

GaussEnd &gauss_end(GaussEnds &ends, double x, double mean, double s) {
  return ends.at(x, [&](GaussEnd &end) {
    end.z = (x - mean) / s;
    end.known = 0;
  });
}

// The tails of a ratio function's end, or -1 with its failure code set again.
template <typename Ratio>
RatioEnd *ratio_end(RatioEnds &ends, double point, Ratio ratio) {
  RatioEnd &end = ends.at(point, [&](RatioEnd &made) { made.code = ratio(&made.lower, &made.upper); });
  if (end.code != 0) {
    _vel_error_code = end.code;
    return nullptr;
  }
  return &end;
}

}  // namespace

double gauss_interval(double x1, double x2, double mean, double variance, GaussEnds &ends) {
  if (x1 >= x2) return 0.0;
  const double s = std::sqrt(variance + variance);
  GaussEnd *e1 = &gauss_end(ends, x1, mean, s);
  GaussEnd *e2 = &gauss_end(ends, x2, mean, s);
  // Reflected so that |z1| <= |z2|: then z1 = -(z of the upper end) and
  // z2 = -(z of the lower end), each value read with its sign flipped.
  double z1 = e1->z, z2 = e2->z;
  bool n1 = false, n2 = false;
  if (std::fabs(z1) > std::fabs(z2)) {
    std::swap(e1, e2);
    z1 = -e1->z;
    z2 = -e2->z;
    n1 = n2 = true;
  }
  double d;
  if (z1 >= erf_breakpoint)
    d = erf_value(*e1, 1, n1) - erf_value(*e2, 1, n2);
  else if (z2 <= erf_breakpoint)
    d = erf_value(*e2, 0, n2) - erf_value(*e1, 0, n1);
  else if (z1 < -erf_breakpoint)
    d = 2.0 - (erf_value(*e1, 1, !n1) + erf_value(*e2, 1, n2));
  else
    d = erf_value(*e1, 1, n1) - erf_value(*e2, 1, n2);
  return d > 0.0 ? 0.5 * d : 0.0;
}

extern "C" double _vel_Gauss_cdf(double x1, double x2, double mean, double variance) {
  GaussEnds ends;
  return gauss_interval(x1, x2, mean, variance, ends);
}

double log_normal_interval(double x1, double x2, double mean, double variance, GaussEnds &ends) {
  if (x1 >= x2 || x2 <= 0.0) return 0.0;
  const double l1 = x1 > 0.0 ? std::log(x1) : -DBL_MAX;
  return gauss_interval(l1, std::log(x2), mean, variance, ends);
}

double LogNormal_cdf(double x1, double x2, double mean, double variance) {
  GaussEnds ends;
  return log_normal_interval(x1, x2, mean, variance, ends);
}

double beta_interval(double x1, double x2, double alpha, double beta, double lower, double upper,
                     RatioEnds &ends) {
  const double range = upper - lower;
  x1 = max_or_second(x1, lower);
  x2 = min_or_second(x2, upper);
  _vel_error_code = 0;
  if (x1 >= x2) return 0.0;
  auto at = [&](double x) {
    const double u = (x - lower) / range;
    return ratio_end(ends, x, [&](double *p, double *q) { return beta_ratio(p, q, alpha, beta, u, 1.0 - u); });
  };
  const RatioEnd *e1 = at(x1);
  if (!e1) return -1.0;
  const RatioEnd *e2 = at(x2);
  if (!e2) return -1.0;
  return difference_in_smaller_tail(e1->lower, e1->upper, e2->lower, e2->upper);
}

double Beta_cdf(double x1, double x2, double alpha, double beta, double lower, double upper) {
  RatioEnds ends;
  return beta_interval(x1, x2, alpha, beta, lower, upper, ends);
}

double gamma_interval(double x1, double x2, double shape, double scale, RatioEnds &ends) {
  if (x1 < 0.0) x1 = 0.0;
  if (x1 >= x2) return 0.0;
  auto at = [&](double x) {
    return ratio_end(ends, x, [&](double *p, double *q) { return gamma_ratio(p, q, shape, x / scale); });
  };
  const RatioEnd *e1 = at(x1);
  if (!e1) return -1.0;
  if (x2 >= DBL_MAX) return e1->upper;
  const RatioEnd *e2 = at(x2);
  if (!e2) return -1.0;
  return difference_in_smaller_tail(e1->lower, e1->upper, e2->lower, e2->upper);
}

double Gamma_cdf(double x1, double x2, double shape, double scale) {
  RatioEnds ends;
  return gamma_interval(x1, x2, shape, scale, ends);
}

double weibull_interval(double x1, double x2, double k, double lambda, TailEnds &ends) {
  x1 = max_or_second(x1, 0.0);
  x2 = max_or_second(x2, 0.0);
  // The upper tail exp(-(x / lambda)^k); the exponential case without pow.
  auto tail = [&](double x) -> double {
    return ends.at(x, [&](double &made) {
      made = k == 1.0 ? std::exp(-x / lambda) : std::exp(-std::pow(x / lambda, k));
    });
  };
  if (x2 >= DBL_MAX) return tail(x1);
  const double d = tail(x1) - tail(x2);
  return d > 0.0 ? d : 0.0;
}

double Weibull_cdf(double x1, double x2, double k, double lambda) {
  TailEnds ends;
  return weibull_interval(x1, x2, k, lambda, ends);
}

double Exponential_cdf(double x1, double x2, double scale) { return Weibull_cdf(x1, x2, 1.0, scale); }

double Uniform_cdf(double x1, double x2, double a, double b) {
  const double lo = max_or_second(x1, a);
  const double hi = min_or_second(x2, b);
  if (lo >= hi) return 0.0;
  return (hi - lo) / (b - a);
}

double Triangular_cdf(double x1, double x2, double a, double m, double b) {
  const double lo = max_or_second(x1, a);
  const double hi = min_or_second(x2, b);
  if (lo >= hi) return 0.0;
  // Tested in this order so that m == a reaches only the falling edge and
  // m == b only the rising one: neither divides by zero.
  if (m >= hi) return triangular_cdf(lo, hi, a, m, b);
  if (lo < m) return triangular_cdf(lo, m, a, m, b) + triangular_cdf(hi, m, b, m, a);
  return triangular_cdf(hi, lo, b, m, a);
}

}  // namespace vel::special
