// Discrete distributions: the binomial running product against mpmath, the
// running point over interval states (zero-width ones among them), the
// numbered nodes' last state, and the faults that write a message.  The
// tables of every law are checked against mpmath in tests/cli.
#include <cfloat>
#include <cmath>
#include <fstream>
#include <sstream>

#include "generation_test_support.h"
#include "table_generator/binomial.h"

namespace {

using gentest::kInf;

TEST(BinomialProduct, MatchesMpmath) {
  std::ifstream in(std::string(VEL_SOURCE_DIR) + "/tests/cli/data/distributions/binomial.csv");
  ASSERT_TRUE(in.is_open());
  std::string line;
  std::getline(in, line);  // header
  int cases = 0;
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    double trials, p, want;
    uint64_t k;
    char comma;
    fields >> trials >> comma >> p >> comma >> k >> comma >> want;
    SCOPED_TRACE(line);
    // The product carries a rounding error per factor: about trials ulps.
    EXPECT_NEAR(Binomial(trials, p, k), want, 4e-16 * trials * want + 1e-300);
    ++cases;
  }
  EXPECT_GE(cases, 10);
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
      {NAN, 0.5, 0, -1.0, vel_error_invalid_argument},
      {3, 1.5, 0, -1.0, vel_error_invalid_argument},
      {3, -0.1, 0, -1.0, vel_error_invalid_argument},
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

class DiscreteTest : public gentest::GenerationTest {
 protected:
  // The generated table of a node X without parents.
  std::vector<double> generate(vel_node_t *x, const char *expression) {
    model(x, {}, {expression});
    EXPECT_EQ(vel_node_generate_table(x), 0) << expression;
    return table(x);
  }
};

struct IntervalCase {
  const char *expression;
  std::vector<double> bounds;
  std::vector<double> row;
};

// Geometric(0.5) puts 2^-(k+1) on count k: each state shows which counts
// the running point passed through it.
TEST_F(DiscreteTest, RunningPointHandsEachCountToOneState) {
  const IntervalCase cases[] = {
      {"Geometric(0.5)", {0, 0.5, 2, kInf}, {0.5, 0.25, 0.25}},
      // A zero-width state at a whole point takes that count ...
      {"Geometric(0.5)", {0, 0, 1, kInf}, {0.5, 0, 0.5}},
      {"Geometric(0.5)", {0, 1, 1, 2, kInf}, {0.5, 0.25, 0, 0.25}},
      {"Geometric(0.5)", {-kInf, 0, 0, kInf}, {0, 0.5, 0.5}},
      // ... one at a fraction takes nothing.
      {"Geometric(0.5)", {0, 0.5, 0.5, kInf}, {0.5, 0, 0.5}},
      // Binomial's last state is the tail from the running point.
      {"Binomial(2, 0.5)", {0, 1, 1, 2}, {0.25, 0.5, 0.25}},
      {"Binomial(2, 0.5)", {-kInf, 0.5, 7}, {0.25, 0.75}},
      {"Poisson(0)", {0, 0, 1, kInf}, {1, 0, 0}},
  };
  for (const IntervalCase &c : cases) {
    SCOPED_TRACE(c.expression + (" case " + std::to_string(&c - cases)));
    vel_node_t *x = interval(("X" + std::to_string(&c - cases)).c_str(), c.bounds);
    const std::vector<double> got = generate(x, c.expression);
    ASSERT_EQ(got.size(), c.row.size());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], c.row[i], 1e-7) << i;
  }
}

// On a numbered node the last state collects every count from n - 1 up.
TEST_F(DiscreteTest, NumberedLastStateIsTheTail) {
  const struct {
    const char *expression;
    std::vector<double> row;
  } cases[] = {
      {"Geometric(0.5)", {0.5, 0.25, 0.25}},
      {"NegativeBinomial(1, 0.5)", {0.5, 0.25, 0.25}},
      {"NegativeBinomial(2, 0)", {0, 0, 1}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.expression);
    vel_node_t *x = numbered(("X" + std::to_string(&c - cases)).c_str(), {0, 1, 2});
    EXPECT_EQ(generate(x, c.expression), c.row);
  }
  vel_node_t *one = numbered("One", {0});
  EXPECT_EQ(generate(one, "Poisson(3)"), std::vector<double>{1});
}

// The messages of the discrete branch are its only writes: a log that fails
// turns their code into 2.
TEST_F(DiscreteTest, MessagesThatCannotBeWrittenGiveTheWriteFailure) {
  const struct {
    const char *expression;
    int subtype;
    int truncated;
    int code;
  } cases[] = {
      {"Poisson(1)", vel_subtype_interval, 1, vel_error_invalid_expression},
      {"Binomial(2, 0.5)", vel_subtype_labeled, 0, vel_error_invalid_expression},
  };
  for (const bool failing_log : {false, true}) {
    if (failing_log) use_failing_log();
    for (const auto &c : cases) {
      SCOPED_TRACE(c.expression);
      const std::string name = "X" + std::to_string(&c - cases) + (failing_log ? "f" : "");
      vel_node_t *x = c.subtype == vel_subtype_interval ? interval(name.c_str(), {0, kInf})
                                                        : labeled(name.c_str(), {"a"});
      vel_expression_t *e = vel_parse_expression(c.expression, x);
      ASSERT_NE(e, nullptr);
      double block[3];
      EXPECT_EQ(discrete_distribution(e, x, block, 1, c.truncated),
                failing_log ? vel_error_io : c.code);
      vel_expression_delete(e);
    }
  }
}

}  // namespace
