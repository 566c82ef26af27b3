// Incomplete gamma ratio, gamma function and glog: argument errors, limits,
// the accuracy failure and the table ends.  Accuracy elsewhere is checked
// against the mpmath tables.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "vel/vel.h"
#include "special/special.h"
#include "special/toms_shared.h"

using namespace vel::special;

namespace {

constexpr double max_double = 1.7976931348623157e308;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(GammaRatio, ArgumentErrorsLeaveResultsUntouched) {
  const double cases[][2] = {{-1.0, 1.0}, {1.0, -1.0}, {0.0, 0.0}, {nan, 1.0}, {1.0, nan}, {inf, inf}};
  for (const auto &c : cases) {
    double p = 7.0, q = 7.0;
    EXPECT_EQ(gamma_ratio(&p, &q, c[0], c[1]), vel_error_usage) << c[0] << ", " << c[1];
    EXPECT_EQ(vel_error_code(), vel_error_usage);
    EXPECT_EQ(p, 7.0);
    EXPECT_EQ(q, 7.0);
  }
}

TEST(GammaRatio, LimitCasesClearTheCode) {
  const struct {
    double a, x, p, q;
  } cases[] = {
      {0.0, 2.0, 1.0, 0.0},        {2.0, 0.0, 0.0, 1.0},
      {2.5, max_double, 1.0, 0.0},  // exp(-x) underflows
      {max_double, 3.0, 0.0, 1.0},  // x/a underflows
      {3.0, inf, 1.0, 0.0},         {inf, 3.0, 0.0, 1.0},
  };
  for (const auto &c : cases) {
    double p = 7.0, q = 7.0;
    ASSERT_EQ(gamma_ratio(&p, &q, -1.0, 1.0), vel_error_usage);  // leaves a code to clear
    EXPECT_EQ(gamma_ratio(&p, &q, c.a, c.x), 0) << c.a << ", " << c.x;
    EXPECT_EQ(vel_error_code(), 0);
    EXPECT_EQ(p, c.p) << c.a << ", " << c.x;
    EXPECT_EQ(q, c.q) << c.a << ", " << c.x;
  }
}

// a = 0.5: P is erf1(sqrt x) below x = 0.25, Q is erfc1(0, sqrt x) from there.
TEST(GammaRatio, HalfUsesTheErrorFunctionPair) {
  for (double x : {0.01, 0.2499, 0.25, 9.0}) {
    double p, q;
    ASSERT_EQ(gamma_ratio(&p, &q, 0.5, x), 0);
    if (x < 0.25) {
      EXPECT_EQ(p, erf1(std::sqrt(x))) << x;
      EXPECT_EQ(q, 0.5 + (0.5 - p)) << x;
    } else {
      EXPECT_EQ(q, erfc1(0, std::sqrt(x))) << x;
      EXPECT_EQ(p, 0.5 + (0.5 - q)) << x;
    }
  }
}

TEST(GammaRatio, AccuracyUnreachableForHugeAAtTheTransition) {
  // a e^2 crosses 3.28e-3 between a = 1e28 and 1e29.
  double p = 7.0, q = 7.0;
  ASSERT_EQ(gamma_ratio(&p, &q, 1e28, 1e28), 0);
  EXPECT_LT(std::fabs(p - 0.5), 1e-14);
  const double cases[][2] = {
      {1e29, 1e29},                       // the lambda = 1 band
      {1e40, std::nextafter(1e40, inf)},  // rlog(x/a) >= 700/a with x/a = 1 + eps
  };
  for (const auto &c : cases) {
    EXPECT_EQ(gamma_ratio(&p, &q, c[0], c[1]), vel_error_computation) << c[0];
    EXPECT_EQ(vel_error_code(), vel_error_computation);
  }
}

// grat1 repeats the ratio's formulas for a < 1 from a given prefactor r; on
// each of its branches it must agree with gamma_ratio.
TEST(Grat1, AgreesWithTheGammaRatio) {
  const double cases[][2] = {
      {0.3, 0.1},   // series, exp form
      {0.05, 0.1},  // series, rexp form below x = 0.25
      {0.1, 0.9},   // series, rexp form from x = 0.25
      {0.5, 0.1},   // erf1
      {0.5, 2.0},   // erfc1
      {0.7, 3.0},   // continued fraction
  };
  for (const auto &c : cases) {
    const double a = c[0], x = c[1];
    double p, q, want_p, want_q;
    ASSERT_EQ(gamma_ratio(&want_p, &want_q, a, x), 0);
    const double r = std::exp(-x) * std::pow(x, a) / std::tgamma(a);
    ASSERT_EQ(grat1(a, x, r, &p, &q, 1e-15), 0);
    // The smaller tail carries the relative accuracy.
    const double got = want_p < want_q ? p : q, want = want_p < want_q ? want_p : want_q;
    EXPECT_LT(std::fabs(got - want) / want, 1e-14) << a << ", " << x;
  }
}

TEST(GammaFunction, ZeroWhereItCannotBeComputed) {
  for (double a : {1000.0, -1000.0, 1e4, 0.0, -3.0, -20.0, 172.0, 1e-320, nan}) EXPECT_EQ(Gamma(a), 0.0) << a;
}

TEST(Glog, TableEndsAndBranchSwitch) {
  EXPECT_EQ(glog(15.0), 0xAD50B1CA6A40F80Ap-62L);   // ln 15
  EXPECT_EQ(glog(177.0), 0xA5A304C39351DAE4p-61L);  // ln 177
  EXPECT_EQ(glog(178.0), static_cast<long double>(std::log(178.0)));
  // mpmath.log(177.999) and mpmath.log(178) - mpmath.log(177.999).
  EXPECT_LT(std::fabs(glog(177.999) - 5.1817779322987761362L), 5e-16L);
  EXPECT_LT(std::fabs((glog(178.0) - glog(177.999)) - 5.6179933090115703396e-6L), 1.5e-15L);
}

}  // namespace
