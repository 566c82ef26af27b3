// Incomplete gamma ratio and gamma function: argument errors, limits and the
// accuracy failure.  Accuracy elsewhere is checked against the mpmath tables.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "vel/vel.h"
#include "special/special.h"

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

TEST(GammaFunction, ZeroWhereItCannotBeComputed) {
  for (double a : {1000.0, -1000.0, 1e4, 0.0, -3.0, -20.0, 172.0, 1e-320, nan}) EXPECT_EQ(Gamma(a), 0.0) << a;
}

}  // namespace
