// Type assignment, the fit of expressions to nodes, and the structural walks.
#include <gtest/gtest.h>

#include <string>

#include "case_file.h"
#include "eval_test_support.h"

namespace evaltest {
namespace {

class TypingTest : public ExpressionTest {
 protected:
  TypingTest()
      : n_(numbered("N", {1, 2, 3})),
        i_(interval("I", 2)),
        l_(labeled("L", {"a", "b"})),
        b_(boolean("B")),
        c_(continuous("C")),
        u_(parent("U", vel_category_utility, vel_kind_stateless, vel_subtype_none)),
        f_(parent("F", vel_category_function, vel_kind_stateless, vel_subtype_none)) {}

  bool types(const char *text, uint32_t mode) {
    Expr e = parse(text);
    return e && _vel_assign_types(e.get(), mode) != 0;
  }

  vel_node_t *n_, *i_, *l_, *b_, *c_, *u_, *f_;
};

// Text of an expression whose type after typing in mode 0 is `type`.
std::string of_type(int type) {
  static const char *const leaves[] = {"1", "\"a\"", "true", "N", "Normal(0, 1)"};
  if (type <= 5) return leaves[type - 1];
  return "if(true, Normal(0, 1), " + of_type(type - 5) + ")";
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
      std::string text = "if(true, " + of_type(t) + ", " + of_type(f) + ")";
      Expr e = parse(text.c_str());
      ASSERT_TRUE(e);
      const int ok = _vel_assign_types(e.get(), 0);
      EXPECT_EQ(ok != 0, kIfTypes[t - 1][f - 1] != 0) << text;
      if (ok) {
        EXPECT_EQ(e->type, static_cast<uint32_t>(kIfTypes[t - 1][f - 1])) << text;
      }
    }
  }
}

TEST_F(TypingTest, NodeReferenceTypeBySubtypeAndMode) {
  struct Case {
    vel_node_t *node;
    uint32_t mode;
    uint32_t type;
  };
  const Case cases[] = {
      {n_, 1, vel_type_number},  {i_, 1, vel_type_number}, {l_, 1, vel_type_label},
      {b_, 1, vel_type_boolean}, {n_, 0, vel_type_any},    {l_, 0, vel_type_any},
      {b_, 0, vel_type_any},
      // Stateless nodes keep the builder's number type.
      {c_, 0, vel_type_number},  {c_, 1, vel_type_number}, {u_, 1, vel_type_number},
      {f_, 1, vel_type_number},
  };
  for (const Case &c : cases) {
    const char *name = vel_node_get_name(c.node);
    Expr e = parse(name);
    EXPECT_NE(_vel_assign_types(e.get(), c.mode), 0) << name;
    EXPECT_EQ(e->type, c.type) << name << " mode " << c.mode;
  }
}

TEST_F(TypingTest, OperatorArgumentRules) {
  for (const auto &c : vel_test::read_cases("table_generator/data/argument_rules.tsv"))
    EXPECT_EQ(types(c["text"].c_str(), c.integer("mode")), c["accepted"] == "1") << c["text"] << " " << c["mode"];
}

// The check types references in mode 1 itself, the same way every time.
// Types 4 and 9 cannot survive typing in mode 1, so they are forced on a
// constant the typing leaves alone.
TEST_F(TypingTest, ExpressionTypeFitsNode) {
  const char *const texts[] = {"I", "L", "B", "1", "Normal(0, 1)", "if(B, Normal(0, 1), N)",
                               "if(B, Normal(0, 1), L)", "if(L == \"a\", Normal(0, 1), B)",
                               "if(B, Normal(0, 1), 1)"};
  struct Case {
    vel_node_t *node;
    const char *fits;  // character t-1 is '1' when type t fits
  };
  const Case cases[] = {{n_, "100011000"}, {i_, "100011000"}, {l_, "010010100"},
                        {b_, "001010010"}, {c_, "100000000"}, {u_, "100000000"},
                        {f_, "100000000"}};
  for (const Case &c : cases) {
    for (int type = 1; type <= 9; ++type) {
      Expr e = parse(texts[type - 1]);
      if (type == vel_type_any) e->type = vel_type_any;
      if (type == vel_type_distribution_or_any) e->arguments[2]->type = vel_type_any;
      for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(node_check_expression(c.node, e.get()) != 0, c.fits[type - 1] == '1')
            << vel_node_get_name(c.node) << " type " << type;
        EXPECT_EQ(e->type, static_cast<uint32_t>(type));
      }
    }
  }
  EXPECT_EQ(node_check_expression(c_, parse("log(\"a\")").get()), 0);
}

TEST_F(TypingTest, ValueIsUsed) {
  struct Case {
    const char *text;
    bool used;
  };
  const Case cases[] = {
      {"N", true}, {"I", false}, {"1", false}, {"state_index(N)", false},
      {"aggregate(N, I)", false}, {"1 + min(2, N)", true}, {"if(N == 2, 1, 2)", true},
      {"Normal(state_index(N), I)", false},
  };
  for (const Case &c : cases) {
    Expr e = parse(c.text);
    EXPECT_EQ(value_is_used(n_, e.get()) != 0, c.used) << c.text;
  }
}

// The module's names agree with the names the parser reads.
TEST(OperatorNames, MatchTheCallNames) {
  for (int code = vel_op_Normal; code <= vel_op_not; ++code)
    EXPECT_STREQ(operator_names[code - vel_op_Normal], vel_operator_name(code)) << code;
}

}  // namespace
}  // namespace evaltest
