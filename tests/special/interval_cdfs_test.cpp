// Exact rules of the interval probabilities: empty intervals, unbounded
// ends, degenerate parameters, failures and the error code.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "common/error.h"
#include "special/special.h"

using namespace vel::special;

namespace {

constexpr double max = DBL_MAX;

struct Named {
  std::string name;
  std::function<double(double, double)> probability;  // of the interval (x1, x2)
  bool resets_error_code;
};

// One instance of every interval function, with parameters whose support
// contains [0, 1].
std::vector<Named> interval_functions() {
  return {
      {"Gauss", [](double a, double b) { return _vel_Gauss_cdf(a, b, 0.5, 2.0); }, false},
      {"LogNormal", [](double a, double b) { return LogNormal_cdf(a, b, 0.0, 1.0); }, false},
      {"Beta", [](double a, double b) { return Beta_cdf(a, b, 2.0, 3.0, -1.0, 2.0); }, true},
      {"Gamma", [](double a, double b) { return Gamma_cdf(a, b, 2.5, 2.0); }, false},
      {"Weibull", [](double a, double b) { return Weibull_cdf(a, b, 1.5, 2.0); }, false},
      {"Exponential", [](double a, double b) { return Exponential_cdf(a, b, 2.0); }, false},
      {"Uniform", [](double a, double b) { return Uniform_cdf(a, b, -1.0, 3.0); }, false},
      {"Triangular", [](double a, double b) { return Triangular_cdf(a, b, -1.0, 0.5, 3.0); }, false},
      {"Binomial", [](double a, double b) { return _vel_Binomial_cdf(a, b, 10.0, 0.3, 0.7); }, true},
      {"Poisson", [](double a, double b) { return _vel_Poisson_cdf(a, b, 2.5); }, true},
      {"NegativeBinomial", [](double a, double b) { return NegativeBinomial_cdf(a, b, 3.0, 0.4, 0.6); }, true},
      {"Geometric", [](double a, double b) { return Geometric_cdf(a, b, 0.4, 0.6); }, true},
  };
}

TEST(IntervalCdfs, EmptyOrReversedIntervalsAreZero) {
  const double intervals[][2] = {{0.5, 0.5}, {1.0, 0.25}, {max, -max}, {0.0, 0.0}, {3.0, 2.5}};
  for (const Named &f : interval_functions())
    for (const auto &interval : intervals)
      EXPECT_EQ(f.probability(interval[0], interval[1]), 0.0)
          << f.name << " on (" << interval[0] << ", " << interval[1] << ")";
}

TEST(IntervalCdfs, WholeLineHasProbabilityOne) {
  for (const Named &f : interval_functions()) EXPECT_NEAR(f.probability(-max, max), 1.0, 1e-15) << f.name;
  // The normal distribution's reflected erf branch gives exactly 1.
  for (double mean : {0.0, -3.0, 1e6})
    for (double variance : {1e-6, 1.0, 1e8}) EXPECT_EQ(_vel_Gauss_cdf(-max, max, mean, variance), 1.0);
}

TEST(IntervalCdfs, GammaUpperTailIsUnclamped) {
  double p, q;
  ASSERT_EQ(gamma_ratio(&p, &q, 2.5, 1.5), 0);
  EXPECT_EQ(Gamma_cdf(3.0, max, 2.5, 2.0), q);
  // A negative lower end counts as 0: the whole mass.
  EXPECT_EQ(Gamma_cdf(-4.0, max, 2.5, 2.0), 1.0);
  EXPECT_EQ(_vel_chi_square_c(3.0, 5), q);  // chi-square(5) at 3 is Gamma(2.5, 2) at 3
}

TEST(IntervalCdfs, FDistributionGuards) {
  EXPECT_EQ(_vel_F_distribution_c(1.0, 3, 0.0), 0.0);
  EXPECT_EQ(_vel_F_distribution_c(1.0, 3, -2.0), 0.0);
  EXPECT_EQ(_vel_F_distribution_c((max - 7.0) / 4.0, 4, 7.0), 0.0);
  EXPECT_EQ(_vel_F_distribution_c(max, 1, 7.0), 0.0);
  EXPECT_EQ(_vel_F_distribution_c(0.0, 4, 7.0), 1.0);
}

// Bit for bit, with the unbounded upper end taken without a difference.
TEST(IntervalCdfs, WeibullWithShapeOneIsTheExponential) {
  const double intervals[][2] = {{-1.0, 0.5}, {2.0, 2.0 + 1e-9}, {7.0, max}, {40.0, 41.0}};
  for (double scale : {0.1, 1.0, 3.7}) {
    for (const auto &i : intervals) {
      EXPECT_EQ(Weibull_cdf(i[0], i[1], 1.0, scale), Exponential_cdf(i[0], i[1], scale)) << i[0] << ", " << i[1];
    }
  }
  EXPECT_EQ(Exponential_cdf(7.0, max, 2.0), std::exp(-3.5));
}

TEST(IntervalCdfs, PoissonWithMeanZero) {
  struct Case {
    double x1, x2, want;
  };
  const Case cases[] = {{-1.0, 1.0, 1.0}, {-0.5, 0.5, 1.0}, {0.0, 0.1, 1.0}, {-max, max, 1.0},
                        {0.5, 3.0, 0.0},  {1.0, max, 0.0},  {-3.0, 0.0, 0.0}};
  for (const Case &c : cases) EXPECT_EQ(_vel_Poisson_cdf(c.x1, c.x2, 0.0), c.want) << c.x1 << ", " << c.x2;
}

TEST(IntervalCdfs, BinomialBeyondTheTrials) {
  EXPECT_EQ(_vel_Binomial_cdf(6.0, 10.0, 5.0, 0.3, 0.7), 0.0);
  EXPECT_EQ(_vel_Binomial_cdf(5.5, max, 5.0, 0.3, 0.7), 0.0);
  // ceil(x2) > n: only P(X >= 3) is evaluated.
  double w, w1;
  ASSERT_EQ(beta_ratio(&w, &w1, 3.0, 3.0, 0.3, 0.7), 0);
  EXPECT_EQ(_vel_Binomial_cdf(3.0, 7.0, 5.0, 0.3, 0.7), w);
  EXPECT_EQ(_vel_Binomial_cdf(2.5, max, 5.0, 0.3, 0.7), w);
}

TEST(IntervalCdfs, RejectedRatioArgumentsGiveMinusOne) {
  struct Case {
    const char *name;
    std::function<double()> call;
  };
  const Case cases[] = {
      {"Poisson, negative mean", [] { return _vel_Poisson_cdf(1.0, 3.0, -2.0); }},
      {"Gamma, negative shape", [] { return Gamma_cdf(1.0, 2.0, -1.0, 1.0); }},
      {"Beta, negative alpha", [] { return Beta_cdf(0.2, 0.5, -1.0, 2.0, 0.0, 1.0); }},
      {"Binomial, p above 1", [] { return _vel_Binomial_cdf(1.0, 3.0, 5.0, 1.5, -0.5); }},
      {"NegativeBinomial, p and q not complementary", [] { return NegativeBinomial_cdf(1.0, 3.0, 2.0, 0.5, 0.7); }},
  };
  for (const Case &c : cases) {
    _vel_error_code = 0;
    EXPECT_EQ(c.call(), -1.0) << c.name;
    EXPECT_EQ(_vel_error_code, vel_error_usage) << c.name;
  }
}

TEST(IntervalCdfs, WhichFunctionsResetTheErrorCode) {
  for (const Named &f : interval_functions()) {
    // An empty interval returns before any ratio call, so only the
    // function's own reset can change the code.
    _vel_error_code = vel_error_unsupported;
    EXPECT_EQ(f.probability(0.75, 0.25), 0.0) << f.name;
    EXPECT_EQ(_vel_error_code, f.resets_error_code ? 0 : vel_error_unsupported) << f.name;
  }
  _vel_error_code = 0;
}

}  // namespace
