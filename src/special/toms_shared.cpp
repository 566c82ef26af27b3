// Auxiliary routines shared by the incomplete gamma and incomplete beta
// ratios: EXPARG, GAM1 and REXP of ACM TOMS 708, RLOG of ACM TOMS 654.
#include "special/toms_shared.h"

#include <cmath>

namespace vel::special {

// The published machine-constant lookup, fixed at the IEEE double exponent
// range (emax 1024, emin - 1 = -1022) and the published ln 2.
double exparg(int l) {
  constexpr double lnb = .69314718055995;
  if (l == 0) return 0.99999 * (1024.0 * lnb);
  return 0.99999 * (-1022.0 * lnb);
}

double gam1(double a) {
  static constexpr double p[7] = {
      .577215664901533E+00, -.409078193005776E+00, -.230975380857675E+00,
      .597275330452234E-01, .766968181649490E-02,  -.514889771323592E-02,
      .589597428611429E-03};
  static constexpr double q[5] = {.100000000000000E+01, .427569613095214E+00,
                                  .158451672430138E+00, .261132021441447E-01,
                                  .423244297896961E-02};
  static constexpr double r[9] = {
      -.422784335098468E+00, -.771330383816272E+00, -.244757765222226E+00,
      .118378989872749E+00,  .930357293360349E-03,  -.118290993445146E-01,
      .223047661158249E-02,  .266505979058923E-03,  -.132674909766242E-03};
  constexpr double s1 = .273076135303957E+00;
  constexpr double s2 = .559398236957378E-01;

  double t = a;
  const double d = a - 0.5;
  if (d > 0.0) t = d - 0.5;
  if (t == 0.0) return 0.0;
  if (t > 0.0) {
    const double top =
        (((((p[6] * t + p[5]) * t + p[4]) * t + p[3]) * t + p[2]) * t + p[1]) * t + p[0];
    const double bot = (((q[4] * t + q[3]) * t + q[2]) * t + q[1]) * t + 1.0;
    const double w = top / bot;
    if (d > 0.0) return (t / a) * ((w - 0.5) - 0.5);
    return a * w;
  }
  const double top =
      (((((((r[8] * t + r[7]) * t + r[6]) * t + r[5]) * t + r[4]) * t + r[3]) * t +
        r[2]) * t + r[1]) * t + r[0];
  const double bot = (s2 * t + s1) * t + 1.0;
  const double w = top / bot;
  if (d > 0.0) return t * w / a;
  return a * ((w + 0.5) + 0.5);
}

double rexp(double x) {
  constexpr double p1 = .914041914819518E-09;
  constexpr double p2 = .238082361044469E-01;
  constexpr double q1 = -.499999999085958E+00;
  constexpr double q2 = .107141568980644E+00;
  constexpr double q3 = -.119041179760821E-01;
  constexpr double q4 = .595130811860248E-03;

  if (std::fabs(x) <= 0.15) {
    return x * (((p2 * x + p1) * x + 1.0) /
                ((((q4 * x + q3) * x + q2) * x + q1) * x + 1.0));
  }
  const double w = std::exp(x);
  if (x > 0.0) return w * (0.5 + (0.5 - 1.0 / w));
  return (w - 0.5) - 0.5;
}

double rlog(double x) {
  constexpr double a = .566749439387324E-01;  // rlog(0.7)
  constexpr double b = .456512608815524E-01;  // rlog(4/3)
  constexpr double p0 = .333333333333333E+00;
  constexpr double p1 = -.224696413112536E+00;
  constexpr double p2 = .620886815375787E-02;
  constexpr double q1 = -.127408923933623E+01;
  constexpr double q2 = .354508718369557E+00;

  if (x < 0.61 || x > 1.57) return ((x - 0.5) - 0.5) - std::log(x);
  double u;
  double w1;
  if (x < 0.82) {
    u = (x - 0.7) / 0.7;
    w1 = a - u * 0.3;
  } else if (x > 1.18) {
    u = 0.75 * x - 1.0;
    w1 = b + u / 3.0;
  } else {
    u = (x - 0.5) - 0.5;
    w1 = 0.0;
  }
  const double r = u / (u + 2.0);
  const double t = r * r;
  const double w = ((p2 * t + p1) * t + p0) / ((q2 * t + q1) * t + 1.0);
  return 2.0 * t * (1.0 / (1.0 - r) - r * w) + w1;
}

}  // namespace vel::special
