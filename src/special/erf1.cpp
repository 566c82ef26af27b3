// erf(x) and erfc(x) / exp(x^2) erfc(x): ERF and ERFC1 of ACM TOMS 708.
#include <cmath>

#include "special/special.h"
#include "special/toms_shared.h"

namespace vel::special {

namespace {

constexpr double c = .564189583547756;  // 1/sqrt(pi), published digits

// |x| <= 0.5: erf(x) = x (1 + A(x^2)) / B(x^2); a[0] multiplies the highest power.
constexpr double a[5] = {.771058495001320E-04, -.133733772997339E-02,
                         .323076579225834E-01, .479137145607681E-01,
                         .128379167095513E+00};
constexpr double b[3] = {.301048631703895E-02, .538971687740286E-01,
                         .375795757275549E+00};
// 0.5 < |x| <= 4: exp(x^2) erfc(|x|) = P(|x|) / Q(|x|).
constexpr double p[8] = {-1.36864857382717E-07, 5.64195517478974E-01,
                         7.21175825088309E+00,  4.31622272220567E+01,
                         1.52989285046940E+02,  3.39320816734344E+02,
                         4.51918953711873E+02,  3.00459261020162E+02};
constexpr double q[8] = {1.00000000000000E+00, 1.27827273196294E+01,
                         7.70001529352295E+01, 2.77585444743988E+02,
                         6.38980264465631E+02, 9.31354094850610E+02,
                         7.90950925327898E+02, 3.00459260956983E+02};
// |x| > 4: exp(x^2) erfc(|x|) = (c - u R(u) / S(u)) / |x|, u = 1/x^2.
constexpr double r[5] = {2.10144126479064E+00, 2.62370141675169E+01,
                         2.13688200555087E+01, 4.65807828718470E+00,
                         2.82094791773523E-01};
constexpr double s[4] = {9.41537750555460E+01, 1.87114811799590E+02,
                         9.90191814623914E+01, 1.80124575948747E+01};

double small_ratio(double t) {
  const double top = ((((a[0] * t + a[1]) * t + a[2]) * t + a[3]) * t + a[4]) + 1.0;
  const double bot = ((b[0] * t + b[1]) * t + b[2]) * t + 1.0;
  return top / bot;
}

double middle_top(double ax) {
  return ((((((p[0] * ax + p[1]) * ax + p[2]) * ax + p[3]) * ax + p[4]) * ax +
           p[5]) * ax + p[6]) * ax + p[7];
}

double middle_bot(double ax) {
  return ((((((q[0] * ax + q[1]) * ax + q[2]) * ax + q[3]) * ax + q[4]) * ax +
           q[5]) * ax + q[6]) * ax + q[7];
}

double large_top(double t) {
  return (((r[0] * t + r[1]) * t + r[2]) * t + r[3]) * t + r[4];
}

double large_bot(double t) {
  return (((s[0] * t + s[1]) * t + s[2]) * t + s[3]) * t + 1.0;
}

}  // namespace

double erf1(double x) {
  const double ax = std::fabs(x);
  if (ax <= 0.5) return x * small_ratio(x * x);
  double result;
  if (ax <= 4.0) {
    result = 0.5 + (0.5 - std::exp(-x * x) * middle_top(ax) / middle_bot(ax));
  } else if (ax >= 5.8) {
    return x > 0.0 ? 1.0 : -1.0;
  } else {
    const double x2 = x * x;
    const double t = 1.0 / x2;
    result = (c - large_top(t) / (x2 * large_bot(t))) / ax;
    result = 0.5 + (0.5 - std::exp(-x2) * result);
  }
  return x < 0.0 ? -result : result;
}

double erfc1(int ind, double x) {
  const double ax = std::fabs(x);
  if (ax <= 0.5) {
    const double t = x * x;
    const double result = 0.5 + (0.5 - x * small_ratio(t));
    return ind != 0 ? std::exp(t) * result : result;
  }
  double result;
  if (ax <= 4.0) {
    result = middle_top(ax) / middle_bot(ax);
  } else {
    if (x <= -5.6) return ind != 0 ? 2.0 * std::exp(x * x) : 2.0;
    if (ind == 0 && (x > 100.0 || x * x > -exparg(1))) return 0.0;
    const double t = (1.0 / x) * (1.0 / x);
    result = (c - t * large_top(t) / large_bot(t)) / ax;
  }

  // result is exp(x^2) erfc(|x|).
  if (ind != 0) {
    if (x < 0.0) result = 2.0 * std::exp(x * x) - result;
    return result;
  }
  // exp(-x^2) from x^2 split into its rounded value w and the exact
  // remainder e: the rounding error of x^2 alone would cost up to x^2/2 ulps.
  const double w = x * x;
  const double e = std::fma(x, x, -w);
  result = ((0.5 + (0.5 - e)) * std::exp(-w)) * result;
  if (x < 0.0) result = 2.0 - result;
  return result;
}

}  // namespace vel::special
