// The parser against real nodes: tree shapes, numbers, labels, names,
// arities, error positions and messages, and the nesting limit.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <string>

#include "host/records.h"
#include "vel/vel.h"

namespace {

class ParserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    domain_ = vel_domain_new();
    ASSERT_NE(domain_, nullptr);
    child_ = vel_domain_new_node(domain_, vel_category_function, vel_kind_stateless,
                                 vel_subtype_none, "Child");
    rain_ = vel_domain_new_node(domain_, vel_category_chance, vel_kind_discrete,
                                vel_subtype_boolean, "Rain");
    for (const char *name : {"A", "B", "C"}) {
      vel_node_t *node = vel_domain_new_node(domain_, vel_category_chance, vel_kind_discrete,
                                             vel_subtype_numbered, name);
      ASSERT_EQ(vel_node_set_number_of_states(node, 3), 0);
      ASSERT_EQ(vel_node_add_parent(child_, node), 0);
    }
    vel_node_t *season = vel_domain_new_node(domain_, vel_category_chance, vel_kind_discrete,
                                             vel_subtype_labeled, "Season");
    ASSERT_EQ(vel_node_set_number_of_states(season, 4), 0);
    vel_node_t *level = vel_domain_new_node(domain_, vel_category_chance, vel_kind_continuous,
                                            vel_subtype_none, "Level");
    vel_node_t *temp = vel_domain_new_node(domain_, vel_category_chance, vel_kind_discrete,
                                           vel_subtype_interval, "Temp");
    ASSERT_EQ(vel_node_add_parent(child_, season), 0);
    ASSERT_EQ(vel_node_add_parent(child_, level), 0);
    ASSERT_EQ(vel_node_add_parent(child_, temp), 0);
    ASSERT_EQ(vel_node_add_parent(rain_, temp), 0);
  }
  void TearDown() override { vel_domain_delete(domain_); }

  // Parses `text` for Child and describes the tree, or "" on failure.
  std::string shape(const std::string &text, vel_node_t *node = nullptr) {
    vel_expression_t *expression = vel_parse_expression(text.c_str(), node ? node : child_);
    if (!expression) return "";
    std::string result = describe(expression);
    vel_expression_delete(expression);
    return result;
  }

  // Fully parenthesised prefix form, independent of the printer.
  static std::string describe(const vel_expression_t *e) {
    switch (e->operator_) {
      case vel_op_number: {
        char digits[32];
        return std::string(digits, std::to_chars(digits, digits + 32, e->number).ptr);
      }
      case vel_op_label: return "\"" + std::string(e->label) + "\"";
      case vel_op_truth: return e->truth ? "true" : "false";
      case vel_op_node: return vel_node_get_name(e->node);
      default: break;
    }
    std::string result = "(";
    result += e->operator_ == vel_op_negate ? "neg" : vel_operator_name(e->operator_);
    for (vel_expression_t *const *a = e->arguments; a && *a; ++a) result += " " + describe(*a);
    return result + ")";
  }

  vel_domain_t *domain_ = nullptr;
  vel_node_t *child_ = nullptr;
  vel_node_t *rain_ = nullptr;
};

struct ShapeCase {
  const char *text;
  const char *shape;
};

// Precedence, associativity, folding of minus into constants, calls, labels
// (escapes resolved) and truths.
TEST_F(ParserTest, TreeShapes) {
  const ShapeCase cases[] = {
      {"1 + 2 * 3", "(+ 1 (* 2 3))"},         {"1 * 2 + 3", "(+ (* 1 2) 3)"},
      {"1 - 2 - 3", "(- (- 1 2) 3)"},         {"8 / 4 / 2", "(/ (/ 8 4) 2)"},
      {"8 / 4 * 2", "(* (/ 8 4) 2)"},         {"1 - 2 * 3", "(- 1 (* 2 3))"},
      {"2 ^ 3 ^ 2", "(^ 2 (^ 3 2))"},         {"(2 ^ 3) ^ 2", "(^ (^ 2 3) 2)"},
      {"-2 ^ 2", "(neg (^ 2 2))"},            {"2 ^ -1", "(^ 2 -1)"},
      {"2 ^ -A ^ 2", "(^ 2 (neg (^ A 2)))"},  {"-A * B", "(* (neg A) B)"},
      {"A * -B", "(* A (neg B))"},            {"A - -B", "(- A (neg B))"},
      {"--A", "(neg (neg A))"},               {"(1 + 2) * 3", "(* (+ 1 2) 3)"},
      {"A < B + 1", "(< A (+ B 1))"},         {"A + 1 == B * 2", "(== (+ A 1) (* B 2))"},
      {"A != B", "(!= A B)"},                 {"A <= B", "(<= A B)"},
      {"A >= B", "(>= A B)"},                 {"A > B", "(> A B)"},
      {"(A < B) == true", "(== (< A B) true)"}, {" \t1\n+\r2 ", "(+ 1 2)"},
      {"-3", "-3"},                           {"--3", "3"},
      {"-(3)", "-3"},                         {"-(-(2.5))", "2.5"},
      {"Normal(0, 1)", "(Normal 0 1)"},       {"and()", "(and)"},
      {"or(A < 1, false)", "(or (< A 1) false)"},
      {"if(Season == \"winter\", Level, 2)", "(if (== Season \"winter\") Level 2)"},
      {"state_index(Season) + 1", "(+ (state_index Season) 1)"},
      {"truncate(5, Normal(22, 9))", "(truncate 5 (Normal 22 9))"},
      {"-max(0, 15 - Temp)", "(neg (max 0 (- 15 Temp)))"},
      {"\"a\\\"b\"", "\"a\"b\""},             {"\"back\\\\slash\"", "\"back\\slash\""},
      {"\"\"", "\"\""},                         {"\"1 + (2\"", "\"1 + (2\""},
  };
  for (const ShapeCase &c : cases) EXPECT_EQ(shape(c.text), c.shape) << c.text;
}

TEST_F(ParserTest, NumberForms) {
  struct NumberCase {
    const char *text;
    double value;
  };
  const NumberCase cases[] = {
      {"3", 3.0},      {"0.25", 0.25},  {".5", 0.5},   {"5.", 5.0},   {"1e-3", 1e-3},
      {"2.5E+4", 2.5e4}, {"007", 7.0},  {"0.1", 0.1},  {"-0", -0.0},  {"-7.5", -7.5},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"4.9406564584124654e-324", 4.9406564584124654e-324},
      {"1e-400", 0.0},  // below the smallest subnormal: rounds to zero
      {"123456789012345683968", 123456789012345683968.0},
  };
  for (const NumberCase &c : cases) {
    vel_expression_t *e = vel_parse_expression(c.text, child_);
    ASSERT_NE(e, nullptr) << c.text;
    EXPECT_EQ(e->operator_, static_cast<uint32_t>(vel_op_number));
    EXPECT_EQ(std::bit_cast<uint64_t>(e->number), std::bit_cast<uint64_t>(c.value)) << c.text;
    vel_expression_delete(e);
  }
}

TEST_F(ParserTest, NodeReferencesResolveToParents) {
  vel_expression_t *e = vel_parse_expression("Temp", rain_);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->operator_, static_cast<uint32_t>(vel_op_node));
  EXPECT_EQ(e->node, vel_domain_get_node_by_name(domain_, "Temp"));
  vel_expression_delete(e);
}

struct ErrorCase {
  const char *text;
  const char *message;
  long position;
};

TEST_F(ParserTest, SyntaxErrorsNameWhatAndWhere) {
  const ErrorCase cases[] = {
      {"Normal(0, 1", "expected ',' or ')' after argument 2 of Normal", 12},
      {"Normal(0 1)", "expected ',' or ')' after argument 1 of Normal", 10},
      {"Normall(0, 1)", "unknown function 'Normall'", 1},
      {"1 + Rain", "unknown node 'Rain': not a parent of Child", 5},
      {"Tmp > 0", "unknown node 'Tmp': not a parent of Child", 1},
      {"Normal(0, 1, 2)", "Normal takes 2 arguments, got 3", 1},
      {"2 * aggregate(1, Season)", "aggregate: argument 1 must be a node name", 15},
      {"aggregate(Season, 1 + A)", "aggregate: argument 2 must be a node name", 19},
      {"quantile(0.5, Season)", "quantile: argument 1 must be a node name", 10},
      {"variance(Level + 1)", "variance: argument 1 must be a node name", 10},
      {"state_index(\"winter\")", "state_index: argument 1 must be a node name", 13},
      {"probability(1 < 2)", "probability: argument 1 must refer to a node", 13},
      {"", "expected an expression", 1},
      {"   ", "expected an expression", 4},
      {"1 +", "expected an expression", 4},
      {"Normal(0,)", "expected an expression", 10},
      {"()", "expected an expression", 2},
      {"1)", "unexpected ')'", 2},
      {"1 2", "unexpected '2'", 3},
      {"A Season", "unexpected 'Season'", 3},
      {"(1", "expected ')'", 3},
      {"A < B < C", "comparison operators do not chain", 7},
      {"A == B != C", "comparison operators do not chain", 8},
      {"A = B", "unexpected '=': equality is written '=='", 3},
      {"!A", "unexpected '!': use '!=' or not(...)", 1},
      {"1 # 2", "unexpected character '#'", 3},
      {"1e400", "number too large", 1},
      {"-1e400", "number too large", 2},
      {"1e+", "expected digits in the exponent of a number", 4},
      {".", "unexpected character '.'", 1},
      {"\"open", "unterminated label: expected '\"'", 1},
      {"\"a\\n\"", "unknown escape in label: only \\\" and \\\\ are allowed", 3},
      {"true(1)", "unknown function 'true'", 1},
      // Positions count characters, not bytes.
      {"\"\xc3\xa9t\xc3\xa9\" 1", "unexpected '1'", 7},
  };
  for (const ErrorCase &c : cases) {
    EXPECT_EQ(vel_parse_expression(c.text, child_), nullptr) << c.text;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c.text;
    EXPECT_STREQ(vel_error_message(), c.message) << c.text;
    EXPECT_EQ(vel_error_position(), c.position) << c.text;
  }
}

TEST_F(ParserTest, MissingTextOrNodeIsUsageError) {
  EXPECT_EQ(vel_parse_expression(nullptr, child_), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_parse_expression("1", nullptr), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

// Allowed argument counts of every call, from the syntax's table; each is
// tried with 0 to 6 node arguments so that node-name rules never interfere.
TEST_F(ParserTest, EveryCallEnforcesItsArity) {
  struct ArityCase {
    const char *name;
    unsigned accepted;  // bit n: n arguments accepted
    const char *allowed;
  };
  constexpr unsigned any = 0x7f, one_or_more = 0x7e;
  const ArityCase cases[] = {
      {"Normal", 0x04, "2 arguments"},       {"LogNormal", 0x0c, "2 or 3 arguments"},
      {"Beta", 0x14, "2 or 4 arguments"},     {"Gamma", 0x0c, "2 or 3 arguments"},
      {"Exponential", 0x06, "1 or 2 arguments"}, {"Weibull", 0x0c, "2 or 3 arguments"},
      {"Uniform", 0x04, "2 arguments"},      {"Triangular", 0x08, "3 arguments"},
      {"PERT", 0x18, "3 or 4 arguments"},    {"Binomial", 0x04, "2 arguments"},
      {"Poisson", 0x02, "1 argument"},       {"NegativeBinomial", 0x04, "2 arguments"},
      {"Geometric", 0x02, "1 argument"},     {"Distribution", one_or_more, "1 or more arguments"},
      {"NoisyOR", 0x54, "an even number of arguments, 2 or more"},
      {"truncate", 0x0c, "2 or 3 arguments"}, {"aggregate", 0x04, "2 arguments"},
      {"probability", 0x02, "1 argument"},   {"variance", 0x02, "1 argument"},
      {"quantile", 0x04, "2 arguments"},     {"min", one_or_more, "1 or more arguments"},
      {"max", one_or_more, "1 or more arguments"}, {"log", 0x02, "1 argument"},
      {"log2", 0x02, "1 argument"},          {"log10", 0x02, "1 argument"},
      {"exp", 0x02, "1 argument"},           {"sin", 0x02, "1 argument"},
      {"cos", 0x02, "1 argument"},           {"tan", 0x02, "1 argument"},
      {"sinh", 0x02, "1 argument"},          {"cosh", 0x02, "1 argument"},
      {"tanh", 0x02, "1 argument"},          {"sqrt", 0x02, "1 argument"},
      {"abs", 0x02, "1 argument"},           {"floor", 0x02, "1 argument"},
      {"ceil", 0x02, "1 argument"},          {"mod", 0x04, "2 arguments"},
      {"if", 0x08, "3 arguments"},           {"and", any, "0 or more arguments"},
      {"or", any, "0 or more arguments"},    {"not", 0x02, "1 argument"},
      {"state_index", 0x02, "1 argument"},
  };
  for (const ArityCase &c : cases) {
    for (int count = 0; count <= 6; ++count) {
      std::string text = std::string(c.name) + "(";
      for (int i = 0; i < count; ++i) text += i ? ", A" : "A";
      text += ")";
      vel_expression_t *e = vel_parse_expression(text.c_str(), child_);
      if (c.accepted >> count & 1u) {
        EXPECT_NE(e, nullptr) << text << ": " << vel_error_message();
        vel_expression_delete(e);
        continue;
      }
      EXPECT_EQ(e, nullptr) << text;
      EXPECT_EQ(vel_error_code(), vel_error_usage) << text;
      std::string expected =
          std::string(c.name) + " takes " + c.allowed + ", got " + std::to_string(count);
      EXPECT_EQ(vel_error_message(), expected) << text;
      EXPECT_EQ(vel_error_position(), 1) << text;
    }
  }
}

std::string repeated(const std::string &piece, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += piece;
  return result;
}

// Each form nests `n` levels below the top expression; 999 fits the limit of
// 1000 and 1000 does not.  5000 must fail cleanly, not overflow the stack.
TEST_F(ParserTest, NestingDeeperThan1000IsRefused) {
  struct DepthCase {
    const char *what;
    std::string (*text)(int n);
  };
  const DepthCase cases[] = {
      {"parentheses", [](int n) { return repeated("(", n) + "1" + repeated(")", n); }},
      {"unary minus", [](int n) { return repeated("-", n) + "A"; }},
      {"calls", [](int n) { return repeated("abs(", n) + "A" + repeated(")", n); }},
      {"left chain", [](int n) { return "A" + repeated(" + A", n); }},
      {"powers", [](int n) { return repeated("A ^ ", n) + "A"; }},
      {"mixed", [](int n) { return repeated("-(", n / 2) + "A" + repeated(")", n / 2); }},
  };
  for (const DepthCase &c : cases) {
    vel_expression_t *fits = vel_parse_expression(c.text(999).c_str(), child_);
    EXPECT_NE(fits, nullptr) << c.what << ": " << vel_error_message();
    vel_expression_delete(fits);
    for (int n : {1000, 5000}) {
      EXPECT_EQ(vel_parse_expression(c.text(n).c_str(), child_), nullptr) << c.what << n;
      EXPECT_EQ(vel_error_code(), vel_error_usage) << c.what << n;
      EXPECT_STREQ(vel_error_message(), "nesting deeper than 1000") << c.what << n;
    }
  }
}

}  // namespace
