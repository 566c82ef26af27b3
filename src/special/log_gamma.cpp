// Logarithms of the gamma and beta functions used by ACM TOMS 708:
// gamln, gamln1, algdiv, betaln, bcorr and gsumln.
#include <cmath>

#include "special/beta_internal.h"

namespace vel::special {

namespace {

// Coefficients of del(a) = ln Gamma(a) - (a - 0.5) ln a + a - 0.5 ln(2 pi),
// shared by gamln, algdiv and bcorr.
const double c0 = .833333333333333E-01;
const double c1 = -.277777777760991E-02;
const double c2 = .793650666825390E-03;
const double c3 = -.595202931351870E-03;
const double c4 = .837308034031215E-03;
const double c5 = -.165322962780713E-02;

// del(b) - del(a + b) for b >= 8, with h = a/b (or b/a) already reduced to
// c = h/(1 + h) and x = 1/(1 + h) (or the swapped pair).
double stirling_difference(double b, double c, double x) {
  // s_n = (1 - x^n)/(1 - x)
  const double x2 = x * x;
  const double s3 = 1.0 + (x + x2);
  const double s5 = 1.0 + (x + x2 * s3);
  const double s7 = 1.0 + (x + x2 * s5);
  const double s9 = 1.0 + (x + x2 * s7);
  const double s11 = 1.0 + (x + x2 * s9);
  const double t = (1.0 / b) * (1.0 / b);
  double w = ((((c5 * s11 * t + c4 * s9) * t + c3 * s7) * t + c2 * s5) * t + c1 * s3) * t + c0;
  return w * (c / b);
}

}  // namespace

double gamln1(double a) {
  static const double p0 = .577215664901533E+00;
  static const double p1 = .844203922187225E+00;
  static const double p2 = -.168860593646662E+00;
  static const double p3 = -.780427615533591E+00;
  static const double p4 = -.402055799310489E+00;
  static const double p5 = -.673562214325671E-01;
  static const double p6 = -.271935708322958E-02;
  static const double q1 = .288743195473681E+01;
  static const double q2 = .312755088914843E+01;
  static const double q3 = .156875193295039E+01;
  static const double q4 = .361951990101499E+00;
  static const double q5 = .325038868253937E-01;
  static const double q6 = .667465618796164E-03;
  static const double r0 = .422784335098467E+00;
  static const double r1 = .848044614534529E+00;
  static const double r2 = .565221050691933E+00;
  static const double r3 = .156513060486551E+00;
  static const double r4 = .170502484022650E-01;
  static const double r5 = .497958207639485E-03;
  static const double s1 = .124313399877507E+01;
  static const double s2 = .548042109832463E+00;
  static const double s3 = .101552187439830E+00;
  static const double s4 = .713309612391000E-02;
  static const double s5 = .116165475989616E-03;

  if (a < 0.6) {
    const double w = ((((((p6 * a + p5) * a + p4) * a + p3) * a + p2) * a + p1) * a + p0) /
                     ((((((q6 * a + q5) * a + q4) * a + q3) * a + q2) * a + q1) * a + 1.0);
    return -a * w;
  }
  const double x = (a - 0.5) - 0.5;
  const double w = (((((r5 * x + r4) * x + r3) * x + r2) * x + r1) * x + r0) /
                   (((((s5 * x + s4) * x + s3) * x + s2) * x + s1) * x + 1.0);
  return x * w;
}

double gamln(double a) {
  static const double d = .418938533204673;  // 0.5 (ln(2 pi) - 1)

  if (a <= 0.8) return gamln1(a) - std::log(a);
  if (a <= 2.25) return gamln1((a - 0.5) - 0.5);
  if (a < 10.0) {
    const int n = static_cast<int>(a - 1.25);
    double t = a;
    double w = 1.0;
    for (int i = 1; i <= n; ++i) {
      t -= 1.0;
      w *= t;
    }
    return gamln1(t - 1.0) + std::log(w);
  }
  const double t = (1.0 / a) * (1.0 / a);
  const double w = (((((c5 * t + c4) * t + c3) * t + c2) * t + c1) * t + c0) / a;
  return (d + w) + (a - 0.5) * (std::log(a) - 1.0);
}

double gsumln(double a, double b) {
  const double x = sum_minus_two(a, b);
  if (x <= 0.25) return gamln1(1.0 + x);
  if (x <= 1.25) return gamln1(x) + alnrel(x);
  return gamln1(x - 1.0) + std::log(x * (1.0 + x));
}

double bcorr(double a0, double b0) {
  const double a = min_or_second(a0, b0);
  const double b = max_or_second(a0, b0);
  const double h = a / b;
  const double w = stirling_difference(b, h / (1.0 + h), 1.0 / (1.0 + h));
  const double t = (1.0 / a) * (1.0 / a);
  return (((((c5 * t + c4) * t + c3) * t + c2) * t + c1) * t + c0) / a + w;
}

double algdiv(double a, double b) {
  double c;
  double x;
  parameter_shares(a, b, &c, &x);
  const double d = a > b ? a + (b - 0.5) : b + (a - 0.5);
  const double w = stirling_difference(b, c, x);
  const double u = d * alnrel(a / b);
  const double v = a * (std::log(b) - 1.0);
  if (u > v) return (w - v) - u;
  return (w - u) - v;
}

double betaln(double a0, double b0) {
  static const double e = .918938533204673;  // 0.5 ln(2 pi)

  double a = min_or_second(a0, b0);
  double b = max_or_second(a0, b0);
  if (a >= 8.0) {
    const double w = bcorr(a, b);
    const double h = a / b;
    const double c = h / (1.0 + h);
    const double u = -(a - 0.5) * std::log(c);
    const double v = b * alnrel(h);
    if (u > v) return (((-0.5 * std::log(b) + e) + w) - v) - u;
    return (((-0.5 * std::log(b) + e) + w) - u) - v;
  }
  if (a < 1.0) {
    if (b >= 8.0) return gamln(a) + algdiv(a, b);
    return gamln(a) + (gamln(b) - gamln(a + b));
  }

  // 1 <= a < 8.
  double w = 0.0;
  if (a <= 2.0) {
    if (b <= 2.0) return gamln(a) + gamln(b) - gsumln(a, b);
    if (b >= 8.0) return gamln(a) + algdiv(a, b);
  } else if (b > 1000.0) {
    // Reduce a to (1, 2] when b is large.
    const int n = static_cast<int>(a - 1.0);
    w = 1.0;
    for (int i = 1; i <= n; ++i) {
      a -= 1.0;
      w *= a / (1.0 + a / b);
    }
    return (std::log(w) - n * std::log(b)) + (gamln(a) + algdiv(a, b));
  } else {
    // Reduce a to (1, 2].
    const int n = static_cast<int>(a - 1.0);
    w = 1.0;
    for (int i = 1; i <= n; ++i) {
      a -= 1.0;
      const double h = a / b;
      w *= h / (1.0 + h);
    }
    w = std::log(w);
    if (b >= 8.0) return w + gamln(a) + algdiv(a, b);
  }

  // Reduce b to (1, 2] when b < 8.
  const int n = static_cast<int>(b - 1.0);
  double z = 1.0;
  for (int i = 1; i <= n; ++i) {
    b -= 1.0;
    z *= b / (a + b);
  }
  return w + std::log(z) + (gamln(a) + (gamln(b) - gsumln(a, b)));
}

}  // namespace vel::special
