// Continuous distributions on interval nodes, called directly: the rows they
// fill, truncation bounds handed in by the caller, and every fault's code
// with and without a log that can be written.
#include <cfloat>
#include <cstring>

#include "generation_test_support.h"

namespace {

using gentest::kInf;

// A parsed expression owned by the test.
struct Parsed {
  Parsed(const char *text, vel_node_t *node) : e(vel_parse_expression(text, node)) {
    EXPECT_NE(e, nullptr) << text << ": " << vel_error_message();
  }
  ~Parsed() { vel_expression_delete(e); }
  vel_expression_t *e;
};

class ContinuousTest : public gentest::GenerationTest {
 protected:
  // Rows 0..2 of the block after continuous_distribution; `code` its result
  // and `left` the error code it left.
  std::vector<double> rows(vel_node_t *node, const char *text, double lower = -DBL_MAX,
                           double upper = DBL_MAX, int *code = nullptr, int *left = nullptr) {
    Parsed parsed(text, node);
    const uint64_t n = node->state_count;
    std::vector<double> block(3 * n, -7.0);
    const int truncated = lower > -DBL_MAX || upper < DBL_MAX;
    const int result =
        continuous_distribution(parsed.e, node, block.data(), n, lower, upper, truncated);
    if (code) *code = result;
    if (left) *left = vel_error_code();
    return block;
  }
};

struct ExactCase {
  std::vector<double> bounds;
  const char *expression;
  double lower, upper;
  std::vector<double> row;
};

// Masses that are exact in double precision; rows 1 and 2 repeat row 0.
TEST_F(ContinuousTest, FillsRowsZeroToTwoWithTheRenormalisedMasses) {
  const ExactCase cases[] = {
      {{-kInf, 0, kInf}, "Normal(0, 1)", -DBL_MAX, DBL_MAX, {0.5, 0.5}},
      {{0, 1, 2, 4}, "Uniform(0, 4)", -DBL_MAX, DBL_MAX, {0.25, 0.25, 0.5}},
      {{0, 1, 2, 4}, "Uniform(0, 4)", 1, 3, {0, 0.5, 0.5}},
      {{0, 1, 2}, "Triangular(0, 1, 2)", -DBL_MAX, DBL_MAX, {0.5, 0.5}},
      {{0, 2, kInf}, "Exponential(1, 2)", -DBL_MAX, DBL_MAX, {0, 1}},
      {{-kInf, 5, kInf}, "Normal(5, 1)", 5, DBL_MAX, {0, 1}},
      {{-kInf, 5, kInf}, "Normal(5, 1)", -DBL_MAX, 5, {1, 0}},
  };
  for (const ExactCase &c : cases) {
    SCOPED_TRACE(c.expression);
    vel_node_t *x = interval(("X" + std::to_string(&c - cases)).c_str(), c.bounds);
    int code = -1;
    const std::vector<double> block = rows(x, c.expression, c.lower, c.upper, &code);
    ASSERT_EQ(code, 0);
    std::vector<double> expected;
    for (int r = 0; r < 3; ++r) expected.insert(expected.end(), c.row.begin(), c.row.end());
    EXPECT_EQ(block, expected);
  }
}

struct FaultCase {
  int subtype;  // of X; interval nodes take `bounds`
  std::vector<double> bounds;
  const char *expression;
  double lower, upper;
  int code;  // without a log; with a log that fails, every case gives 2
};

TEST_F(ContinuousTest, FaultsGiveTheirCodeOrTheWriteFailure) {
  const FaultCase cases[] = {
      {vel_subtype_interval, {-kInf, kInf}, "Normal(0, -1)", -DBL_MAX, DBL_MAX, 37},
      {vel_subtype_interval, {0, 1}, "Beta(2, 3, 1, 0)", -DBL_MAX, DBL_MAX, 37},
      {vel_subtype_interval, {0, 5}, "PERT(0, 1, 4, -1)", -DBL_MAX, DBL_MAX, 37},
      {vel_subtype_interval, {1, kInf}, "Gamma(2, 1)", -DBL_MAX, DBL_MAX, 39},
      {vel_subtype_interval, {-kInf, 0}, "Normal(0, 1)", -DBL_MAX, 0.5, 39},
      {vel_subtype_numbered, {}, "Weibull(1, 1)", -DBL_MAX, DBL_MAX, 34},
      {vel_subtype_interval, {-kInf, kInf}, "Normal(0, 1e-6)", 10, 11, 34},
      {vel_subtype_interval, {0, 5}, "Triangular(0, 1, 2)", 3, 4, 34},
      {vel_subtype_interval, {0, 1e30, kInf}, "Gamma(1e30, 1)", -DBL_MAX, DBL_MAX, 38},
  };
  for (const bool failing_log : {false, true}) {
    if (failing_log) use_failing_log();
    for (const FaultCase &c : cases) {
      SCOPED_TRACE(std::string(c.expression) + (failing_log ? " with a failing log" : ""));
      const std::string name = "X" + std::to_string(&c - cases) + (failing_log ? "f" : "");
      vel_node_t *x = c.subtype == vel_subtype_interval ? interval(name.c_str(), c.bounds)
                                                        : numbered(name.c_str(), {0, 1});
      int code = -1, left = -1;
      const std::vector<double> block = rows(x, c.expression, c.lower, c.upper, &code, &left);
      const int expected = failing_log ? vel_error_io : c.code;
      EXPECT_EQ(code, expected);
      EXPECT_EQ(left, expected);
      // Only the Gamma failure comes after masses have been written.
      if (c.code != vel_error_computation) {
        EXPECT_EQ(block, std::vector<double>(block.size(), -7.0));
      }
    }
  }
}

}  // namespace
