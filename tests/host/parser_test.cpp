// The parser against real nodes: tree shapes, numbers, labels, names,
// arities, error positions and messages, and the nesting limit.
#include <fstream>
#include <iterator>
#include <string>

#include "text_form_support.h"

namespace {

class ParserTest : public texttest::TextFormTest {
 protected:
  // Parses `text` for Child and describes the tree, or "" on failure.
  std::string shape(const std::string &text) {
    vel_expression_t *expression = vel_parse_expression(text.c_str(), child_);
    if (!expression) return "";
    std::string result = describe(expression);
    vel_expression_delete(expression);
    return result;
  }
};

// Precedence, associativity, folding of minus into constants, calls, labels
// (escapes resolved), truths and numbers.
TEST_F(ParserTest, TreeShapes) {
  const struct {
    const char *text;
    const char *shape;
  } cases[] = {
      {"1 + 2 * 3", "(+ 1 (* 2 3))"},         {"1 * 2 + 3", "(+ (* 1 2) 3)"},
      {"1 - 2 - 3", "(- (- 1 2) 3)"},         {"8 / 4 * 2", "(* (/ 8 4) 2)"},
      {"2 ^ 3 ^ 2", "(^ 2 (^ 3 2))"},         {"(2 ^ 3) ^ 2", "(^ (^ 2 3) 2)"},
      {"-2 ^ 2", "(neg (^ 2 2))"},            {"2 ^ -1", "(^ 2 -1)"},
      {"2 ^ -A ^ 2", "(^ 2 (neg (^ A 2)))"},  {"-A * B", "(* (neg A) B)"},
      {"A - -B", "(- A (neg B))"},            {"--A", "(neg (neg A))"},
      {"A + 1 == B * 2", "(== (+ A 1) (* B 2))"}, {"(A < B) == true", "(== (< A B) true)"},
      {"A != B", "(!= A B)"},                 {"A <= B", "(<= A B)"},
      {"A >= B", "(>= A B)"},                 {"A > B", "(> A B)"},
      {" \t1\n+\r2 ", "(+ 1 2)"},             {"--3", "3"},
      {"-(3)", "-3"},                         {"and()", "(and)"},
      {"if(Season == \"winter\", Level, 2)", "(if (== Season \"winter\") Level 2)"},
      {"state_index(Season) + 1", "(+ (state_index Season) 1)"},
      {"truncate(5, Normal(22, 9))", "(truncate 5 (Normal 22 9))"},
      {"\"a\\\"b\\\\c\"", "\"a\"b\\c\""},     {"\"1 + (2\"", "\"1 + (2\""},
      // Numbers, shown in the shortest form that reads back bit for bit.
      {".5", "0.5"}, {"5.", "5"}, {"1e-3", "0.001"}, {"2.5E+4", "25000"}, {"007", "7"},
      {"-0", "-0"}, {"1.7976931348623157e308", "1.7976931348623157e+308"},
      {"2.4703282292062328e-324", "5e-324"},  // just above half the least subnormal
      {"1e-400", "0"}, {"123456789012345678901", "123456789012345683968"},
  };
  for (const auto &c : cases) EXPECT_EQ(shape(c.text), c.shape) << c.text;
}

TEST_F(ParserTest, SyntaxErrorsNameWhatAndWhere) {
  const struct {
    const char *text;
    const char *message;
    long position;
  } cases[] = {
      {"Normal(0, 1", "expected ',' or ')' after argument 2 of Normal", 12},
      {"Normal(0 1)", "expected ',' or ')' after argument 1 of Normal", 10},
      {"Normall(0, 1)", "unknown function 'Normall'", 1},
      {"1 + Rain", "unknown node 'Rain': not a parent of Child", 5},
      {"2 * aggregate(1, Season)", "aggregate: argument 1 must be a node name", 15},
      {"aggregate(Season, 1 + A)", "aggregate: argument 2 must be a node name", 19},
      {"quantile(0.5, Season)", "quantile: argument 1 must be a node name", 10},
      {"variance(Cost + 1)", "variance: argument 1 must be a node name", 10},
      {"state_index(\"winter\")", "state_index: argument 1 must be a node name", 13},
      {"probability(1 < 2)", "probability: argument 1 must refer to a node", 13},
      {"", "expected an expression", 1},
      {"1 +", "expected an expression", 4},
      {"Normal(0,)", "expected an expression", 10},
      {"1)", "unexpected ')'", 2},
      {"A Season", "unexpected 'Season'", 3},
      {"(1", "expected ')'", 3},
      {"A < B < C", "comparison operators do not chain", 7},
      {"A = B", "unexpected '=': equality is written '=='", 3},
      {"!A", "unexpected '!': use '!=' or not(...)", 1},
      {"1 # 2", "unexpected character '#'", 3},
      {"-1e400", "number too large", 2},
      {"1e+", "expected digits in the exponent of a number", 4},
      {".", "unexpected character '.'", 1},
      {"\"open", "unterminated label: expected '\"'", 1},
      {"\"a\\n\"", "unknown escape in label: only \\\" and \\\\ are allowed", 3},
      {"true(1)", "unknown function 'true'", 1},
      // Positions count characters, not bytes.
      {"\"\xc3\xa9t\xc3\xa9\" 1", "unexpected '1'", 7},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(vel_parse_expression(c.text, child_), nullptr) << c.text;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c.text;
    EXPECT_STREQ(vel_error_message(), c.message) << c.text;
    EXPECT_EQ(vel_error_position(), c.position) << c.text;
  }
  EXPECT_EQ(vel_parse_expression(nullptr, child_), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_parse_expression("1", nullptr), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

// Allowed argument counts of every call; each is tried with 0 to 6 node
// arguments so that node-name rules never interfere.
TEST_F(ParserTest, EveryCallEnforcesItsArity) {
  constexpr unsigned any = 0x7f, one_or_more = 0x7e;
  const struct {
    const char *name;
    unsigned accepted;  // bit n: n arguments accepted
    const char *allowed;
  } cases[] = {
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
  for (const auto &c : cases) {
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
      const std::string message = vel_error_message();
      EXPECT_EQ(message.rfind(std::string(c.name) + " takes ", 0), 0u) << message;
      EXPECT_NE(message.find(std::string(" (") + c.allowed + "), got " + std::to_string(count)),
                std::string::npos)
          << message;
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
  const struct {
    const char *what;
    std::string (*text)(int n);
  } cases[] = {
      {"parentheses", [](int n) { return repeated("(", n) + "1" + repeated(")", n); }},
      {"unary minus", [](int n) { return repeated("-", n) + "A"; }},
      {"calls", [](int n) { return repeated("abs(", n) + "A" + repeated(")", n); }},
      {"left chain", [](int n) { return "A" + repeated(" + A", n); }},
      {"powers", [](int n) { return repeated("A ^ ", n) + "A"; }},
  };
  for (const auto &c : cases) {
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

namespace {

// The language reference documents every operator the parser knows.
TEST(LanguageReference, NamesEveryOperator) {
  std::ifstream file(std::string(VEL_SOURCE_DIR) + "/docs/expressions.md");
  const std::string reference((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ASSERT_FALSE(reference.empty());
  for (int code = vel_op_Normal; code < vel_op_number; ++code) {
    const char *name = vel_operator_name(code);
    if (!name) continue;
    const bool infix = code >= vel_op_add && code != vel_op_state_index_of;
    const std::string form = code == vel_op_negate ? "`-a`"
                             : infix               ? std::string("a ") + name + " b"
                                                   : std::string("`") + name + "(";
    EXPECT_NE(reference.find(form), std::string::npos) << form;
  }
}

}  // namespace
