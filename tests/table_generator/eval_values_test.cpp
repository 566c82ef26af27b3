// Boolean, label and distribution-typed evaluation, and the entry points that
// accept a plain value or a distribution.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "case_file.h"
#include "eval_test_support.h"

namespace evaltest {
namespace {

class ValuesTest : public ExpressionTest {
 protected:
  ValuesTest()
      : b_(boolean("B")),
        d_(boolean("D")),
        l_(labeled("L", {"a", "b", "c"})),
        n_(numbered("N", {1, 2, 3})),
        x_(continuous("X")) {}
  vel_node_t *b_, *d_, *l_, *n_, *x_;
};

TEST_F(ValuesTest, BooleanEvaluation) {
  b_->state_index = 1;
  l_->state_index = 1;
  d_->state_index = -1;
  n_->state_index = -1;
  x_->value = std::numeric_limits<double>::quiet_NaN();
  for (const auto &c : vel_test::read_cases("table_generator/data/boolean_cases.tsv")) {
    Expr e = typed(c["text"].c_str());
    clear_error_code();
    const int result = eval_boolean_expr(e.get());
    if (c.integer("expected") < 0) {
      EXPECT_LT(result, 0) << c["text"];
      EXPECT_EQ(vel_error_code(), c.integer("code")) << c["text"];
    } else {
      EXPECT_EQ(result, c.integer("expected")) << c["text"];
    }
  }
}

// An equality still typed "any" (mode 0) cannot be evaluated.
TEST_F(ValuesTest, UntypedEqualityIsUnsupported) {
  l_->state_index = 0;
  Expr e = typed("L == \"a\"", 0);
  EXPECT_EQ(eval_boolean_expr(e.get()), -1);
  EXPECT_EQ(vel_error_code(), vel_error_unsupported);
}

class DistributionTest : public ValuesTest {
 protected:
  double lower_ = -vel_infinity;
  double upper_ = vel_infinity;
};

TEST_F(DistributionTest, TruncationsIntersect) {
  struct Case {
    const char *text;
    double lower, upper;
  };
  // X is NaN: a NaN bound changes nothing.
  const Case cases[] = {
      {"truncate(0, truncate(2, Normal(0, 1), 20), 10)", 2, 10},
      {"truncate(Normal(0, 1), 5)", -vel_infinity, 5},
      {"truncate(1, Normal(0, 1))", 1, vel_infinity},
      {"truncate(X, truncate(Normal(0, 1), X))", -vel_infinity, vel_infinity},
      {"if(false, truncate(log(0), Normal(0, 1)), truncate(Normal(0, 1), 3))", -vel_infinity, 3},
  };
  x_->value = std::numeric_limits<double>::quiet_NaN();
  for (const Case &c : cases) {
    Expr e = typed(c.text);
    lower_ = -vel_infinity;
    upper_ = vel_infinity;
    const vel_expression_t *found = eval_distribution_expr(e.get(), &lower_, &upper_);
    ASSERT_NE(found, nullptr) << c.text;
    EXPECT_EQ(found->operator_, static_cast<uint32_t>(vel_op_Normal)) << c.text;
    EXPECT_EQ(lower_, c.lower) << c.text;
    EXPECT_EQ(upper_, c.upper) << c.text;
  }
  for (const char *text :
       {"truncate(Normal(0, 1), log(-1))", "if(log(0) < 1, Normal(0, 1), Normal(0, 1))"}) {
    Expr e = typed(text);
    EXPECT_EQ(eval_distribution_expr(e.get(), &lower_, &upper_), nullptr) << text;
    EXPECT_EQ(vel_error_code(), vel_error_invalid_argument) << text;
  }
}

// Runs the entry point for `kind` ('n' number, 'l' label, 'b' boolean) and
// shows the plain value it produced ("" when it produced none).
int evaluate_mixed(char kind, const vel_expression_t *e, const vel_expression_t **slot,
                   std::string *shown, double *lower, double *upper) {
  double number = -1;
  const char *text = nullptr;
  int truth = -5;
  int code;
  if (kind == 'n') {
    code = eval_distribution_or_numeric_expr(e, &number, slot, lower, upper);
    if (number != -1) *shown = std::to_string(static_cast<int>(number));
  } else if (kind == 'l') {
    code = eval_distribution_or_label_expr(e, &text, slot, lower, upper);
    if (text) *shown = text;
  } else {
    code = eval_distribution_or_boolean_expr(e, &truth, slot, lower, upper);
    if (truth != -5) *shown = std::to_string(truth);
  }
  return code;
}

// A plain value leaves the slot NULL; a distribution fills it, unwrapped,
// and leaves the value alone; a type the entry point does not take (9
// included) is refused.
TEST_F(DistributionTest, EntryPointsForPlainValueOrDistribution) {
  const char *const number = "if(B, Normal(0, 1), 3)";
  const char *const text = "if(B, truncate(Normal(0, 1), 4), L)";
  const char *const truth = "if(L == \"a\", Normal(0, 1), not(B))";
  const char *const any = "if(true, Normal(0, 1), N)";
  const struct {
    char kind;
    const char *text;
    int b, l;  // states of B and L
    int code;
    bool distribution;
    const char *shown;
  } cases[] = {
      {'n', number, 0, 0, 0, false, "3"}, {'n', number, 1, 0, 0, true, ""},
      {'n', "1 / 0", 0, 0, 36, false, ""}, {'n', any, 0, 0, 47, false, ""},
      {'l', text, 0, 1, 0, false, "b"}, {'l', text, 1, 1, 0, true, ""},
      {'l', text, 0, -1, 38, false, ""}, {'l', "1", 0, 0, 47, false, ""},
      {'b', truth, 1, 1, 0, false, "0"}, {'b', truth, 1, 0, 0, true, ""},
      {'b', any, 0, 0, 47, false, ""},
  };
  for (const auto &c : cases) {
    Expr e = typed(c.text, c.text == any ? 0 : 1);
    b_->state_index = c.b;
    l_->state_index = c.l;
    lower_ = -vel_infinity;
    upper_ = vel_infinity;
    const vel_expression_t *slot = e.get();  // every success overwrites it
    std::string shown;
    EXPECT_EQ(evaluate_mixed(c.kind, e.get(), &slot, &shown, &lower_, &upper_), c.code)
        << c.kind << " " << c.text << " B " << c.b << " L " << c.l;
    if (c.code != 0) continue;
    EXPECT_EQ(shown, c.shown) << c.kind << " " << c.text;
    EXPECT_EQ(slot && slot->operator_ == vel_op_Normal, c.distribution) << c.text;
    EXPECT_EQ(slot == nullptr, !c.distribution) << c.text;
    EXPECT_EQ(upper_, c.distribution && c.text == text ? 4 : vel_infinity) << c.text;
  }
}

}  // namespace
}  // namespace evaltest
