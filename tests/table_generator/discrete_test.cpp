// The binomial running product against mpmath and its refusals.  The tables
// of every discrete law (numbered tails, the running point over zero-width
// and fractional interval states) are checked against mpmath in tests/cli.
#include <cmath>

#include "case_file.h"
#include "generation_test_support.h"
#include "table_generator/binomial.h"

namespace {

TEST(BinomialProduct, MatchesMpmath) {
  const auto cases = vel_test::read_cases("cli/data/distributions/binomial.csv", ',');
  for (const auto &c : cases) {
    SCOPED_TRACE(c.line());
    const double trials = c.number("trials"), want = c.number("probability");
    // The product carries a rounding error per factor: about trials ulps.
    EXPECT_NEAR(Binomial(trials, c.number("p"), c.integer("k")), want, 4e-16 * trials * want + 1e-300);
  }
  EXPECT_GE(cases.size(), 10u);
}

TEST(BinomialProduct, RefusesWhatItCannotForm) {
  struct Case {
    double trials, p;
    uint64_t k;
    double value;
    int code;
  } cases[] = {
      {2.5, 0.5, 1, -1.0, vel_error_invalid_argument},
      {-1, 0.5, 0, -1.0, vel_error_invalid_argument},
      {1e20, 0.5, 0, -1.0, vel_error_invalid_argument},  // beyond 64 bits
      {3, NAN, 0, -1.0, vel_error_invalid_argument},
      {1e5, 0.5, 50000, -1.0, vel_error_computation},  // the coefficient overflows
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.trials);
    EXPECT_EQ(Binomial(c.trials, c.p, c.k), c.value);
    EXPECT_EQ(vel_error_code(), c.code);
  }
  EXPECT_EQ(Binomial(3, 0.5, 4), 0.0);  // more successes than trials
}

}  // namespace
