// Incomplete gamma ratio, gamma function, glog and the shared TOMS routines.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "vel/vel.h"
#include "special/special.h"
#include "special/toms_shared.h"

namespace {

constexpr double max_double = 1.7976931348623157e308;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double relative_error(double got, double want) {
  return std::fabs(got - want) / std::fabs(want);
}

TEST(GammaRatio, ArgumentErrorsLeaveResultsUntouched) {
  const double cases[][2] = {{-1.0, 1.0}, {1.0, -1.0}, {0.0, 0.0},
                             {nan, 1.0},  {1.0, nan},  {inf, inf}};
  for (const auto &c : cases) {
    double p = 7.0;
    double q = 7.0;
    EXPECT_EQ(gamma_ratio(&p, &q, c[0], c[1]), vel_error_usage) << c[0] << ", " << c[1];
    EXPECT_EQ(vel_error_code(), vel_error_usage);
    EXPECT_EQ(p, 7.0);
    EXPECT_EQ(q, 7.0);
  }
}

TEST(GammaRatio, LimitCasesAndCodeReset) {
  struct Case {
    double a, x, p, q;
  };
  const Case cases[] = {
      {0.0, 2.0, 1.0, 0.0},        {2.0, 0.0, 0.0, 1.0},
      {2.5, max_double, 1.0, 0.0},  // exp(-x) underflows
      {max_double, 3.0, 0.0, 1.0},  // x/a underflows
      {0.3, max_double, 1.0, 0.0},  {3.0, inf, 1.0, 0.0},
      {inf, 3.0, 0.0, 1.0},
  };
  for (const Case &c : cases) {
    double p = 7.0;
    double q = 7.0;
    ASSERT_EQ(gamma_ratio(&p, &q, -1.0, 1.0), vel_error_usage);  // leaves a code to clear
    EXPECT_EQ(gamma_ratio(&p, &q, c.a, c.x), 0) << c.a << ", " << c.x;
    EXPECT_EQ(vel_error_code(), 0);
    EXPECT_EQ(p, c.p) << c.a << ", " << c.x;
    EXPECT_EQ(q, c.q) << c.a << ", " << c.x;
  }
}

TEST(GammaRatio, HalfUsesTheErrorFunctionPair) {
  for (double x : {1e-6, 0.01, 0.2, 0.2499}) {
    double p;
    double q;
    ASSERT_EQ(gamma_ratio(&p, &q, 0.5, x), 0);
    EXPECT_EQ(p, erf1(std::sqrt(x))) << x;
    EXPECT_EQ(q, 0.5 + (0.5 - p)) << x;
  }
  for (double x : {0.25, 1.0, 9.0, 700.0}) {
    double p;
    double q;
    ASSERT_EQ(gamma_ratio(&p, &q, 0.5, x), 0);
    EXPECT_EQ(q, erfc1(0, std::sqrt(x))) << x;
    EXPECT_EQ(p, 0.5 + (0.5 - q)) << x;
  }
}

TEST(GammaRatio, AccuracyUnreachableForHugeAAtTheTransition) {
  // a e^2 crosses 3.28e-3 between a = 1e28 and 1e29.
  double p = 7.0;
  double q = 7.0;
  ASSERT_EQ(gamma_ratio(&p, &q, 1e28, 1e28), 0);
  EXPECT_LT(std::fabs(p - 0.5), 1e-14);

  const double cases[][2] = {
      {1e29, 1e29},                             // the lambda = 1 band
      {1e40, std::nextafter(1e40, inf)},        // rlog(x/a) >= 700/a with x/a = 1 + eps
  };
  for (const auto &c : cases) {
    EXPECT_EQ(gamma_ratio(&p, &q, c[0], c[1]), vel_error_computation) << c[0];
    EXPECT_EQ(vel_error_code(), vel_error_computation);
  }
}

// One case per branch: series and continued fraction for a < 1, finite sums
// for integer and half-integer a, Taylor series, continued fraction and
// asymptotic expansion for a < 20, Temme's expansion (general, short set and
// the lambda = 1 band) and the Stirling prefactor for large a.  P and Q are
// mpmath.gammainc(a, 0, x, regularized=True) and
// mpmath.gammainc(a, x, mpmath.inf, regularized=True) at mp.dps = 40.
TEST(GammaRatio, MatchesReferenceValues) {
  struct Case {
    double a, x, p, q;
  };
  const Case cases[] = {
      {0.3, 0.5, 0.81381180467439266535, 0.18618819532560733465},
      {0.3, 5.0, 0.99934868124928154845, 0.00065131875071845154952},
      {3.0, 5.0, 0.87534798051691885871, 0.12465201948308114129},
      {2.5, 4.0, 0.84376437242227767254, 0.15623562757772232746},
      {4.3, 2.0, 0.10781586305115603589, 0.89218413694884396411},
      {4.3, 10.0, 0.9855147210619107401, 0.014485278938089259904},
      {5.3, 40.0, 0.99999999999903524436, 9.6475564290502740128e-13},
      {50.0, 45.0, 0.24680203440017027271, 0.75319796559982972729},
      {100.0, 100.05, 0.51529134172401533503, 0.48470865827598466497},
      {100.0, 100.001, 0.5133386590765879128, 0.4866613409234120872},
      {30.0, 60.0, 0.9999931237350312679, 6.8762649687320966864e-6},
      {30.0, 10.0, 2.5099512015279078234e-7, 0.99999974900487984721},
  };
  for (const Case &c : cases) {
    double p;
    double q;
    ASSERT_EQ(gamma_ratio(&p, &q, c.a, c.x), 0);
    // The smaller tail carries the relative accuracy.
    if (c.p < c.q) {
      EXPECT_LT(relative_error(p, c.p), 1e-14) << c.a << ", " << c.x;
    } else {
      EXPECT_LT(relative_error(q, c.q), 1e-14) << c.a << ", " << c.x;
    }
    EXPECT_NEAR(p + q, 1.0, 2.3e-16) << c.a << ", " << c.x;
  }
}

TEST(GammaFunction, ZeroWhereItCannotBeComputed) {
  for (double a : {1000.0, -1000.0, 1e4, 0.0, -3.0, -20.0, 172.0, 1e-320, nan}) {
    EXPECT_EQ(Gamma(a), 0.0) << a;
  }
}

TEST(GammaFunction, IntegersAreExactFactorials) {
  const double cases[][2] = {{1.0, 1.0}, {2.0, 1.0}, {5.0, 24.0}, {11.0, 3628800.0}};
  for (const auto &c : cases) EXPECT_EQ(Gamma(c[0]), c[1]) << c[0];
}

// Reference values: mpmath.gamma(a) at mp.dps = 40.  The rational form on
// [1, 2] is good to 5e-15 as published; the reflection uses the published
// 14-digit pi.
TEST(GammaFunction, MatchesReferenceValues) {
  const double cases[][3] = {
      {0.5, 1.7724538509055160273, 6e-15},
      {0.001, 999.4237724845954453, 6e-15},
      {4.7, 15.431411600047435652, 6e-15},
      {1e-305, 1e305, 6e-15},
      // Stirling's branch, where the extended-precision sum matters.
      {20.3, 297246107523557224.32, 2e-15},
      {150.2, 1.0370235662989805236e+261, 2e-15},
      {160.9, 2.8374106791414004214e+284, 2e-15},
      {171.5, 9.4833675668247993363e+307, 2e-15},
      {-2.5, -0.94530872048294188123, 3e-14},
      {-20.5, -2.8346565743913348714e-19, 3e-14},
  };
  for (const auto &c : cases) EXPECT_LT(relative_error(Gamma(c[0]), c[1]), c[2]) << c[0];
}

TEST(Glog, TableEndsAndBranchSwitch) {
  EXPECT_EQ(glog(15.0), 0xAD50B1CA6A40F80Ap-62L);   // ln 15
  EXPECT_EQ(glog(177.0), 0xA5A304C39351DAE4p-61L);  // ln 177
  EXPECT_EQ(glog(178.0), static_cast<long double>(std::log(178.0)));
  // mpmath.log(177.999) and mpmath.log(178) - mpmath.log(177.999).
  EXPECT_LT(std::fabs(glog(177.999) - 5.1817779322987761362L), 5e-16L);
  EXPECT_LT(std::fabs((glog(178.0) - glog(177.999)) - 5.6179933090115703396e-6L), 1.5e-15L);
}

TEST(Grat1, MatchesReferenceValues) {
  // P from mpmath.gammainc(a, 0, x, regularized=True), mp.dps = 40; r as the
  // caller forms it.
  const double cases[][3] = {
      {0.3, 0.1, 0.54591284959179650488},  // series, exp form
      {0.05, 0.1, 0.91125762523751957815},  // series, rexp form (x < 0.25)
      {0.1, 0.9, 0.9716069046009709205},    // series, rexp form (x >= 0.25)
      {0.7, 3.0, 0.97444738771635648885},   // continued fraction
  };
  for (const auto &c : cases) {
    const double a = c[0];
    const double x = c[1];
    const double r = std::exp(-x) * std::pow(x, a) / std::tgamma(a);
    double p;
    double q;
    ASSERT_EQ(grat1(a, x, r, &p, &q, 1e-15), 0);
    const double want_q = 1.0 - c[2];
    if (c[2] < want_q) {
      EXPECT_LT(relative_error(p, c[2]), 1e-14) << a << ", " << x;
    } else {
      EXPECT_LT(relative_error(q, want_q), 1e-14) << a << ", " << x;
    }
  }
}

// Reference values: 1/mpmath.gamma(a + 1) - 1, mpmath.expm1(x) and
// x - 1 - mpmath.log(x) at mp.dps = 40; exparg from the IEEE exponent range.
TEST(TomsShared, MatchesReferenceValues) {
  const double gam1_cases[][2] = {{-0.3, -0.22961681613343399072},
                                  {0.2, 0.089124421058336311326},
                                  {0.8, 0.073671274030834314352},
                                  {1.4, -0.19495678715283733925}};
  for (const auto &c : gam1_cases) EXPECT_LT(relative_error(gam1(c[0]), c[1]), 3e-15) << c[0];
  EXPECT_EQ(gam1(0.0), 0.0);
  EXPECT_EQ(gam1(1.0), 0.0);

  const double rexp_cases[][2] = {{1e-10, 1.0000000000500000364e-10},
                                  {0.1, 0.10517091807564763095},
                                  {-0.5, -0.3934693402873665764},
                                  {2.0, 6.3890560989306502272}};
  for (const auto &c : rexp_cases) EXPECT_LT(relative_error(rexp(c[0]), c[1]), 1e-15) << c[0];

  const double rlog_cases[][2] = {{0.3, 0.50397280432593601853},
                                  {0.7, 0.056674943938732397945},
                                  {1.0001, 4.9996666916635656022e-9},
                                  {1.4, 0.063527763378787044119},
                                  {3.0, 0.9013877113318903086}};
  for (const auto &c : rlog_cases) EXPECT_LT(relative_error(rlog(c[0]), c[1]), 2e-15) << c[0];

  EXPECT_LT(relative_error(exparg(0), 709.775615066259866112), 1e-15);
  EXPECT_LT(relative_error(exparg(1), -708.389334568083577311), 1e-15);
}

}  // namespace
