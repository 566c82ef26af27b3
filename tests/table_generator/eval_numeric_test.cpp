// Numeric evaluation: operators, domain checks, laziness and probability.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "eval_test_support.h"

namespace evaltest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kMaxDouble = 1.7976931348623157e+308;

struct NumericCase {
  const char *text;
  vel_expression_t *(*make)(vel_node_t *x);  // x: a continuous node
  double x;
  double expected;
  int code;
};

vel_expression_t *call(int code, vel_expression_t *a) { return op(code, {a}); }
vel_expression_t *call(int code, vel_expression_t *a, vel_expression_t *b) {
  return op(code, {a, b});
}
vel_expression_t *bad() { return call(vel_op_log, num(0)); }  // fails with 37

const NumericCase kCases[] = {
    // Arithmetic and division by zero (NaN is not zero).
    {"1 + 2", [](vel_node_t *) { return call(vel_op_add, num(1), num(2)); }, 0, 3, 0},
    {"5 - 7", [](vel_node_t *) { return call(vel_op_subtract, num(5), num(7)); }, 0, -2, 0},
    {"3 * 4", [](vel_node_t *) { return call(vel_op_multiply, num(3), num(4)); }, 0, 12, 0},
    {"1e308 * 10", [](vel_node_t *) { return call(vel_op_multiply, num(1e308), num(10)); }, 0, kInf, 0},
    {"1 / 4", [](vel_node_t *) { return call(vel_op_divide, num(1), num(4)); }, 0, 0.25, 0},
    {"5 / 0", [](vel_node_t *) { return call(vel_op_divide, num(5), num(0)); }, 0, 0, 36},
    {"5 / -0", [](vel_node_t *x) { return call(vel_op_divide, num(5), ref(x)); }, -0.0, 0, 36},
    {"NaN / 0", [](vel_node_t *x) { return call(vel_op_divide, ref(x), num(0)); }, kNaN, 0, 36},
    {"0 / NaN", [](vel_node_t *x) { return call(vel_op_divide, num(0), ref(x)); }, kNaN, kNaN, 0},
    {"-0", [](vel_node_t *) { return call(vel_op_negate, num(0)); }, 0, -0.0, 0},
    // Power: sign, integrality and range of the exponent.
    {"2 ^ 10", [](vel_node_t *) { return call(vel_op_power, num(2), num(10)); }, 0, 1024, 0},
    {"2 ^ 1024", [](vel_node_t *) { return call(vel_op_power, num(2), num(1024)); }, 0, kInf, 0},
    {"2 ^ NaN", [](vel_node_t *x) { return call(vel_op_power, num(2), ref(x)); }, kNaN, kNaN, 0},
    {"-2 ^ 3", [](vel_node_t *) { return call(vel_op_power, num(-2), num(3)); }, 0, -8, 0},
    {"-2 ^ 2", [](vel_node_t *) { return call(vel_op_power, num(-2), num(2)); }, 0, 4, 0},
    {"-2 ^ -1", [](vel_node_t *) { return call(vel_op_power, num(-2), num(-1)); }, 0, -0.5, 0},
    {"-inf ^ 3", [](vel_node_t *x) { return call(vel_op_power, ref(x), num(3)); }, -kInf, -kInf, 0},
    {"-8 ^ (1/3)", [](vel_node_t *) { return call(vel_op_power, num(-8), num(1.0 / 3)); }, 0, 0, 37},
    {"-2 ^ NaN", [](vel_node_t *x) { return call(vel_op_power, num(-2), ref(x)); }, kNaN, 0, 37},
    {"-2 ^ inf", [](vel_node_t *x) { return call(vel_op_power, num(-2), ref(x)); }, kInf, 0, 37},
    {"-1 ^ 2^63", [](vel_node_t *) { return call(vel_op_power, num(-1), num(kTwo63)); }, 0, 0, 37},
    {"-1 ^ -2^63", [](vel_node_t *) { return call(vel_op_power, num(-1), num(-kTwo63)); }, 0, 1, 0},
    {"-1 ^ (2^63 + 2048)", [](vel_node_t *) { return call(vel_op_power, num(-1), num(kTwo63 + 2048)); }, 0, 0, 37},
    {"-1 ^ -(2^63 + 2048)", [](vel_node_t *) { return call(vel_op_power, num(-1), num(-kTwo63 - 2048)); }, 0, 0, 37},
    {"-1 ^ max double", [](vel_node_t *) { return call(vel_op_power, num(-1), num(kMaxDouble)); }, 0, 0, 37},
    {"-1 ^ -max double", [](vel_node_t *) { return call(vel_op_power, num(-1), num(-kMaxDouble)); }, 0, 0, 37},
    {"-1 ^ (2^53 - 1)", [](vel_node_t *) { return call(vel_op_power, num(-1), num(9007199254740991.0)); }, 0, -1, 0},
    {"-1 ^ 2^62", [](vel_node_t *) { return call(vel_op_power, num(-1), num(4611686018427387904.0)); }, 0, 1, 0},
    {"0 ^ 0", [](vel_node_t *) { return call(vel_op_power, num(0), num(0)); }, 0, 0, 37},
    {"0 ^ -1", [](vel_node_t *) { return call(vel_op_power, num(0), num(-1)); }, 0, 0, 37},
    {"0 ^ 2", [](vel_node_t *) { return call(vel_op_power, num(0), num(2)); }, 0, 0, 0},
    {"-0 ^ 3 is +0", [](vel_node_t *x) { return call(vel_op_power, ref(x), num(3)); }, -0.0, 0, 0},
    {"NaN ^ 2", [](vel_node_t *x) { return call(vel_op_power, ref(x), num(2)); }, kNaN, 0, 0},
    {"NaN ^ 0", [](vel_node_t *x) { return call(vel_op_power, ref(x), num(0)); }, kNaN, 0, 37},
    // Floored modulo.
    {"mod(-7, 3)", [](vel_node_t *) { return call(vel_op_mod, num(-7), num(3)); }, 0, 2, 0},
    {"mod(7, -3)", [](vel_node_t *) { return call(vel_op_mod, num(7), num(-3)); }, 0, -2, 0},
    {"mod(7, 3)", [](vel_node_t *) { return call(vel_op_mod, num(7), num(3)); }, 0, 1, 0},
    {"mod(-7, -3)", [](vel_node_t *) { return call(vel_op_mod, num(-7), num(-3)); }, 0, -1, 0},
    {"mod(5.5, 2)", [](vel_node_t *) { return call(vel_op_mod, num(5.5), num(2)); }, 0, 1.5, 0},
    {"mod(-6, 3)", [](vel_node_t *) { return call(vel_op_mod, num(-6), num(3)); }, 0, -0.0, 0},
    {"mod(-1, inf)", [](vel_node_t *x) { return call(vel_op_mod, num(-1), ref(x)); }, kInf, kInf, 0},
    {"mod(NaN, 3)", [](vel_node_t *x) { return call(vel_op_mod, ref(x), num(3)); }, kNaN, kNaN, 0},
    {"mod(5, NaN)", [](vel_node_t *x) { return call(vel_op_mod, num(5), ref(x)); }, kNaN, kNaN, 0},
    {"mod(5, 0)", [](vel_node_t *) { return call(vel_op_mod, num(5), num(0)); }, 0, 0, 37},
    {"mod(5, -0)", [](vel_node_t *x) { return call(vel_op_mod, num(5), ref(x)); }, -0.0, 0, 37},
    // Logarithms and square root: tests for the bad case, so NaN passes.
    {"log(1)", [](vel_node_t *) { return call(vel_op_log, num(1)); }, 0, 0, 0},
    {"log(0)", [](vel_node_t *) { return call(vel_op_log, num(0)); }, 0, 0, 37},
    {"log(-0)", [](vel_node_t *x) { return call(vel_op_log, ref(x)); }, -0.0, 0, 37},
    {"log(-1)", [](vel_node_t *) { return call(vel_op_log, num(-1)); }, 0, 0, 37},
    {"log(NaN)", [](vel_node_t *x) { return call(vel_op_log, ref(x)); }, kNaN, kNaN, 0},
    // ln 8 rounded to double, times the rounded 1/ln 2, lands one ulp below 3.
    {"log2(8)", [](vel_node_t *) { return call(vel_op_log2, num(8)); }, 0, 2.9999999999999996, 0},
    {"log2(1024)", [](vel_node_t *) { return call(vel_op_log2, num(1024)); }, 0, 10, 0},
    {"log2(0)", [](vel_node_t *) { return call(vel_op_log2, num(0)); }, 0, 0, 37},
    {"log2(NaN)", [](vel_node_t *x) { return call(vel_op_log2, ref(x)); }, kNaN, kNaN, 0},
    {"log10(1000)", [](vel_node_t *) { return call(vel_op_log10, num(1000)); }, 0, 3, 0},
    {"log10(-1)", [](vel_node_t *) { return call(vel_op_log10, num(-1)); }, 0, 0, 37},
    {"sqrt(4)", [](vel_node_t *) { return call(vel_op_sqrt, num(4)); }, 0, 2, 0},
    {"sqrt(-0)", [](vel_node_t *x) { return call(vel_op_sqrt, ref(x)); }, -0.0, -0.0, 0},
    {"sqrt(NaN)", [](vel_node_t *x) { return call(vel_op_sqrt, ref(x)); }, kNaN, kNaN, 0},
    {"sqrt(-1)", [](vel_node_t *) { return call(vel_op_sqrt, num(-1)); }, 0, 0, 37},
    // Functions without checks.
    {"abs(-2)", [](vel_node_t *) { return call(vel_op_abs, num(-2)); }, 0, 2, 0},
    {"abs(-0)", [](vel_node_t *x) { return call(vel_op_abs, ref(x)); }, -0.0, 0, 0},
    {"floor(-1.5)", [](vel_node_t *) { return call(vel_op_floor, num(-1.5)); }, 0, -2, 0},
    {"ceil(-1.5)", [](vel_node_t *) { return call(vel_op_ceil, num(-1.5)); }, 0, -1, 0},
    {"exp(1000)", [](vel_node_t *) { return call(vel_op_exp, num(1000)); }, 0, kInf, 0},
    {"cosh(1000)", [](vel_node_t *) { return call(vel_op_cosh, num(1000)); }, 0, kInf, 0},
    {"tanh(1000)", [](vel_node_t *) { return call(vel_op_tanh, num(1000)); }, 0, 1, 0},
    {"sin(-0)", [](vel_node_t *x) { return call(vel_op_sin, ref(x)); }, -0.0, -0.0, 0},
    {"cos(0)", [](vel_node_t *) { return call(vel_op_cos, num(0)); }, 0, 1, 0},
    {"tan(-0)", [](vel_node_t *x) { return call(vel_op_tan, ref(x)); }, -0.0, -0.0, 0},
    {"sinh(-0)", [](vel_node_t *x) { return call(vel_op_sinh, ref(x)); }, -0.0, -0.0, 0},
    // min and max: a NaN held is never replaced, a later NaN never wins.
    {"min(3)", [](vel_node_t *) { return op(vel_op_min, {num(3)}); }, 0, 3, 0},
    {"max(3)", [](vel_node_t *) { return op(vel_op_max, {num(3)}); }, 0, 3, 0},
    {"min(3, 1, 2)", [](vel_node_t *) { return op(vel_op_min, {num(3), num(1), num(2)}); }, 0, 1, 0},
    {"max(3, 5, 4)", [](vel_node_t *) { return op(vel_op_max, {num(3), num(5), num(4)}); }, 0, 5, 0},
    {"min(NaN, 1)", [](vel_node_t *x) { return op(vel_op_min, {ref(x), num(1)}); }, kNaN, kNaN, 0},
    {"min(1, NaN)", [](vel_node_t *x) { return op(vel_op_min, {num(1), ref(x)}); }, kNaN, 1, 0},
    {"max(NaN, 1)", [](vel_node_t *x) { return op(vel_op_max, {ref(x), num(1)}); }, kNaN, kNaN, 0},
    {"max(1, NaN)", [](vel_node_t *x) { return op(vel_op_max, {num(1), ref(x)}); }, kNaN, 1, 0},
    {"min(0, -0)", [](vel_node_t *x) { return op(vel_op_min, {num(0), ref(x)}); }, -0.0, 0, 0},
    {"max(-0, 0)", [](vel_node_t *x) { return op(vel_op_max, {ref(x), num(0)}); }, -0.0, -0.0, 0},
    {"min(1, log(0))", [](vel_node_t *) { return op(vel_op_min, {num(1), bad()}); }, 0, 0, 37},
    // Lazy if; the first failing argument decides the code.
    {"if(true, 1, log(0))", [](vel_node_t *) { return op(vel_op_if, {truth(1), num(1), bad()}); }, 0, 1, 0},
    {"if(false, log(0), 2)", [](vel_node_t *) { return op(vel_op_if, {truth(0), bad(), num(2)}); }, 0, 2, 0},
    {"if(false, 1, log(0))", [](vel_node_t *) { return op(vel_op_if, {truth(0), num(1), bad()}); }, 0, 0, 37},
    {"if(1 < NaN, 1, 2)", [](vel_node_t *x) { return op(vel_op_if, {call(vel_op_less_than, num(1), ref(x)), num(1), num(2)}); }, kNaN, 2, 0},
    {"if(log(0) < 1, 1, 2)", [](vel_node_t *) { return op(vel_op_if, {call(vel_op_less_than, bad(), num(1)), num(1), num(2)}); }, 0, 0, 37},
    {"log(0) + 1 / 0", [](vel_node_t *) { return call(vel_op_add, bad(), call(vel_op_divide, num(1), num(0))); }, 0, 0, 37},
    {"1 + 1 / 0", [](vel_node_t *) { return call(vel_op_add, num(1), call(vel_op_divide, num(1), num(0))); }, 0, 0, 36},
    // Not numbers.
    {"true", [](vel_node_t *) { return truth(1); }, 0, 0, 47},
    {"\"a\"", [](vel_node_t *) { return label("a"); }, 0, 0, 47},
    {"Normal(0, 1)", [](vel_node_t *) { return normal(); }, 0, 0, 47},
    {"1 < 2", [](vel_node_t *) { return call(vel_op_less_than, num(1), num(2)); }, 0, 0, 47},
    {"not(true)", [](vel_node_t *) { return call(vel_op_not, truth(1)); }, 0, 0, 47},
};

class NumericTest : public ExpressionTest {};

TEST_F(NumericTest, OperatorsAndDomainChecks) {
  vel_node_t *x = continuous("X");
  for (const NumericCase &c : kCases) {
    Expr e(c.make(x));
    ASSERT_TRUE(e) << c.text;
    x->value = c.x;
    clear_error_code();
    double result = -12345;
    const int code = eval_numeric_expr(e.get(), &result);
    EXPECT_EQ(code, c.code) << c.text;
    if (c.code == 0) {
      EXPECT_TRUE(same_double(result, c.expected)) << c.text << ": " << result;
    } else {
      EXPECT_EQ(vel_error_code(), c.code) << c.text;
    }
  }
}

TEST_F(NumericTest, NodeReadsOfStateIndexValueAndVariance) {
  vel_node_t *n = numbered("N", {10, 20, 30});
  vel_node_t *c = continuous("C");
  Expr index(op(vel_op_state_index_of, {ref(n)}));
  Expr value(ref(n));
  Expr variance(op(vel_op_variance, {ref(c)}));
  double result = 0;
  n->state_index = 2;
  n->value = 7.5;  // whatever the caller set, unchecked
  EXPECT_EQ(eval_numeric_expr(index.get(), &result), 0);
  EXPECT_EQ(result, 2.0);
  EXPECT_EQ(eval_numeric_expr(value.get(), &result), 0);
  EXPECT_EQ(result, 7.5);
  c->variance = 2.25;
  EXPECT_EQ(eval_numeric_expr(variance.get(), &result), 0);
  EXPECT_EQ(result, 2.25);
  n->state_index = -1;
  EXPECT_EQ(eval_numeric_expr(index.get(), &result), vel_error_computation);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
}

TEST_F(NumericTest, QuantileChecksProbabilityBeforeAskingTheHost) {
  vel_node_t *n = numbered("N", {1, 2, 3});
  propagate(n, {0.25, 0.25, 0.5});
  for (double p : {-0.5, 1.5}) {
    Expr e(op(vel_op_quantile, {ref(n), num(p)}));
    double result = 0;
    EXPECT_EQ(eval_numeric_expr(e.get(), &result), vel_error_invalid_argument) << p;
  }
  Expr e(op(vel_op_quantile, {ref(n), num(0.3)}));
  double result = 0;
  vel_domain_get_log_file(nullptr);  // leaves a usage error behind
  EXPECT_EQ(eval_numeric_expr(e.get(), &result), 0);
  EXPECT_EQ(result, 2.0);
}

class ProbabilityTest : public ExpressionTest {
 protected:
  ProbabilityTest() {
    b_ = boolean("B");
    n_ = numbered("N", {1, 2, 3});
    l_ = labeled("L", {"a", "b", "c"});
    i_ = interval("I", {0, 1, 2, 3});
  }

  // probability(condition) typed in mode 1, evaluated; the node's state and
  // value must be back as they were before.
  int evaluate(vel_expression_t *condition, vel_node_t *node, double *result) {
    Expr e(op(vel_op_probability, {condition}));
    EXPECT_NE(_vel_assign_types(e.get(), 1), 0);
    const int64_t state = node->state_index;
    node->value = 42.5;
    const int code = eval_numeric_expr(e.get(), result);
    if (code != 0) {
      EXPECT_EQ(vel_error_code(), code);
    }
    EXPECT_EQ(node->state_index, state);
    EXPECT_EQ(node->value, 42.5);
    return code;
  }

  vel_node_t *b_, *n_, *l_, *i_;
};

TEST_F(ProbabilityTest, FixedStateGivesExactlyZeroOrOne) {
  propagate(b_, {0.3, 0.7});
  double result = -1;
  b_->state_index = 1;
  EXPECT_EQ(evaluate(op(vel_op_equals, {ref(b_), truth(1)}), b_, &result), 0);
  EXPECT_EQ(result, 1.0);
  b_->state_index = 0;
  EXPECT_EQ(evaluate(op(vel_op_equals, {ref(b_), truth(1)}), b_, &result), 0);
  EXPECT_EQ(result, 0.0);
}

TEST_F(ProbabilityTest, SumsSinglePrecisionBeliefsInDouble) {
  propagate(n_, {0.1, 0.2, 0.7});
  double result = -1;
  // Numbered states expose their values while the beliefs are summed.
  EXPECT_EQ(evaluate(op(vel_op_greater_than, {ref(n_), num(1)}), n_, &result), 0);
  EXPECT_EQ(result, static_cast<double>(0.2f) + static_cast<double>(0.7f));
  EXPECT_EQ(evaluate(op(vel_op_equals, {op(vel_op_state_index_of, {ref(n_)}), num(0)}), n_,
                     &result),
            0);
  EXPECT_EQ(result, static_cast<double>(0.1f));
}

TEST_F(ProbabilityTest, ZeroBeliefStatesAreNotEvaluated) {
  // In state 1 the condition fails; with belief 0 that state is skipped.
  auto condition = [this] {
    return op(vel_op_if, {op(vel_op_equals, {op(vel_op_state_index_of, {ref(l_)}), num(1)}),
                          op(vel_op_less_than, {op(vel_op_log, {num(0)}), num(1)}),
                          op(vel_op_equals, {ref(l_), label("a")})});
  };
  propagate(l_, {0.5, 0, 0.5});
  double result = -1;
  EXPECT_EQ(evaluate(condition(), l_, &result), 0);
  EXPECT_EQ(result, 0.5);
  propagate(l_, {0.5, 0.25, 0.25});
  EXPECT_EQ(evaluate(condition(), l_, &result), vel_error_invalid_argument);
}

TEST_F(ProbabilityTest, IntervalNodeOnlyThroughItsStateIndex) {
  propagate(i_, {0.25, 0.25, 0.5});
  double result = -1;
  EXPECT_EQ(evaluate(op(vel_op_less_than, {ref(i_), num(1.5)}), i_, &result),
            vel_error_invalid_expression);
  EXPECT_EQ(evaluate(op(vel_op_greater_than, {op(vel_op_state_index_of, {ref(i_)}), num(0)}),
                     i_, &result),
            0);
  EXPECT_EQ(result, 0.75);
}

TEST_F(ProbabilityTest, NeedsACompiledAndPropagatedDomain) {
  double result = -1;
  ASSERT_EQ(vel_domain_set_compiled(domain_, 0), 0);
  EXPECT_EQ(evaluate(op(vel_op_equals, {ref(b_), truth(1)}), b_, &result),
            vel_error_not_compiled);

  propagate(b_, {0.5, 0.5});
  struct Case {
    int equilibrium, evidence_mode, pending, code;
  };
  const Case cases[] = {
      {vel_equilibrium_none, vel_evidence_mode_normal, 0, vel_error_not_propagated},
      {vel_equilibrium_sum, vel_evidence_mode_normal, 1, 0},
      {vel_equilibrium_sum, vel_evidence_mode_fast, 0, 0},
      {vel_equilibrium_sum, vel_evidence_mode_fast, 1, vel_error_computation},
      {vel_equilibrium_max, vel_evidence_mode_normal, 0, vel_error_computation},
  };
  for (const Case &c : cases) {
    ASSERT_EQ(vel_jt_set_state(vel_domain_get_junction_tree(domain_), c.equilibrium,
                               c.evidence_mode, c.pending),
              0);
    EXPECT_EQ(evaluate(op(vel_op_equals, {ref(b_), truth(1)}), b_, &result), c.code)
        << c.equilibrium << " " << c.evidence_mode << " " << c.pending;
    if (c.code == 0) {
      EXPECT_EQ(result, 0.5);
    }
  }
}

}  // namespace
}  // namespace evaltest
