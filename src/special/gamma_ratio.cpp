// Incomplete gamma ratios P(a, x) and Q(a, x): GRATIO of ACM TOMS 654 at its
// most accurate setting (IND = 0).
#include <cmath>

#include "common/error.h"
#include "special/special.h"
#include "special/toms_shared.h"

namespace vel::special {

namespace {

constexpr double e = 2.220446049250313e-16;  // double-precision epsilon
constexpr double acc = 5.E-15;               // max(5.E-15, e)
constexpr double e0 = .25E-3;                // half-width of the lambda = 1 band
constexpr double x0 = 31.0;                  // continued fraction below, asymptotic series above
constexpr double big = 20.0;                 // smallest a of the large-a branch
constexpr double alog10 = 2.30258509299405;  // ln 10, published digits
constexpr double rt2pin = 0.3989422804014327;  // 1/sqrt(2 pi)
constexpr double rtpi = 1.77245385090552;      // sqrt(pi), published digits
constexpr double third = .333333333333333;

// Temme's coefficients: dk[0] is dk0 (d0[0] is -third), dk[n] is dk(n).
constexpr double d0[14] = {
    -third,                .833333333333333E-01, -.148148148148148E-01,
    .115740740740741E-02,  .352733686067019E-03, -.178755144032922E-03,
    .391926317852244E-04,  -.218544851067999E-05, -.185406221071516E-05,
    .829671134095309E-06,  -.176659527368261E-06, .670785354340150E-08,
    .102618097842403E-07,  -.438203601845335E-08};
constexpr double d1[13] = {
    -.185185185185185E-02, -.347222222222222E-02, .264550264550265E-02,
    -.990226337448560E-03, .205761316872428E-03,  -.401877572016461E-06,
    -.180985503344900E-04, .764916091608111E-05,  -.161209008945634E-05,
    .464712780280743E-08,  .137863344691572E-06,  -.575254560351770E-07,
    .119516285997781E-07};
constexpr double d2[11] = {
    .413359788359788E-02,  -.268132716049383E-02, .771604938271605E-03,
    .200938786008230E-05,  -.107366532263652E-03, .529234488291201E-04,
    -.127606351886187E-04, .342357873409614E-07,  .137219573090629E-05,
    -.629899213838006E-06, .142806142060642E-06};
constexpr double d3[9] = {
    .649434156378601E-03,  .229472093621399E-03,  -.469189494395256E-03,
    .267720632062839E-03,  -.756180167188398E-04, -.239650511386730E-06,
    .110826541153473E-04,  -.567495282699160E-05, .142309007324359E-05};
constexpr double d4[7] = {
    -.861888290916712E-03, .784039221720067E-03, -.299072480303190E-03,
    -.146384525788434E-05, .664149821546512E-04, -.396836504717943E-04,
    .113757269706784E-04};
constexpr double d5[5] = {-.336798553366358E-03, -.697281375836586E-04,
                          .277275324495939E-03, -.199325705161888E-03,
                          .679778047793721E-04};
constexpr double d6[3] = {.531307936463992E-03, -.592166437353694E-03,
                          .270878209671804E-03};
constexpr double d70 = .344367606892378E-03;

// Number of dk(n) terms taken, k = 0..6: the full sets and the shorter sets
// used close to the transition point x = a.
constexpr int full_terms[7] = {13, 12, 10, 8, 6, 4, 2};
constexpr int short_terms[7] = {7, 6, 5, 4, 2, 2, 1};

double horner(const double *c, int degree, double z) {
  double sum = c[degree];
  for (int i = degree - 1; i >= 0; --i) sum = sum * z + c[i];
  return sum;
}

// The sum over k of Ck(z) u^k of Temme's expansion.
double temme_sum(const int *terms, double z, double u) {
  const double c0 = horner(d0, terms[0], z);
  const double c1 = horner(d1, terms[1], z);
  const double c2 = horner(d2, terms[2], z);
  const double c3 = horner(d3, terms[3], z);
  const double c4 = horner(d4, terms[4], z);
  const double c5 = horner(d5, terms[5], z);
  const double c6 = horner(d6, terms[6], z);
  return ((((((d70 * u + c6) * u + c5) * u + c4) * u + c3) * u + c2) * u + c1) * u + c0;
}

int set_ratios(double *p, double *q, double p_value, double q_value) {
  *p = p_value;
  *q = q_value;
  return 0;
}

// The limits P = 0, Q = 1 below the transition point and P = 1, Q = 0 above.
int set_limits(double *p, double *q, double a, double x) {
  return x <= a ? set_ratios(p, q, 0.0, 1.0) : set_ratios(p, q, 1.0, 0.0);
}

int set_from_p(double *p, double *q, double p_value) {
  return set_ratios(p, q, p_value, 0.5 + (0.5 - p_value));
}

int set_from_q(double *p, double *q, double q_value) {
  return set_ratios(p, q, 0.5 + (0.5 - q_value), q_value);
}

// Q for a >= 1 with 2a an integer and a <= x < x0: the finite sums
// Q = exp(-x) sum x^k / k! (integer a), or erfc(sqrt x) plus half-integer terms.
int finite_sum(double *p, double *q, double a, double x, int i) {
  double sum;
  double t;
  int n;
  double c;
  if (a == static_cast<double>(i)) {
    sum = std::exp(-x);
    t = sum;
    n = 1;
    c = 0.0;
  } else {
    const double rtx = std::sqrt(x);
    sum = erfc1(0, rtx);
    t = std::exp(-x) / (rtpi * rtx);
    n = 0;
    c = -0.5;
  }
  while (n != i) {
    ++n;
    c += 1.0;
    t = (x * t) / c;
    sum += t;
  }
  return set_from_q(p, q, sum);
}

// x <= max(a, ln 10): Taylor series for P / r.  The first terms above 1e-3
// are kept and added last, smallest first.
int p_series(double *p, double *q, double a, double x, double r) {
  double wk[20];
  double apn = a + 1.0;
  double t = x / apn;
  wk[0] = t;
  int n = 2;
  for (; n <= 20; ++n) {
    apn += 1.0;
    t *= x / apn;
    if (t <= 1.E-3) break;
    wk[n - 1] = t;
  }
  if (n > 20) n = 20;

  double sum = t;
  const double tol = 0.5 * acc;
  do {
    apn += 1.0;
    t *= x / apn;
    sum += t;
  } while (t > tol);
  for (int k = n - 1; k >= 1; --k) sum += wk[k - 1];
  return set_from_p(p, q, (r / a) * (1.0 + sum));
}

// x >= x0: asymptotic expansion of Q / r, summed like p_series.
int q_asymptotic(double *p, double *q, double a, double x, double r) {
  double wk[20];
  double amn = a - 1.0;
  double t = amn / x;
  wk[0] = t;
  int n = 2;
  for (; n <= 20; ++n) {
    amn -= 1.0;
    t *= amn / x;
    if (std::fabs(t) <= 1.E-3) break;
    wk[n - 1] = t;
  }
  if (n > 20) n = 20;

  double sum = t;
  while (std::fabs(t) > acc) {
    amn -= 1.0;
    t *= amn / x;
    sum += t;
  }
  for (int k = n - 1; k >= 1; --k) sum += wk[k - 1];
  return set_from_q(p, q, (r / x) * (1.0 + sum));
}

// Continued fraction for Q / r.
int q_continued_fraction(double *p, double *q, double a, double x, double r) {
  return set_from_q(p, q, r * continued_fraction_q_over_r(a, x, std::fmax(5.0 * e, acc)));
}

// Temme's expansion in z = sqrt(2 rlog(l)), signed like l - 1, with c the
// exponential factor and w the leading erfc term.
int temme_result(double *p, double *q, double l, double rta, double c, double w,
                 double t) {
  if (l >= 1.0) return set_from_q(p, q, c * (w + rt2pin * t / rta));
  return set_from_p(p, q, c * (w - rt2pin * t / rta));
}

double temme_z(double z, double l) {
  const double root = std::sqrt(z + z);
  return l < 1.0 ? -root : root;
}

}  // namespace

int gamma_ratio(double *p, double *q, double a, double x) {
  // Written so that NaN arguments fail here too; x/a is meaningless when
  // both are infinite.
  if (!(a >= 0.0) || !(x >= 0.0) || (a == 0.0 && x == 0.0) ||
      (std::isinf(a) && std::isinf(x))) {
    return vel::fail(vel_error_usage);
  }
  _vel_error_code = 0;
  if (a * x == 0.0) return set_limits(p, q, a, x);
  // The formulas below would form inf - inf.
  if (std::isinf(x)) return set_ratios(p, q, 1.0, 0.0);

  if (a < 1.0) {
    if (a == 0.5) {
      if (x < 0.25) return set_from_p(p, q, erf1(std::sqrt(x)));
      return set_from_q(p, q, erfc1(0, std::sqrt(x)));
    }
    if (x < 1.1) return small_x_ratios(a, x, 3.0 * acc / (a + 1.0), p, q);
    const double u = a * std::exp(a * std::log(x) - x);
    if (u == 0.0) return set_ratios(p, q, 1.0, 0.0);
    return q_continued_fraction(p, q, a, x, u * (1.0 + gam1(a)));
  }

  double r;
  if (a < big) {
    if (a <= x && x < x0) {
      const double twoa = a + a;
      const int m = static_cast<int>(twoa);
      if (twoa == static_cast<double>(m)) return finite_sum(p, q, a, x, m / 2);
    }
    r = std::exp(a * std::log(x) - x) / Gamma(a);
  } else {
    const double l = x / a;
    if (l == 0.0) return set_ratios(p, q, 0.0, 1.0);
    const double s = 0.5 + (0.5 - l);
    const double z = rlog(l);
    if (z >= 700.0 / a) {
      if (std::fabs(s) <= 2.0 * e) return vel::fail(vel_error_computation);
      return set_limits(p, q, a, x);
    }
    const double y = a * z;
    const double rta = std::sqrt(a);
    if (std::fabs(s) <= e0 / rta) {
      // The band around x = a where lambda = x/a is 1 to working accuracy.
      if (a * e * e > 3.28E-3) return vel::fail(vel_error_computation);
      const double c = 0.5 + (0.5 - y);
      const double w = (0.5 - std::sqrt(y) * (0.5 + (0.5 - y / 3.0)) / rtpi) / c;
      const double t = temme_sum(short_terms, temme_z(z, l), 1.0 / a);
      return temme_result(p, q, l, rta, c, w, t);
    }
    if (std::fabs(s) <= 0.4) {
      if (std::fabs(s) <= 2.0 * e && a * e * e > 3.28E-3) {
        return vel::fail(vel_error_computation);
      }
      const double c = std::exp(-y);
      const double w = 0.5 * erfc1(1, std::sqrt(y));
      const int *terms = std::fabs(s) <= 1.E-3 ? short_terms : full_terms;
      const double t = temme_sum(terms, temme_z(z, l), 1.0 / a);
      return temme_result(p, q, l, rta, c, w, t);
    }
    // Stirling's correction -1/(12a) + 1/(360a^3) - 1/(1260a^5) + 1/(1680a^7).
    const double t = (1.0 / a) * (1.0 / a);
    const double t1 = (((0.75 * t - 1.0) * t + 3.5) * t - 105.0) / (a * 1260.0) - y;
    r = rt2pin * rta * std::exp(t1);
  }

  if (r == 0.0) return set_limits(p, q, a, x);
  if (x <= std::fmax(a, alog10)) return p_series(p, q, a, x, r);
  if (x < x0) return q_continued_fraction(p, q, a, x, r);
  return q_asymptotic(p, q, a, x, r);
}

}  // namespace vel::special
