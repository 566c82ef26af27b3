// Numeric evaluation: operators, domain checks, laziness and probability.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "case_file.h"
#include "eval_test_support.h"

namespace evaltest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class NumericTest : public ExpressionTest {};

TEST_F(NumericTest, OperatorsAndDomainChecks) {
  vel_node_t *x = continuous("X");
  for (const auto &c : vel_test::read_cases("table_generator/data/numeric_cases.tsv")) {
    Expr e = parse(c["text"].c_str());
    ASSERT_TRUE(e) << c["text"];
    x->value = c.number("x");
    clear_error_code();
    double result = -12345;
    EXPECT_EQ(eval_numeric_expr(e.get(), &result), c.integer("code")) << c["text"] << " x " << c["x"];
    if (c.integer("code") == 0) {
      EXPECT_TRUE(same_double(result, c.number("expected"))) << c["text"] << ": " << result;
    } else {
      EXPECT_EQ(vel_error_code(), c.integer("code")) << c["text"];
    }
  }
}

TEST_F(NumericTest, NodeReadsOfStateIndexValueAndVariance) {
  vel_node_t *n = numbered("N", {10, 20, 30});
  vel_node_t *c = continuous("C");
  Expr e = parse("state_index(N) * 100 + N + variance(C)");
  n->state_index = 2;
  n->value = 7.5;  // whatever the caller set, unchecked
  c->variance = 0.25;
  double result = 0;
  EXPECT_EQ(eval_numeric_expr(e.get(), &result), 0);
  EXPECT_EQ(result, 207.75);
  n->state_index = -1;
  EXPECT_EQ(eval_numeric_expr(e.get(), &result), vel_error_computation);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
}

// The probability is checked first (NaN passes); then the code the host
// leaves is returned, whatever the code was before.
TEST_F(NumericTest, QuantileChecksProbabilityThenReturnsTheHostsCode) {
  vel_node_t *n = numbered("N", {1, 2, 3});
  continuous("X")->value = kNaN;
  propagate(n, {0.25, 0.25, 0.5});
  const struct {
    const char *text;
    int code;
  } cases[] = {{"quantile(N, -0.5)", vel_error_invalid_argument},
               {"quantile(N, 1.5)", vel_error_invalid_argument},
               {"quantile(N, 0.3)", 0},
               {"quantile(N, X)", vel_error_usage}};
  for (const auto &c : cases) {
    Expr e = parse(c.text);
    vel_domain_get_log_file(nullptr);  // leaves a usage error behind
    double result = 0;
    EXPECT_EQ(eval_numeric_expr(e.get(), &result), c.code) << c.text;
    EXPECT_EQ(result, c.code == 0 ? 2.0 : c.code == vel_error_usage ? -1.0 : 0.0) << c.text;
  }
}

class ProbabilityTest : public ExpressionTest {
 protected:
  ProbabilityTest()
      : b_(boolean("B")),
        n_(numbered("N", {1, 2, 3})),
        l_(labeled("L", {"a", "b", "c"})),
        i_(interval("I", 3)),
        e_(labeled("E", {})) {}

  // probability(...) typed in mode 1, evaluated; the node's state and value
  // must be back as they were, on success and on failure.
  int evaluate(const char *text, vel_node_t *node, double *result) {
    Expr e = typed(text);
    const int64_t state = node->state_index;
    node->value = 42.5;
    clear_error_code();
    const int code = eval_numeric_expr(e.get(), result);
    EXPECT_EQ(vel_error_code(), code) << text;
    EXPECT_EQ(node->state_index, state) << text;
    EXPECT_EQ(node->value, 42.5) << text;
    return code;
  }

  vel_node_t *b_, *n_, *l_, *i_, *e_;
};

// In the zero-belief rows the condition fails in state 1 of L; with belief 0
// that state is skipped.  Numbered states expose their values to the sum.
TEST_F(ProbabilityTest, SumsSinglePrecisionBeliefsOverStates) {
  const char *const zero_belief = "probability(if(state_index(L) == 1, log(0) < 1, L == \"a\"))";
  const struct {
    char node;
    std::vector<double> beliefs;
    int64_t state;  // fixed by the caller, or -1
    const char *text;
    int code;
    double expected;
  } cases[] = {
      {'B', {0.3, 0.7}, 1, "probability(B == true)", 0, 1.0},
      {'B', {0.3, 0.7}, 0, "probability(B == true)", 0, 0.0},
      {'N', {0.1, 0.2, 0.7}, -1, "probability(N > 1)", 0, double{0.2f} + double{0.7f}},
      {'N', {0.1, 0.2, 0.7}, -1, "probability(state_index(N) == 0)", 0, double{0.1f}},
      {'L', {0.5, 0, 0.5}, -1, zero_belief, 0, 0.5},
      {'L', {0.5, 0.25, 0.25}, -1, zero_belief, vel_error_invalid_argument, 0},
      {'N', {0.1, 0.2, 0.7}, -1, "probability(if(N == 2, log(0) < 1, true))", 37, 0},
      {'I', {0.25, 0.25, 0.5}, -1, "probability(I < 1.5)", vel_error_invalid_expression, 0},
      {'I', {0.25, 0.25, 0.5}, -1, "probability(state_index(I) > 0)", 0, 0.75},
      {'E', {}, -1, "probability(E == \"a\")", 0, 0.0},  // no states: an empty sum
  };
  for (const auto &c : cases) {
    vel_node_t *node = c.node == 'B' ? b_ : c.node == 'N' ? n_ : c.node == 'L' ? l_ : c.node == 'E' ? e_ : i_;
    propagate(node, c.beliefs);
    node->state_index = c.state;
    double result = -1;
    EXPECT_EQ(evaluate(c.text, node, &result), c.code) << c.text;
    if (c.code == 0) {
      EXPECT_EQ(result, c.expected) << c.text;
    }
  }
}

// Every state of the domain is decided by the inference values test, which
// shares the check; here only that probability consults it.
TEST_F(ProbabilityTest, NeedsACompiledAndPropagatedDomain) {
  double result = -1;
  ASSERT_EQ(vel_domain_set_compiled(domain(), 0), 0);
  EXPECT_EQ(evaluate("probability(B)", b_, &result), vel_error_not_compiled);
  propagate(b_, {0.5, 0.5});
  ASSERT_EQ(vel_jt_set_state(vel_domain_get_junction_tree(domain()), vel_equilibrium_max,
                             vel_evidence_mode_normal, 0),
            0);
  EXPECT_EQ(evaluate("probability(B)", b_, &result), vel_error_computation);
}

}  // namespace
}  // namespace evaltest
