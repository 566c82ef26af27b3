// The expression constructors: result types, ownership, depth, and every
// refusal leaving the caller's arguments untouched.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "text_form_support.h"

namespace {

// The nodes of the text-form fixture: A is numbered, Level continuous.
class ExpressionBuilderTest : public texttest::TextFormTest {
 protected:
  void TearDown() override {
    for (vel_expression_t *e : free_) vel_expression_delete(e);
    TextFormTest::TearDown();
  }
  // A free-standing expression deleted at the end of the test unless owned.
  vel_expression_t *keep(vel_expression_t *e) {
    free_.push_back(e);
    return e;
  }
  vel_expression_t *number() { return keep(vel_make_number(1.0)); }
  vel_expression_t *truth() { return keep(vel_make_truth(1)); }
  vel_expression_t *ref() { return keep(vel_make_node_reference(node("A"))); }

  vel_node_t *node(const char *name) { return vel_domain_get_node_by_name(domain_, name); }
  std::vector<vel_expression_t *> free_;
};

TEST_F(ExpressionBuilderTest, LeavesAndTypes) {
  char text[] = "sunny";
  vel_expression_t *l = keep(vel_make_label(text));
  text[0] = 'S';
  EXPECT_STREQ(l->label, "sunny") << "the label is copied";
  EXPECT_EQ(keep(vel_make_truth(7))->truth, 1);
  EXPECT_EQ(ref()->type, static_cast<uint32_t>(vel_type_any));
  EXPECT_EQ(keep(vel_make_node_reference(node("Level")))->type,
            static_cast<uint32_t>(vel_type_number));
  for (double bad : {NAN, INFINITY, -INFINITY}) {
    EXPECT_EQ(vel_make_number(bad), nullptr);
    EXPECT_EQ(vel_error_code(), vel_error_usage);
  }
  EXPECT_EQ(vel_make_label(nullptr), nullptr);
  EXPECT_EQ(vel_make_node_reference(nullptr), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

TEST_F(ExpressionBuilderTest, OperatorTakesOwnership) {
  vel_expression_t *a = vel_make_number(1);
  vel_expression_t *const sum_args[] = {a, vel_make_number(2), nullptr};
  vel_expression_t *sum = vel_make_operator(vel_op_add, sum_args);
  ASSERT_NE(sum, nullptr);
  EXPECT_EQ(sum->type, static_cast<uint32_t>(vel_type_number));
  EXPECT_EQ(a->owner, sum);
  vel_expression_t *const if_args[] = {vel_make_truth(1), sum, vel_make_number(0), nullptr};
  vel_expression_t *choice = vel_make_operator(vel_op_if, if_args);
  ASSERT_NE(choice, nullptr);
  EXPECT_EQ(choice->type, 0u) << "if is typed later";
  EXPECT_EQ(vel_expression_delete(sum), vel_error_usage) << "owned by the if";
  EXPECT_EQ(vel_expression_delete(choice), 0);
}

TEST_F(ExpressionBuilderTest, RefusalsKeepArgumentsUntouched) {
  vel_expression_t *owned = number();
  vel_expression_t *const owner_args[] = {owned, nullptr};
  vel_expression_t *owner = keep(vel_make_operator(vel_op_negate, owner_args));
  vel_expression_t *shared = number();
  struct Case {
    int code;
    std::vector<vel_expression_t *> arguments;
    const char *message;  // nullptr: not checked
  } cases[] = {
      {vel_op_Normal, {number(), number(), number()}, "Normal takes a mean and a variance (2 arguments), got 3"},
      {vel_op_Beta, {number(), number(), number()}, "Beta takes shapes alpha and beta, and optionally the bounds a and b (2 or 4 "
       "arguments), got 3"},
      {vel_op_NoisyOR, {truth(), number(), truth()},
       "NoisyOR takes pairs of a condition and the probability that it fails to cause true (an "
       "even number of arguments, 2 or more), got 3"},
      {vel_op_Poisson, {}, "Poisson takes a mean (1 argument), got 0"},
      {vel_op_subtract, {number()}, "operator - takes 2 arguments, got 1"},
      {vel_op_aggregate, {ref(), number()}, "argument 2 of aggregate must be a node reference"},
      {vel_op_variance, {number()}, "argument 1 of variance must be a node reference"},
      {vel_op_quantile, {number(), number()}, "argument 1 of quantile must be a node reference"},
      {vel_op_state_index_of, {number()}, "argument 1 of state_index must be a node reference"},
      {vel_op_probability, {truth()}, "the argument of probability must refer to a node"},
      {vel_op_negate, {owned},
       "argument 1 of operator - already belongs to another expression or model"},
      {vel_op_add, {shared, shared}, "argument 2 of operator + repeats argument 1"},
      {vel_op_number, {}, nullptr},
      {59, {}, nullptr},
  };
  for (Case &c : cases) {
    std::vector<vel_expression_t *> list = c.arguments;
    list.push_back(nullptr);
    EXPECT_EQ(vel_make_operator(c.code, list.data()), nullptr) << c.code;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c.code;
    if (c.message) {
      EXPECT_STREQ(vel_error_message(), c.message);
    }
    for (vel_expression_t *argument : c.arguments)
      EXPECT_EQ(argument->owner, argument == owned ? owner : nullptr) << c.code;
  }
}

TEST_F(ExpressionBuilderTest, TreesDeeperThan1000AreRefused) {
  vel_expression_t *chain = vel_make_number(1);
  for (int depth = 2; depth <= 1000; ++depth) {
    vel_expression_t *const args[] = {chain, nullptr};
    chain = vel_make_operator(vel_op_negate, args);
    ASSERT_NE(chain, nullptr) << depth;
  }
  vel_expression_t *const args[] = {chain, nullptr};
  EXPECT_EQ(vel_make_operator(vel_op_negate, args), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_STREQ(vel_error_message(), "the expression would be nested deeper than 1000 levels");
  EXPECT_EQ(chain->owner, nullptr);
  EXPECT_EQ(vel_expression_delete(chain), 0);
}

}  // namespace
