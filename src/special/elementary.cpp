// Elementary auxiliaries of ACM TOMS 708: alnrel, rlog1 and psi.
#include <cmath>
#include <cstdint>

#include "special/extended_precision.h"
#include "special/beta_internal.h"

namespace vel::special {

// 80-bit sums: a + b - 1 and a + b - 2 cancel when a + b is near 1 or 2.
double sum_minus_one(double a, double b) {
  const long double sum = static_cast<long double>(a) + static_cast<long double>(b) - 1.0L;
  return static_cast<double>(sum);
}

double sum_minus_two(double a, double b) {
  const long double sum = static_cast<long double>(a) + static_cast<long double>(b) - 2.0L;
  return static_cast<double>(sum);
}

double alnrel(double a) {
  static const double p1 = -.129418923021993E+01;
  static const double p2 = .405303492862024E+00;
  static const double p3 = -.178874546012214E-01;
  static const double q1 = -.162752256355323E+01;
  static const double q2 = .747811014037616E+00;
  static const double q3 = -.845104217945565E-01;

  if (std::fabs(a) > 0.375) return std::log(1.0 + a);
  const double t = a / (a + 2.0);
  const double t2 = t * t;
  const double w = (((p3 * t2 + p2) * t2 + p1) * t2 + 1.0) / (((q3 * t2 + q2) * t2 + q1) * t2 + 1.0);
  return 2.0 * t * w;
}

double rlog1(double x) {
  static const double a = .566749439387324E-01;
  static const double b = .456512608815524E-01;
  static const double p0 = .333333333333333E+00;
  static const double p1 = -.224696413112536E+00;
  static const double p2 = .620886815375787E-02;
  static const double q1 = -.127408923933623E+01;
  static const double q2 = .354508718369557E+00;

  if (x < -0.39 || x > 0.57) {
    const double w = (x + 0.5) + 0.5;
    return x - std::log(w);
  }
  // Reduce x to |h| <= 0.18 around the offsets -0.3 and 1/3.
  double h;
  double w1;
  if (x < -0.18) {
    h = (x + 0.3) / 0.7;
    w1 = a - h * 0.3;
  } else if (x > 0.18) {
    h = 0.75 * x - 0.25;
    w1 = b + h / 3.0;
  } else {
    h = x;
    w1 = 0.0;
  }
  const double r = h / (h + 2.0);
  const double t = r * r;
  const double w = ((p2 * t + p1) * t + p0) / ((q2 * t + q1) * t + 1.0);
  return 2.0 * t * (1.0 / (1.0 - r) - r * w) + w1;
}

// Digamma, Cody, Strecok and Thacher's approximations as modified by Morris.
double psi(double xx) {
  static const double piov4 = .785398163397448E0;
  static const double dx0 = 1.461632144968362341262659542325721325E0;
  static const double p1[7] = {.895385022981970E-02, .477762828042627E+01, .142441585084029E+03,
                               .118645200713425E+04, .363351846806499E+04, .413810161269013E+04,
                               .130560269827897E+04};
  static const double q1[6] = {.448452573429826E+02, .520752771467162E+03, .221000799247830E+04,
                               .364127349079381E+04, .190831076596300E+04, .691091682714533E-05};
  static const double p2[4] = {-.212940445131011E+01, -.701677227766759E+01, -.448616543918019E+01,
                               -.648157123766197E+00};
  static const double q2[4] = {.322703493791143E+02, .892920700481861E+02, .546117738103215E+02,
                               .777788548522962E+01};
  // 2^52, the reciprocal of the double epsilon: beyond it x has no
  // fractional part and psi(x) = ln x to working precision.
  static const double xmax1 = 4503599627370496.0;
  static const double xsmall = 1e-9;

  double x = xx;
  double aug = 0.0;
  if (x < 0.5) {
    // Reflection psi(1 - x) = psi(x) + pi cot(pi x).
    if (std::fabs(x) <= xsmall) {
      if (x == 0.0) return 0.0;
      aug = -1.0 / x;  // 1/x stands in for pi cot(pi x)
    } else {
      double w = -x;
      double sgn = piov4;
      if (w <= 0.0) {
        w = -w;
        sgn = -sgn;
      }
      if (w >= xmax1) return 0.0;
      // Reduce to the fractional part of 4|x| and the quadrant it lies in.
      int64_t nq = static_cast<int64_t>(w);
      w -= static_cast<double>(nq);
      nq = static_cast<int64_t>(w * 4.0);
      w = 4.0 * (w - static_cast<double>(nq) * .25);
      int64_t n = nq / 2;
      if (n + n != nq) w = 1.0 - w;
      const double z = piov4 * w;
      int64_t m = n / 2;
      if (m + m != n) sgn = -sgn;
      n = (nq + 1) / 2;
      m = n / 2;
      m += m;
      if (m == n) {
        if (z == 0.0) return 0.0;  // pole at a non-positive integer
        aug = sgn * ((std::cos(z) / std::sin(z)) * 4.0);
      } else {
        aug = sgn * ((std::sin(z) / std::cos(z)) * 4.0);
      }
    }
    x = 1.0 - x;
  }

  if (x <= 3.0) {
    double den = x;
    double upper = p1[0] * x;
    for (int i = 0; i < 5; ++i) {
      den = (den + q1[i]) * x;
      upper = (upper + p1[i + 1]) * x;
    }
    den = (upper + p1[6]) / (den + q1[5]);
    const double xmx0 = x - dx0;
    return den * xmx0 + aug;
  }
  if (x < xmax1) {
    const double w = 1.0 / (x * x);
    double den = w;
    double upper = p2[0] * w;
    for (int i = 0; i < 3; ++i) {
      den = (den + q2[i]) * w;
      upper = (upper + p2[i + 1]) * w;
    }
    aug = upper / (den + q2[3]) - 0.5 / x + aug;
  }
  return aug + std::log(x);
}

}  // namespace vel::special
