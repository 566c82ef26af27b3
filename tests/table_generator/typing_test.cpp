// Type assignment, the fit of expressions to nodes, and the structural walks.
#include <gtest/gtest.h>

#include "eval_test_support.h"

namespace evaltest {
namespace {

struct Nodes {
  vel_node_t *numbered, *interval, *labeled, *boolean, *continuous, *utility, *function;
};

class TypingTest : public ExpressionTest {
 protected:
  TypingTest() {
    n_.numbered = numbered("N", {1, 2, 3});
    n_.interval = interval("I", {0, 1, 2});
    n_.labeled = labeled("L", {"a", "b"});
    n_.boolean = boolean("B");
    n_.continuous = continuous("C");
    n_.utility = utility("U");
    n_.function = real_function("F");
  }
  Nodes n_;
};

// An expression whose type after typing in mode 0 is `type`.
vel_expression_t *of_type(int type, vel_node_t *discrete_node) {
  switch (type) {
    case vel_type_number: return num(1);
    case vel_type_label: return label("a");
    case vel_type_boolean: return truth(1);
    case vel_type_any: return ref(discrete_node);
    case vel_type_distribution: return normal();
    default: return op(vel_op_if, {truth(1), normal(), of_type(type - 5, discrete_node)});
  }
}

// Type of if(c, then, else) by branch types 1..9; 0: typing fails.
constexpr int kIfTypes[9][9] = {
    {1, 0, 0, 1, 6, 6, 0, 0, 6}, {0, 2, 0, 2, 7, 0, 7, 0, 7}, {0, 0, 3, 3, 8, 0, 0, 8, 8},
    {1, 2, 3, 4, 9, 6, 7, 8, 9}, {6, 7, 8, 9, 5, 6, 7, 8, 9}, {6, 0, 0, 6, 6, 6, 0, 0, 6},
    {0, 7, 0, 7, 7, 0, 7, 0, 7}, {0, 0, 8, 8, 8, 0, 0, 8, 8}, {6, 7, 8, 9, 9, 6, 7, 8, 9},
};

TEST_F(TypingTest, IfTypeFollowsBranchTable) {
  for (int t = 1; t <= 9; ++t) {
    for (int f = 1; f <= 9; ++f) {
      Expr e(op(vel_op_if, {truth(1), of_type(t, n_.numbered), of_type(f, n_.labeled)}));
      ASSERT_TRUE(e);
      const int ok = _vel_assign_types(e.get(), 0);
      const int expected = kIfTypes[t - 1][f - 1];
      if (expected == 0) {
        EXPECT_EQ(ok, 0) << "then " << t << " else " << f;
      } else {
        EXPECT_NE(ok, 0) << "then " << t << " else " << f;
        EXPECT_EQ(e->type, static_cast<uint32_t>(expected)) << "then " << t << " else " << f;
      }
    }
  }
}

TEST_F(TypingTest, IfConditionMustBeBoolean) {
  Expr number_condition(op(vel_op_if, {num(1), num(2), num(3)}));
  EXPECT_EQ(_vel_assign_types(number_condition.get(), 1), 0);
  Expr any_condition(op(vel_op_if, {ref(n_.labeled), num(2), num(3)}));
  EXPECT_NE(_vel_assign_types(any_condition.get(), 0), 0);
  EXPECT_EQ(_vel_assign_types(any_condition.get(), 1), 0);
}

TEST_F(TypingTest, NodeReferenceTypeBySubtypeAndMode) {
  struct Case {
    vel_node_t *node;
    uint32_t mode;
    uint32_t type;  // 0: the type the builder gave stays
  };
  const Case cases[] = {
      {n_.numbered, 1, vel_type_number},   {n_.interval, 1, vel_type_number},
      {n_.labeled, 1, vel_type_label},     {n_.boolean, 1, vel_type_boolean},
      {n_.numbered, 0, vel_type_any},      {n_.interval, 0, vel_type_any},
      {n_.labeled, 0, vel_type_any},       {n_.boolean, 0, vel_type_any},
      {n_.continuous, 0, 0}, {n_.continuous, 1, 0}, {n_.utility, 1, 0}, {n_.function, 1, 0},
  };
  for (const Case &c : cases) {
    Expr e(ref(c.node));
    const uint32_t builder_type = e->type;
    EXPECT_NE(_vel_assign_types(e.get(), c.mode), 0) << vel_node_get_name(c.node);
    EXPECT_EQ(e->type, c.type ? c.type : builder_type)
        << vel_node_get_name(c.node) << " mode " << c.mode;
  }
}

TEST_F(TypingTest, UnknownDiscreteSubtypeFailsOnlyInModeOne) {
  const int32_t subtype = n_.numbered->subtype;
  n_.numbered->subtype = 34;
  Expr e(op(vel_op_add, {num(1), ref(n_.numbered)}));
  EXPECT_EQ(_vel_assign_types(e.get(), 1), 0);
  EXPECT_NE(_vel_assign_types(e.get(), 0), 0);
  n_.numbered->subtype = subtype;
}

TEST_F(TypingTest, FirstFailingArgumentStopsTyping) {
  Expr e(op(vel_op_add, {op(vel_op_log, {label("a")}), ref(n_.numbered)}));
  e->arguments[1]->type = vel_type_distribution_or_any;  // sentinel
  EXPECT_EQ(_vel_assign_types(e.get(), 1), 0);
  EXPECT_EQ(e->arguments[1]->type, static_cast<uint32_t>(vel_type_distribution_or_any));
}

TEST_F(TypingTest, TypingTwiceGivesTheSameResult) {
  Expr e(op(vel_op_if, {op(vel_op_equals, {ref(n_.labeled), label("b")}), normal(),
                        ref(n_.interval)}));
  ASSERT_NE(_vel_assign_types(e.get(), 1), 0);
  EXPECT_EQ(e->type, static_cast<uint32_t>(vel_type_distribution_or_number));
  ASSERT_NE(_vel_assign_types(e.get(), 1), 0);
  EXPECT_EQ(e->type, static_cast<uint32_t>(vel_type_distribution_or_number));
}

struct RuleCase {
  const char *text;
  vel_expression_t *(*make)(const Nodes &);
  uint32_t mode;
  bool ok;
};

const RuleCase kRuleCases[] = {
    {"truncate(1, Normal)", [](const Nodes &) { return op(vel_op_truncate, {num(1), normal()}); }, 1, true},
    {"truncate(1, Normal, 2)", [](const Nodes &) { return op(vel_op_truncate, {num(1), normal(), num(2)}); }, 1, true},
    {"truncate(Normal, 2)", [](const Nodes &) { return op(vel_op_truncate, {normal(), num(2)}); }, 1, true},
    {"truncate(N, Normal) mode 0", [](const Nodes &n) { return op(vel_op_truncate, {ref(n.numbered), normal()}); }, 0, true},
    {"truncate(Normal, 1, 2)", [](const Nodes &) { return op(vel_op_truncate, {normal(), num(1), num(2)}); }, 1, false},
    {"truncate(1, 2)", [](const Nodes &) { return op(vel_op_truncate, {num(1), num(2)}); }, 1, false},
    {"truncate(1, Normal, \"a\")", [](const Nodes &) { return op(vel_op_truncate, {num(1), normal(), label("a")}); }, 1, false},
    {"truncate(\"a\", Normal)", [](const Nodes &) { return op(vel_op_truncate, {label("a"), normal()}); }, 1, false},
    {"truncate(Normal, Normal)", [](const Nodes &) { return op(vel_op_truncate, {normal(), normal()}); }, 1, false},
    {"NoisyOR(true, 0.5, B, 0.25)", [](const Nodes &n) { return op(vel_op_NoisyOR, {truth(1), num(0.5), ref(n.boolean), num(0.25)}); }, 1, true},
    {"NoisyOR(L, L) mode 0", [](const Nodes &n) { return op(vel_op_NoisyOR, {ref(n.labeled), ref(n.labeled)}); }, 0, true},
    {"NoisyOR(1, 0.5)", [](const Nodes &) { return op(vel_op_NoisyOR, {num(1), num(0.5)}); }, 1, false},
    {"NoisyOR(true, 0.5, true, \"a\")", [](const Nodes &) { return op(vel_op_NoisyOR, {truth(1), num(0.5), truth(1), label("a")}); }, 1, false},
    {"NoisyOR(N, 0.5)", [](const Nodes &n) { return op(vel_op_NoisyOR, {ref(n.numbered), num(0.5)}); }, 1, false},
    {"aggregate(N, I)", [](const Nodes &n) { return op(vel_op_aggregate, {ref(n.numbered), ref(n.interval)}); }, 1, true},
    {"aggregate(C, I)", [](const Nodes &n) { return op(vel_op_aggregate, {ref(n.continuous), ref(n.interval)}); }, 1, false},
    {"aggregate(N, U)", [](const Nodes &n) { return op(vel_op_aggregate, {ref(n.numbered), ref(n.utility)}); }, 1, false},
    {"variance(N)", [](const Nodes &n) { return op(vel_op_variance, {ref(n.numbered)}); }, 1, true},
    {"variance(C)", [](const Nodes &n) { return op(vel_op_variance, {ref(n.continuous)}); }, 1, true},
    {"variance(U)", [](const Nodes &n) { return op(vel_op_variance, {ref(n.utility)}); }, 1, true},
    {"variance(F)", [](const Nodes &n) { return op(vel_op_variance, {ref(n.function)}); }, 1, false},
    {"quantile(L, 0.5)", [](const Nodes &n) { return op(vel_op_quantile, {ref(n.labeled), num(0.5)}); }, 1, true},
    {"quantile(C, 0.5)", [](const Nodes &n) { return op(vel_op_quantile, {ref(n.continuous), num(0.5)}); }, 1, false},
    {"quantile(N, \"a\")", [](const Nodes &n) { return op(vel_op_quantile, {ref(n.numbered), label("a")}); }, 1, false},
    {"state_index(B)", [](const Nodes &n) { return op(vel_op_state_index_of, {ref(n.boolean)}); }, 1, true},
    {"state_index(C)", [](const Nodes &n) { return op(vel_op_state_index_of, {ref(n.continuous)}); }, 1, false},
    {"1 == 2", [](const Nodes &) { return op(vel_op_equals, {num(1), num(2)}); }, 1, true},
    {"L == \"a\" mode 0", [](const Nodes &n) { return op(vel_op_equals, {ref(n.labeled), label("a")}); }, 0, true},
    {"\"a\" != N mode 0", [](const Nodes &n) { return op(vel_op_not_equals, {label("a"), ref(n.numbered)}); }, 0, true},
    {"L == \"a\"", [](const Nodes &n) { return op(vel_op_equals, {ref(n.labeled), label("a")}); }, 1, true},
    {"B == true", [](const Nodes &n) { return op(vel_op_equals, {ref(n.boolean), truth(1)}); }, 1, true},
    {"N == \"a\"", [](const Nodes &n) { return op(vel_op_equals, {ref(n.numbered), label("a")}); }, 1, false},
    {"1 != true", [](const Nodes &) { return op(vel_op_not_equals, {num(1), truth(1)}); }, 1, false},
    {"Normal == Normal", [](const Nodes &) { return op(vel_op_equals, {normal(), normal()}); }, 1, false},
    {"probability(L == \"a\")", [](const Nodes &n) { return op(vel_op_probability, {op(vel_op_equals, {ref(n.labeled), label("a")})}); }, 1, true},
    {"and(true, 1)", [](const Nodes &) { return op(vel_op_and, {truth(1), num(1)}); }, 1, false},
    {"not(N)", [](const Nodes &n) { return op(vel_op_not, {ref(n.numbered)}); }, 1, false},
    {"not(N) mode 0", [](const Nodes &n) { return op(vel_op_not, {ref(n.numbered)}); }, 0, true},
    {"N < \"a\"", [](const Nodes &n) { return op(vel_op_less_than, {ref(n.numbered), label("a")}); }, 1, false},
    {"L + 1", [](const Nodes &n) { return op(vel_op_add, {ref(n.labeled), num(1)}); }, 1, false},
    {"L + 1 mode 0", [](const Nodes &n) { return op(vel_op_add, {ref(n.labeled), num(1)}); }, 0, true},
    {"Normal(B, 1)", [](const Nodes &n) { return op(vel_op_Normal, {ref(n.boolean), num(1)}); }, 1, false},
    {"min(I, C, 2)", [](const Nodes &n) { return op(vel_op_min, {ref(n.interval), ref(n.continuous), num(2)}); }, 1, true},
};

TEST_F(TypingTest, OperatorArgumentRules) {
  for (const RuleCase &c : kRuleCases) {
    Expr e(c.make(n_));
    ASSERT_TRUE(e) << c.text;
    EXPECT_EQ(_vel_assign_types(e.get(), c.mode) != 0, c.ok) << c.text;
  }
}

// Expression of the given type after typing in mode 1; type 4 is forced on a
// constant, since a typed node reference never keeps it.
vel_expression_t *typed_in_mode_one(int type) {
  switch (type) {
    case vel_type_number: return num(1);
    case vel_type_label: return label("a");
    case vel_type_boolean: return truth(0);
    case vel_type_any: {
      vel_expression_t *e = num(1);
      e->type = vel_type_any;
      return e;
    }
    case vel_type_distribution: return normal();
    default: return op(vel_op_if, {truth(1), normal(), typed_in_mode_one(type - 5)});
  }
}

TEST_F(TypingTest, ExpressionTypeFitsNode) {
  struct Case {
    vel_node_t *node;
    const char *fits;  // character t-1 is '1' when type t fits
  };
  const Case cases[] = {
      {n_.numbered, "100011000"}, {n_.interval, "100011000"}, {n_.labeled, "010010100"},
      {n_.boolean, "001010010"},  {n_.continuous, "100000000"}, {n_.utility, "100000000"},
      {n_.function, "100000000"},
  };
  for (const Case &c : cases) {
    for (int type = 1; type <= 9; ++type) {
      Expr e(typed_in_mode_one(type));
      ASSERT_TRUE(e);
      EXPECT_EQ(node_check_expression(c.node, e.get()) != 0, c.fits[type - 1] == '1')
          << vel_node_get_name(c.node) << " type " << type;
    }
  }
}

TEST_F(TypingTest, NodeCheckTypesInModeOne) {
  Expr labeled_ref(ref(n_.labeled));
  EXPECT_NE(node_check_expression(n_.labeled, labeled_ref.get()), 0);
  EXPECT_EQ(node_check_expression(n_.numbered, labeled_ref.get()), 0);
  Expr mixed(op(vel_op_if, {op(vel_op_equals, {ref(n_.boolean), truth(1)}), normal(),
                            ref(n_.interval)}));
  EXPECT_NE(node_check_expression(n_.numbered, mixed.get()), 0);
  EXPECT_EQ(node_check_expression(n_.labeled, mixed.get()), 0);
  Expr ill_typed(op(vel_op_log, {label("a")}));
  EXPECT_EQ(node_check_expression(n_.continuous, ill_typed.get()), 0);
}

TEST_F(TypingTest, ValueIsUsed) {
  struct Case {
    const char *text;
    vel_expression_t *(*make)(const Nodes &);
    bool used;
  };
  const Case cases[] = {
      {"N", [](const Nodes &n) { return ref(n.numbered); }, true},
      {"I", [](const Nodes &n) { return ref(n.interval); }, false},
      {"1", [](const Nodes &) { return num(1); }, false},
      {"state_index(N)", [](const Nodes &n) { return op(vel_op_state_index_of, {ref(n.numbered)}); }, false},
      {"aggregate(N, I)", [](const Nodes &n) { return op(vel_op_aggregate, {ref(n.numbered), ref(n.interval)}); }, false},
      {"1 + min(2, N)", [](const Nodes &n) { return op(vel_op_add, {num(1), op(vel_op_min, {num(2), ref(n.numbered)})}); }, true},
      {"if(N == 2, 1, 2)", [](const Nodes &n) { return op(vel_op_if, {op(vel_op_equals, {ref(n.numbered), num(2)}), num(1), num(2)}); }, true},
      {"Normal(state_index(N), I)", [](const Nodes &n) { return op(vel_op_Normal, {op(vel_op_state_index_of, {ref(n.numbered)}), ref(n.interval)}); }, false},
  };
  for (const Case &c : cases) {
    Expr e(c.make(n_));
    ASSERT_TRUE(e) << c.text;
    EXPECT_EQ(value_is_used(n_.numbered, e.get()) != 0, c.used) << c.text;
  }
}

TEST_F(TypingTest, NodeValueIsUsedInModel) {
  vel_node_t *child = utility("V");
  ASSERT_EQ(vel_node_add_parent(child, n_.numbered), 0);
  ASSERT_EQ(vel_node_add_parent(child, n_.labeled), 0);
  EXPECT_EQ(node_value_is_used_in_model(nullptr, n_.numbered), 0);
  vel_node_t *model_nodes[] = {n_.labeled, nullptr};
  vel_model_t *model = vel_node_new_model(child, model_nodes);
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(node_value_is_used_in_model(model, n_.numbered), 0);  // no expressions
  ASSERT_EQ(vel_model_set_expression(model, 0, op(vel_op_state_index_of, {ref(n_.numbered)})), 0);
  ASSERT_EQ(vel_model_set_expression(model, 1, op(vel_op_multiply, {num(2), ref(n_.numbered)})), 0);
  EXPECT_NE(node_value_is_used_in_model(model, n_.numbered), 0);
  EXPECT_EQ(node_value_is_used_in_model(model, n_.labeled), 0);
}

TEST_F(TypingTest, UniqueNodeKeepsTheFirstNodeMet) {
  struct Case {
    const char *text;
    vel_expression_t *(*make)(const Nodes &);
    bool unique;
    int first;  // 0 none, 1 numbered, 2 labeled
  };
  const Case cases[] = {
      {"true", [](const Nodes &) { return truth(1); }, true, 0},
      {"N == 1", [](const Nodes &n) { return op(vel_op_equals, {ref(n.numbered), num(1)}); }, true, 1},
      {"and(N == 1, N < 3)", [](const Nodes &n) { return op(vel_op_and, {op(vel_op_equals, {ref(n.numbered), num(1)}), op(vel_op_less_than, {ref(n.numbered), num(3)})}); }, true, 1},
      {"and(L == \"a\", N == 1, N == 2)", [](const Nodes &n) { return op(vel_op_and, {op(vel_op_equals, {ref(n.labeled), label("a")}), op(vel_op_equals, {ref(n.numbered), num(1)}), op(vel_op_equals, {ref(n.numbered), num(2)})}); }, false, 2},
  };
  for (const Case &c : cases) {
    Expr e(c.make(n_));
    ASSERT_TRUE(e) << c.text;
    vel_node_t *slot = nullptr;
    EXPECT_EQ(get_unique_node(e.get(), &slot) != 0, c.unique) << c.text;
    vel_node_t *const first[] = {nullptr, n_.numbered, n_.labeled};
    EXPECT_EQ(slot, first[c.first]) << c.text;
  }
  Expr e(ref(n_.numbered));
  vel_node_t *slot = n_.labeled;
  EXPECT_EQ(get_unique_node(e.get(), &slot), 0);
  EXPECT_EQ(slot, n_.labeled);
}

TEST(OperatorNames, IndexedByCodeMinusSixty) {
  EXPECT_STREQ(operator_names[vel_op_Normal - 60], "Normal");
  EXPECT_STREQ(operator_names[vel_op_NegativeBinomial - 60], "NegativeBinomial");
  EXPECT_STREQ(operator_names[vel_op_NoisyOR - 60], "NoisyOR");
  EXPECT_STREQ(operator_names[vel_op_truncate - 60], "truncate");
  EXPECT_STREQ(operator_names[vel_op_log10 - 60], "log10");
  EXPECT_STREQ(operator_names[vel_op_mod - 60], "mod");
  EXPECT_STREQ(operator_names[vel_op_not - 60], "not");
}

}  // namespace
}  // namespace evaltest
