// Interval masses P(x1 <= X < x2) of the discrete distributions, from the
// upper tails P(X >= c) at c1 = ceil(x1) and c2 = ceil(x2).
#include <cfloat>
#include <cmath>

#include "common/error.h"
#include "special/interval_difference.h"
#include "special/interval_ends.h"
#include "special/special.h"

namespace vel::special {

namespace {

// The upper tail P(X >= c) of the end at count c (lower and upper swapped
// with respect to the ratio's P and Q, as the ratio gives P(X >= c) first),
// or nullptr with the ratio's failure code set again.
template <typename Ratio>
const RatioEnd *count_end(RatioEnds &ends, double c, Ratio ratio) {
  RatioEnd &end = ends.at(c, [&](RatioEnd &made) { made.code = ratio(&made.lower, &made.upper); });
  if (end.code != 0) {
    _vel_error_code = end.code;
    return nullptr;
  }
  return &end;
}

// The mass of the counts c1 <= k < c2 from the tails at both ends: P(X >=
// c) and P(X < c) at c1, (1, 0) when c1 <= 0 (`from_start`), and at c2,
// (0, 1) when c2 lies beyond the support (`to_end`).
template <typename Ratio>
double between_counts(double c1, double c2, bool from_start, bool to_end, RatioEnds &ends, Ratio ratio) {
  double w1 = 1.0, v1 = 0.0, w2 = 0.0, v2 = 1.0;
  if (!from_start) {
    const RatioEnd *end = count_end(ends, c1, [&](double *w, double *v) { return ratio(w, v, c1); });
    if (!end) return -1.0;
    w1 = end->lower;
    v1 = end->upper;
  }
  if (!to_end) {
    const RatioEnd *end = count_end(ends, c2, [&](double *w, double *v) { return ratio(w, v, c2); });
    if (!end) return -1.0;
    w2 = end->lower;
    v2 = end->upper;
  }
  return difference_in_smaller_tail(w2, v2, w1, v1);
}

}  // namespace

// P(X >= c) = I_p(c, n - c + 1).
double binomial_interval(double x1, double x2, double n, double p, double q, RatioEnds &ends) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c1 > n || c2 <= 0.0 || c1 >= c2) return 0.0;
  return between_counts(c1, c2, !(c1 > 0.0), !(n - c2 + 1.0 > 0.0), ends, [&](double *w, double *v, double c) {
    return beta_ratio(w, v, c, n - c + 1.0, p, q);
  });
}

extern "C" double _vel_Binomial_cdf(double x1, double x2, double n, double p, double q) {
  RatioEnds ends;
  return binomial_interval(x1, x2, n, p, q, ends);
}

// P(X >= c) = P(c, lambda), the lower incomplete gamma ratio.
double poisson_interval(double x1, double x2, double lambda, RatioEnds &ends) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c2 <= 0.0 || c1 >= c2) return 0.0;
  if (lambda == 0.0) return c1 <= 0.0 ? 1.0 : 0.0;
  return between_counts(c1, c2, !(c1 > 0.0), !(c2 < DBL_MAX), ends, [&](double *w, double *v, double c) {
    return gamma_ratio(w, v, c, lambda);
  });
}

extern "C" double _vel_Poisson_cdf(double x1, double x2, double lambda) {
  RatioEnds ends;
  return poisson_interval(x1, x2, lambda, ends);
}

// Failures before the r-th success: P(X >= c) = I_q(c, r).
double negative_binomial_interval(double x1, double x2, double r, double p, double q, RatioEnds &ends) {
  const double c1 = std::ceil(x1);
  const double c2 = std::ceil(x2);
  _vel_error_code = 0;
  if (c2 <= 0.0 || c1 >= c2) return 0.0;
  return between_counts(c1, c2, !(c1 > 0.0), !(c2 < DBL_MAX), ends, [&](double *w, double *v, double c) {
    return beta_ratio(w, v, c, r, q, p);
  });
}

double NegativeBinomial_cdf(double x1, double x2, double r, double p, double q) {
  RatioEnds ends;
  return negative_binomial_interval(x1, x2, r, p, q, ends);
}

double Geometric_cdf(double x1, double x2, double p, double q) { return NegativeBinomial_cdf(x1, x2, 1.0, p, q); }

}  // namespace vel::special
