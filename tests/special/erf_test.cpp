// Error functions: exact limits and branch values of calerf, erf1 and erfc1.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "special/special.h"

namespace {

double relative_error(double got, double want) {
  return std::fabs(got - want) / std::fabs(want);
}

TEST(Calerf, ExactValuesAtZeroAndInTheTails) {
  struct Case {
    uint32_t jint;
    double x;
    double want;
  };
  const Case cases[] = {
      {0, 0.0, 0.0},        {1, 0.0, 1.0},   {2, 0.0, 1.0},
      {1, 27.0, 0.0},       {1, -27.0, 2.0}, {0, 27.0, 1.0},
      {0, -27.0, -1.0},     {2, -27.0, 1.79e308},
      {2, 3e307, 0.0},  // beyond XMAX the scaled form is 0
  };
  for (const Case &c : cases) {
    EXPECT_EQ(calerf(c.jint, c.x), c.want) << "jint " << c.jint << " x " << c.x;
  }
}

TEST(ErfPair, ExactLimits) {
  EXPECT_EQ(erf1(6.0), 1.0);
  EXPECT_EQ(erf1(-6.0), -1.0);
  EXPECT_EQ(erfc1(0, -6.0), 2.0);
  EXPECT_EQ(erfc1(0, 101.0), 0.0);
  // 27^2 = 729 lies beyond the underflow bound -exparg(1) = 708.39...
  EXPECT_EQ(erfc1(0, 27.0), 0.0);
  EXPECT_EQ(erfc1(0, 0.0), 1.0);
}

// One value in each approximation range and for negative arguments.  The
// reference values are mpmath.erf(x), mpmath.erfc(x) and
// mpmath.exp(x**2) * mpmath.erfc(x) at mp.dps = 40.
struct Spot {
  int kind;  // 0 erf, 1 erfc, 2 exp(x^2) erfc(x)
  double x;
  double want;
};

const Spot spots[] = {
    {0, 0.3, 0.32862675945912741619},
    {0, -1.5, -0.96610514647531072707},
    {0, 4.5, 0.99999999980338395585},
    {1, 1.0, 0.15729920705028513066},
    {1, 2.0, 0.0046777349810472658379},
    {1, -2.0, 1.9953222650189527342},
    {1, 10.0, 2.088487583762544757e-45},
    {1, 20.0, 5.3958656116079009289e-176},
    // x^2 is inexact here, so exp(-x^2) needs the remainder of x^2.
    {1, 7.7, 1.2942740067717135926e-27},
    {1, 26.1, 3.0812174933145933397e-298},
    {2, 0.25, 0.77034654773099674392},
    {2, 3.0, 0.17900115118138995042},
    {2, 10.0, 0.056140992743822585858},
    {2, -3.0, 16205.988853999586625},
};

TEST(Calerf, MatchesReferenceValues) {
  for (const Spot &s : spots) {
    EXPECT_LT(relative_error(calerf(static_cast<uint32_t>(s.kind), s.x), s.want), 1e-15)
        << "jint " << s.kind << " x " << s.x;
  }
}

TEST(ErfPair, MatchesReferenceValues) {
  for (const Spot &s : spots) {
    const double got = s.kind == 0 ? erf1(s.x) : erfc1(s.kind == 1 ? 0 : 1, s.x);
    EXPECT_LT(relative_error(got, s.want), 2e-15) << "kind " << s.kind << " x " << s.x;
  }
}

}  // namespace
