// Continuous distributions on interval nodes, called directly: every kind of
// fault, with and without a log that can be written. (The rows themselves are
// in the golden records and the mpmath distribution tables.)
#include <cfloat>

#include "generation_test_support.h"

namespace {

using gentest::kInf;

class ContinuousTest : public gentest::GenerationTest {
 protected:
  // Rows 0..2 of the block after continuous_distribution; `code` its result
  // and `left` the error code it left.
  std::vector<double> rows(vel_node_t *node, const char *text, double lower, double upper, int *code,
                           int *left) {
    vel_expression_t *e = vel_parse_expression(text, node);
    EXPECT_NE(e, nullptr) << text << ": " << vel_error_message();
    const uint64_t n = node->state_count;
    std::vector<double> block(3 * n, -7.0);
    const int truncated = lower > -DBL_MAX || upper < DBL_MAX;
    *code = continuous_distribution(builder_arguments_t{e, nullptr, nullptr}, node, block.data(), n,
                                    lower, upper, truncated);
    *left = vel_error_code();
    vel_expression_delete(e);
    return block;
  }
};

// Without a log each fault gives its code; with a log that fails, every
// fault gives 2.  Only the Gamma failure comes after masses were written.
TEST_F(ContinuousTest, FaultsGiveTheirCodeOrTheWriteFailure) {
  const struct {
    int subtype;  // of X; interval nodes take `bounds`
    std::vector<double> bounds;
    const char *expression;
    double lower, upper;
    int code;
  } cases[] = {
      {vel_subtype_interval, {-kInf, kInf}, "Normal(0, -1)", -DBL_MAX, DBL_MAX, 37},
      {vel_subtype_interval, {1, kInf}, "Gamma(2, 1)", -DBL_MAX, DBL_MAX, 39},
      {vel_subtype_interval, {-kInf, 0}, "Normal(0, 1)", -DBL_MAX, 0.5, 39},
      {vel_subtype_numbered, {}, "Weibull(1, 1)", -DBL_MAX, DBL_MAX, 34},
      {vel_subtype_interval, {-kInf, kInf}, "Normal(0, 1e-6)", 10, 11, 34},
      {vel_subtype_interval, {0, 1e30, kInf}, "Gamma(1e30, 1)", -DBL_MAX, DBL_MAX, 38},
  };
  for (const bool failing_log : {false, true}) {
    if (failing_log) use_failing_log();
    for (const auto &c : cases) {
      SCOPED_TRACE(std::string(c.expression) + (failing_log ? " with a failing log" : ""));
      const std::string name = "X" + std::to_string(&c - cases) + (failing_log ? "f" : "");
      vel_node_t *x = c.subtype == vel_subtype_interval ? interval(name.c_str(), c.bounds)
                                                        : numbered(name.c_str(), {0, 1});
      int code = -1, left = -1;
      const std::vector<double> block = rows(x, c.expression, c.lower, c.upper, &code, &left);
      const int expected = failing_log ? vel_error_io : c.code;
      EXPECT_EQ(code, expected);
      EXPECT_EQ(left, expected);
      if (c.code != vel_error_computation) {
        EXPECT_EQ(block, std::vector<double>(block.size(), -7.0));
      }
    }
  }
}

}  // namespace
