// The expression constructors: result types, ownership, depth, and every
// refusal leaving the caller's arguments untouched.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/records.h"
#include "vel/vel.h"

namespace {

class ExpressionBuilderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    domain_ = vel_domain_new();
    discrete_ = vel_domain_new_node(domain_, 1, 0, vel_subtype_numbered, "N");
    continuous_ = vel_domain_new_node(domain_, 1, 1, vel_subtype_none, "Level");
  }
  void TearDown() override {
    for (vel_expression_t *e : free_) vel_expression_delete(e);
    vel_domain_delete(domain_);
  }
  // A free-standing expression deleted at the end of the test unless owned.
  vel_expression_t *keep(vel_expression_t *e) {
    free_.push_back(e);
    return e;
  }
  vel_expression_t *number() { return keep(vel_make_number(1.0)); }
  vel_expression_t *ref() { return keep(vel_make_node_reference(discrete_)); }

  vel_domain_t *domain_ = nullptr;
  vel_node_t *discrete_ = nullptr, *continuous_ = nullptr;
  std::vector<vel_expression_t *> free_;
};

TEST_F(ExpressionBuilderTest, LeavesAndTypes) {
  vel_expression_t *n = vel_make_number(-0.5);
  EXPECT_EQ(n->operator_, vel_op_number);
  EXPECT_EQ(n->type, vel_type_number);
  EXPECT_EQ(n->number, -0.5);
  char text[] = "sunny";
  vel_expression_t *l = vel_make_label(text);
  text[0] = 'S';
  EXPECT_STREQ(l->label, "sunny") << "the label is copied";
  EXPECT_EQ(l->type, vel_type_label);
  vel_expression_t *t = vel_make_truth(7);
  EXPECT_EQ(t->truth, 1);
  EXPECT_EQ(t->type, vel_type_boolean);
  vel_expression_t *d = vel_make_node_reference(discrete_);
  vel_expression_t *c = vel_make_node_reference(continuous_);
  EXPECT_EQ(d->type, vel_type_any);
  EXPECT_EQ(c->type, vel_type_number);
  EXPECT_EQ(d->node, discrete_);
  for (vel_expression_t *e : {n, l, t, d, c}) {
    EXPECT_EQ(e->owner, nullptr);
    EXPECT_EQ(vel_expression_delete(e), 0);
  }
  for (double bad : {std::nan(""), std::numeric_limits<double>::infinity(),
                     -std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(vel_make_number(bad), nullptr);
    EXPECT_EQ(vel_error_code(), vel_error_usage);
  }
  EXPECT_EQ(vel_make_label(nullptr), nullptr);
  EXPECT_EQ(vel_make_node_reference(nullptr), nullptr);
}

TEST_F(ExpressionBuilderTest, OperatorTakesOwnership) {
  vel_expression_t *a = vel_make_number(1), *b = vel_make_number(2), *cond = vel_make_truth(1);
  vel_expression_t *const sum_args[] = {a, b, nullptr};
  vel_expression_t *sum = vel_make_operator(vel_op_add, sum_args);
  ASSERT_NE(sum, nullptr);
  EXPECT_EQ(sum->type, vel_type_number);
  EXPECT_EQ(sum->arguments[0], a);
  EXPECT_EQ(sum->arguments[1], b);
  EXPECT_EQ(sum->arguments[2], nullptr);
  EXPECT_EQ(a->owner, sum);
  EXPECT_EQ(sum->depth, 2u);
  vel_expression_t *const if_args[] = {cond, sum, vel_make_number(0), nullptr};
  vel_expression_t *choice = vel_make_operator(vel_op_if, if_args);
  ASSERT_NE(choice, nullptr);
  EXPECT_EQ(choice->type, 0u) << "if is typed later";
  EXPECT_EQ(choice->depth, 3u);
  EXPECT_EQ(vel_expression_delete(sum), vel_error_usage) << "owned by the if";
  EXPECT_EQ(vel_expression_delete(choice), 0);
}

TEST_F(ExpressionBuilderTest, RefusalsKeepArgumentsUntouched) {
  vel_expression_t *owned = number();
  vel_expression_t *const owner_args[] = {owned, nullptr};
  keep(vel_make_operator(vel_op_negate, owner_args));
  vel_expression_t *shared = number();

  struct Case {
    const char *what;
    int code;
    std::vector<vel_expression_t *> arguments;
    const char *message;  // expected text of vel_error_message(); nullptr: not checked
  } cases[] = {
      {"Normal with 3", vel_op_Normal, {number(), number(), number()},
       "Normal takes 2 arguments, got 3"},
      {"Beta with 3", vel_op_Beta, {number(), number(), number()}, "Beta takes 2 or 4 arguments, got 3"},
      {"NoisyOR with 3", vel_op_NoisyOR, {keep(vel_make_truth(1)), number(), keep(vel_make_truth(0))},
       "NoisyOR takes an even number of arguments, 2 or more, got 3"},
      {"log with 2", vel_op_log, {number(), number()}, "log takes 1 argument, got 2"},
      {"Poisson with 0", vel_op_Poisson, {}, "Poisson takes 1 argument, got 0"},
      {"aggregate with a number", vel_op_aggregate, {ref(), number()},
       "argument 2 of aggregate must be a node reference"},
      {"variance of a number", vel_op_variance, {number()}, nullptr},
      {"quantile of a number", vel_op_quantile, {number(), number()}, nullptr},
      {"state_index of a number", vel_op_state_index_of, {number()}, nullptr},
      {"probability without a node", vel_op_probability, {keep(vel_make_truth(1))},
       "the argument of probability must refer to a node"},
      {"owned argument", vel_op_negate, {owned}, nullptr},
      {"same argument twice", vel_op_add, {shared, shared}, "argument 2 of operator + repeats argument 1"},
      {"leaf code", vel_op_number, {}, nullptr},
      {"unknown code", 59, {}, nullptr},
      {"code past the last", 118, {}, nullptr},
  };
  for (Case &c : cases) {
    std::vector<vel_expression_t *> list = c.arguments;
    list.push_back(nullptr);
    EXPECT_EQ(vel_make_operator(c.code, list.data()), nullptr) << c.what;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c.what;
    if (c.message) {
      EXPECT_STREQ(vel_error_message(), c.message) << c.what;
    }
    for (vel_expression_t *argument : c.arguments) {
      if (argument != owned) {
        EXPECT_EQ(argument->owner, nullptr) << c.what;
      }
    }
  }
  EXPECT_EQ(owned->owner, free_[1]);
}

TEST_F(ExpressionBuilderTest, DepthLimit) {
  vel_expression_t *chain = vel_make_number(1);
  for (int depth = 2; depth <= 1000; ++depth) {
    vel_expression_t *const args[] = {chain, nullptr};
    chain = vel_make_operator(vel_op_negate, args);
    ASSERT_NE(chain, nullptr) << depth;
  }
  EXPECT_EQ(chain->depth, 1000u);
  vel_expression_t *const args[] = {chain, nullptr};
  EXPECT_EQ(vel_make_operator(vel_op_negate, args), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(chain->owner, nullptr);
  EXPECT_EQ(vel_expression_delete(chain), 0);
}

TEST_F(ExpressionBuilderTest, ProbabilityAcceptsANestedReference) {
  vel_expression_t *const cmp_args[] = {vel_make_node_reference(discrete_), vel_make_number(2), nullptr};
  vel_expression_t *const args[] = {vel_make_operator(vel_op_less_than, cmp_args), nullptr};
  vel_expression_t *p = vel_make_operator(vel_op_probability, args);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p->type, vel_type_number);
  vel_expression_delete(p);
}

}  // namespace
