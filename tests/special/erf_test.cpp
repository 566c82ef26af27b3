// Error functions: the exact values at zero and in the tails, which the
// mpmath tables leave out (their references are exact or below 1e-300).
#include <gtest/gtest.h>

#include "special/special.h"

using namespace vel::special;

namespace {

TEST(ErrorFunctions, ExactValuesAtZeroAndInTheTails) {
  const struct {
    const char *call;
    double got, want;
  } cases[] = {
      {"calerf(0, 0)", calerf(0, 0.0), 0.0},
      {"calerf(1, 0)", calerf(1, 0.0), 1.0},
      {"calerf(1, 27)", calerf(1, 27.0), 0.0},
      {"calerf(1, -27)", calerf(1, -27.0), 2.0},
      {"calerf(0, -27)", calerf(0, -27.0), -1.0},
      {"calerf(2, -27)", calerf(2, -27.0), 1.79e308},
      {"calerf(2, 3e307)", calerf(2, 3e307), 0.0},  // beyond XMAX
      {"erf1(6)", erf1(6.0), 1.0},
      {"erf1(-6)", erf1(-6.0), -1.0},
      {"erfc1(0, -6)", erfc1(0, -6.0), 2.0},
      {"erfc1(0, 101)", erfc1(0, 101.0), 0.0},
      {"erfc1(0, 27)", erfc1(0, 27.0), 0.0},  // 27^2 lies beyond -exparg(1) = 708.39
  };
  for (const auto &c : cases) EXPECT_EQ(c.got, c.want) << c.call;
}

}  // namespace
