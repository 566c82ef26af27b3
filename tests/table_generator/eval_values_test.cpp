// Boolean, label and distribution-typed evaluation, and the entry points that
// accept a plain value or a distribution.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "eval_test_support.h"

namespace evaltest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Nodes {
  vel_node_t *boolean, *labeled, *numbered, *x;
};

class ValuesTest : public ExpressionTest {
 protected:
  ValuesTest() {
    n_.boolean = boolean("B");
    n_.labeled = labeled("L", {"a", "b", "c"});
    n_.numbered = numbered("N", {1, 2, 3});
    n_.x = continuous("X");
  }
  // Typed in mode 1, as before every evaluation.
  Expr typed(vel_expression_t *e, uint32_t mode = 1) {
    Expr owned(e);
    EXPECT_NE(_vel_assign_types(owned.get(), mode), 0);
    return owned;
  }
  Nodes n_;
};

vel_expression_t *bad_number() { return op(vel_op_log, {num(0)}); }
vel_expression_t *bad_boolean() { return op(vel_op_less_than, {bad_number(), num(1)}); }

struct BooleanCase {
  const char *text;
  vel_expression_t *(*make)(const Nodes &);
  int expected;  // -1: failure with `code`
  int code;
};

// B is in state 1 (true), L in state 1 ("b"), N has no state, X is NaN.
const BooleanCase kBooleanCases[] = {
    {"true", [](const Nodes &) { return truth(1); }, 1, 0},
    {"B", [](const Nodes &n) { return ref(n.boolean); }, 1, 0},
    {"not(state_index(L) == 1)", [](const Nodes &n) { return op(vel_op_not, {op(vel_op_equals, {op(vel_op_state_index_of, {ref(n.labeled)}), num(1)})}); }, 0, 0},
    {"B == true", [](const Nodes &n) { return op(vel_op_equals, {ref(n.boolean), truth(1)}); }, 1, 0},
    {"B != true", [](const Nodes &n) { return op(vel_op_not_equals, {ref(n.boolean), truth(1)}); }, 0, 0},
    {"L == \"b\"", [](const Nodes &n) { return op(vel_op_equals, {ref(n.labeled), label("b")}); }, 1, 0},
    {"\"abc\" == \"abc\"", [](const Nodes &) { return op(vel_op_equals, {label("abc"), label("abc")}); }, 1, 0},
    {"\"abc\" != \"abd\"", [](const Nodes &) { return op(vel_op_not_equals, {label("abc"), label("abd")}); }, 1, 0},
    {"1 == 1", [](const Nodes &) { return op(vel_op_equals, {num(1), num(1)}); }, 1, 0},
    {"X == X (NaN)", [](const Nodes &n) { return op(vel_op_equals, {ref(n.x), ref(n.x)}); }, 0, 0},
    {"X != X (NaN)", [](const Nodes &n) { return op(vel_op_not_equals, {ref(n.x), ref(n.x)}); }, 1, 0},
    {"X < 1", [](const Nodes &n) { return op(vel_op_less_than, {ref(n.x), num(1)}); }, 0, 0},
    {"X > 1", [](const Nodes &n) { return op(vel_op_greater_than, {ref(n.x), num(1)}); }, 0, 0},
    {"X <= 1", [](const Nodes &n) { return op(vel_op_less_or_equal, {ref(n.x), num(1)}); }, 0, 0},
    {"X >= 1", [](const Nodes &n) { return op(vel_op_greater_or_equal, {ref(n.x), num(1)}); }, 0, 0},
    {"1 <= 1", [](const Nodes &) { return op(vel_op_less_or_equal, {num(1), num(1)}); }, 1, 0},
    {"2 >= 3", [](const Nodes &) { return op(vel_op_greater_or_equal, {num(2), num(3)}); }, 0, 0},
    {"1 < 2", [](const Nodes &) { return op(vel_op_less_than, {num(1), num(2)}); }, 1, 0},
    {"2 > 1", [](const Nodes &) { return op(vel_op_greater_than, {num(2), num(1)}); }, 1, 0},
    // Laziness: the erroneous argument is never reached.
    {"and(false, bad)", [](const Nodes &) { return op(vel_op_and, {truth(0), bad_boolean()}); }, 0, 0},
    {"or(true, bad)", [](const Nodes &) { return op(vel_op_or, {truth(1), bad_boolean()}); }, 1, 0},
    {"if(true, true, bad)", [](const Nodes &) { return op(vel_op_if, {truth(1), truth(1), bad_boolean()}); }, 1, 0},
    {"and()", [](const Nodes &) { return op(vel_op_and, {}); }, 1, 0},
    {"or()", [](const Nodes &) { return op(vel_op_or, {}); }, 0, 0},
    {"and(true, true, false)", [](const Nodes &) { return op(vel_op_and, {truth(1), truth(1), truth(0)}); }, 0, 0},
    {"or(false, false, true)", [](const Nodes &) { return op(vel_op_or, {truth(0), truth(0), truth(1)}); }, 1, 0},
    {"not(false)", [](const Nodes &) { return op(vel_op_not, {truth(0)}); }, 1, 0},
    // Failures keep the inner code.
    {"and(true, bad)", [](const Nodes &) { return op(vel_op_and, {truth(1), bad_boolean()}); }, -1, 37},
    {"or(false, bad)", [](const Nodes &) { return op(vel_op_or, {truth(0), bad_boolean()}); }, -1, 37},
    {"not(bad)", [](const Nodes &) { return op(vel_op_not, {bad_boolean()}); }, -1, 37},
    {"if(bad, true, true)", [](const Nodes &) { return op(vel_op_if, {bad_boolean(), truth(1), truth(1)}); }, -1, 37},
    {"bad < 1 / 0", [](const Nodes &) { return op(vel_op_less_than, {bad_number(), op(vel_op_divide, {num(1), num(0)})}); }, -1, 37},
    {"1 == 1 / 0", [](const Nodes &) { return op(vel_op_equals, {num(1), op(vel_op_divide, {num(1), num(0)})}); }, -1, 36},
    {"N == 1 (no state)", [](const Nodes &n) { return op(vel_op_equals, {op(vel_op_state_index_of, {ref(n.numbered)}), num(1)}); }, -1, 38},
    {"\"a\" == if(true, L, \"a\")", [](const Nodes &n) { return op(vel_op_equals, {label("a"), op(vel_op_if, {truth(1), ref(n.labeled), label("a")})}); }, 0, 0},
    {"1", [](const Nodes &) { return num(1); }, -1, 47},
    {"Normal", [](const Nodes &) { return normal(); }, -1, 47},
    {"1 + 1", [](const Nodes &) { return op(vel_op_add, {num(1), num(1)}); }, -1, 47},
};

TEST_F(ValuesTest, BooleanEvaluation) {
  n_.boolean->state_index = 1;
  n_.labeled->state_index = 1;
  n_.numbered->state_index = -1;
  n_.x->value = kNaN;
  for (const BooleanCase &c : kBooleanCases) {
    Expr e = typed(c.make(n_));
    clear_error_code();
    const int result = eval_boolean_expr(e.get());
    if (c.expected < 0) {
      EXPECT_LT(result, 0) << c.text;
      EXPECT_EQ(vel_error_code(), c.code) << c.text;
    } else {
      EXPECT_EQ(result, c.expected) << c.text;
    }
  }
}

TEST_F(ValuesTest, NodeWithoutStateFailsWithComputationError) {
  Expr b(ref(n_.boolean));
  Expr l(ref(n_.labeled));
  n_.boolean->state_index = -1;
  n_.labeled->state_index = -1;
  EXPECT_EQ(eval_boolean_expr(b.get()), -1);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
  clear_error_code();
  EXPECT_EQ(eval_label_expr(l.get()), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
  n_.boolean->state_index = 0;
  EXPECT_EQ(eval_boolean_expr(b.get()), 0);
}

TEST_F(ValuesTest, EqualityOverUntypedReferenceIsUnsupported) {
  Expr e = typed(op(vel_op_equals, {ref(n_.labeled), label("a")}), 0);
  n_.labeled->state_index = 0;
  EXPECT_EQ(eval_boolean_expr(e.get()), -1);
  EXPECT_EQ(vel_error_code(), vel_error_unsupported);
}

TEST_F(ValuesTest, LabelEvaluation) {
  n_.labeled->state_index = 2;
  Expr node_label(ref(n_.labeled));
  EXPECT_STREQ(eval_label_expr(node_label.get()), "c");
  Expr constant(label("text"));
  EXPECT_EQ(eval_label_expr(constant.get()), constant->label);  // no copy
  Expr chosen = typed(op(vel_op_if, {truth(0), op(vel_op_if, {bad_boolean(), label("x"), label("y")}),
                                     ref(n_.labeled)}));
  EXPECT_STREQ(eval_label_expr(chosen.get()), "c");
  Expr failing = typed(op(vel_op_if, {bad_boolean(), label("a"), label("b")}));
  EXPECT_EQ(eval_label_expr(failing.get()), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_invalid_argument);
  Expr number(num(1));
  EXPECT_EQ(eval_label_expr(number.get()), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_unsupported);
}

class DistributionTest : public ValuesTest {
 protected:
  double lower_ = -vel_infinity;
  double upper_ = vel_infinity;
};

TEST_F(DistributionTest, NestedTruncationsIntersect) {
  Expr e = typed(op(vel_op_truncate,
                    {num(0), op(vel_op_truncate, {num(2), normal(), num(20)}), num(10)}));
  const vel_expression_t *inner = e->arguments[1]->arguments[1];
  EXPECT_EQ(eval_distribution_expr(e.get(), &lower_, &upper_), inner);
  EXPECT_EQ(lower_, 2);
  EXPECT_EQ(upper_, 10);
}

TEST_F(DistributionTest, TruncationForms) {
  Expr upper_only = typed(op(vel_op_truncate, {normal(), num(5)}));
  EXPECT_EQ(eval_distribution_expr(upper_only.get(), &lower_, &upper_),
            upper_only->arguments[0]);
  EXPECT_EQ(lower_, -vel_infinity);
  EXPECT_EQ(upper_, 5);

  lower_ = -vel_infinity;
  upper_ = vel_infinity;
  Expr lower_only = typed(op(vel_op_truncate, {num(1), normal()}));
  EXPECT_EQ(eval_distribution_expr(lower_only.get(), &lower_, &upper_),
            lower_only->arguments[1]);
  EXPECT_EQ(lower_, 1);
  EXPECT_EQ(upper_, vel_infinity);

  n_.x->value = kNaN;
  Expr nan_bounds = typed(op(vel_op_truncate, {ref(n_.x), normal(), ref(n_.x)}));
  EXPECT_NE(eval_distribution_expr(nan_bounds.get(), &lower_, &upper_), nullptr);
  EXPECT_EQ(lower_, 1);
  EXPECT_EQ(upper_, vel_infinity);

  Expr failing = typed(op(vel_op_truncate, {normal(), op(vel_op_log, {num(-1)})}));
  EXPECT_EQ(eval_distribution_expr(failing.get(), &lower_, &upper_), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_invalid_argument);
}

TEST_F(DistributionTest, ConditionalChoosesOneBranchOnly) {
  Expr e = typed(op(vel_op_if, {truth(0), op(vel_op_truncate, {bad_number(), normal()}),
                                op(vel_op_truncate, {normal(), num(3)})}));
  const vel_expression_t *chosen = e->arguments[2]->arguments[0];
  EXPECT_EQ(eval_distribution_expr(e.get(), &lower_, &upper_), chosen);
  EXPECT_EQ(upper_, 3);
  Expr failing = typed(op(vel_op_if, {bad_boolean(), normal(), normal()}));
  EXPECT_EQ(eval_distribution_expr(failing.get(), &lower_, &upper_), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_invalid_argument);
}

// A sentinel slot value that every outcome must overwrite or keep visibly.
const vel_expression_t *const kUnset = reinterpret_cast<const vel_expression_t *>(&kNaN);

TEST_F(DistributionTest, NumericOrDistribution) {
  Expr mixed = typed(op(vel_op_if, {ref(n_.boolean), normal(), num(3)}));
  ASSERT_EQ(mixed->type, static_cast<uint32_t>(vel_type_distribution_or_number));
  const vel_expression_t *slot = kUnset;
  double value = -1;
  n_.boolean->state_index = 0;
  EXPECT_EQ(eval_distribution_or_numeric_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(value, 3);
  value = -1;
  n_.boolean->state_index = 1;
  EXPECT_EQ(eval_distribution_or_numeric_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, mixed->arguments[1]);
  EXPECT_EQ(value, -1);
  n_.boolean->state_index = -1;
  EXPECT_EQ(eval_distribution_or_numeric_expr(mixed.get(), &value, &slot, &lower_, &upper_),
            vel_error_computation);
  Expr failing_number(op(vel_op_divide, {num(1), num(0)}));
  EXPECT_EQ(eval_distribution_or_numeric_expr(failing_number.get(), &value, &slot, &lower_,
                                              &upper_),
            vel_error_division_by_zero);
  Expr a_label(label("a"));
  EXPECT_EQ(eval_distribution_or_numeric_expr(a_label.get(), &value, &slot, &lower_, &upper_),
            vel_error_unsupported);
}

TEST_F(DistributionTest, LabelOrDistribution) {
  Expr mixed = typed(op(vel_op_if, {ref(n_.boolean), op(vel_op_truncate, {normal(), num(4)}),
                                    ref(n_.labeled)}));
  ASSERT_EQ(mixed->type, static_cast<uint32_t>(vel_type_distribution_or_label));
  const vel_expression_t *slot = kUnset;
  const char *value = nullptr;
  n_.boolean->state_index = 0;
  n_.labeled->state_index = 1;
  EXPECT_EQ(eval_distribution_or_label_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, nullptr);
  EXPECT_STREQ(value, "b");
  n_.boolean->state_index = 1;
  EXPECT_EQ(eval_distribution_or_label_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, mixed->arguments[1]->arguments[0]);
  EXPECT_EQ(upper_, 4);
  n_.boolean->state_index = 0;
  n_.labeled->state_index = -1;
  EXPECT_EQ(eval_distribution_or_label_expr(mixed.get(), &value, &slot, &lower_, &upper_),
            vel_error_computation);
  Expr a_number(num(1));
  EXPECT_EQ(eval_distribution_or_label_expr(a_number.get(), &value, &slot, &lower_, &upper_),
            vel_error_unsupported);
}

TEST_F(DistributionTest, BooleanOrDistribution) {
  Expr mixed = typed(op(vel_op_if, {op(vel_op_equals, {ref(n_.labeled), label("a")}), normal(),
                                    op(vel_op_not, {ref(n_.boolean)})}));
  ASSERT_EQ(mixed->type, static_cast<uint32_t>(vel_type_distribution_or_boolean));
  const vel_expression_t *slot = kUnset;
  int value = -5;
  n_.labeled->state_index = 1;
  n_.boolean->state_index = 1;
  EXPECT_EQ(eval_distribution_or_boolean_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(value, 0);
  n_.labeled->state_index = 0;
  value = -5;
  EXPECT_EQ(eval_distribution_or_boolean_expr(mixed.get(), &value, &slot, &lower_, &upper_), 0);
  EXPECT_EQ(slot, mixed->arguments[1]);
  EXPECT_EQ(value, -5);
  n_.labeled->state_index = 1;
  n_.boolean->state_index = -1;
  EXPECT_EQ(eval_distribution_or_boolean_expr(mixed.get(), &value, &slot, &lower_, &upper_),
            vel_error_computation);
}

TEST_F(DistributionTest, DistributionOrAnyIsRefusedByAllEntryPoints) {
  Expr e = typed(op(vel_op_if, {truth(1), normal(), ref(n_.numbered)}), 0);
  ASSERT_EQ(e->type, static_cast<uint32_t>(vel_type_distribution_or_any));
  const vel_expression_t *slot = nullptr;
  double number = 0;
  const char *text = nullptr;
  int truth_value = 0;
  EXPECT_EQ(eval_distribution_or_numeric_expr(e.get(), &number, &slot, &lower_, &upper_),
            vel_error_unsupported);
  EXPECT_EQ(eval_distribution_or_label_expr(e.get(), &text, &slot, &lower_, &upper_),
            vel_error_unsupported);
  EXPECT_EQ(eval_distribution_or_boolean_expr(e.get(), &truth_value, &slot, &lower_, &upper_),
            vel_error_unsupported);
}

}  // namespace
}  // namespace evaltest
