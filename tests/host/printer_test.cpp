// The printer: canonical text, parentheses, numbers, labels, buffer
// semantics, and the round trip parse -> print -> parse.
#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cstring>
#include <string>

#include "host/records.h"
#include "vel/vel.h"

namespace {

class PrinterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    domain_ = vel_domain_new();
    ASSERT_NE(domain_, nullptr);
    child_ = vel_domain_new_node(domain_, vel_category_function, vel_kind_stateless,
                                 vel_subtype_none, "Child");
    struct Parent {
      const char *name;
      int category, kind, subtype;
      size_t states;
    };
    const Parent parents[] = {
        {"A", vel_category_chance, vel_kind_discrete, vel_subtype_numbered, 3},
        {"B", vel_category_chance, vel_kind_discrete, vel_subtype_numbered, 3},
        {"C", vel_category_chance, vel_kind_discrete, vel_subtype_numbered, 3},
        {"Season", vel_category_chance, vel_kind_discrete, vel_subtype_labeled, 4},
        {"Temp", vel_category_chance, vel_kind_discrete, vel_subtype_interval, 4},
        {"Frost", vel_category_chance, vel_kind_discrete, vel_subtype_boolean, 0},
        {"Heating", vel_category_decision, vel_kind_discrete, vel_subtype_labeled, 2},
        {"Level", vel_category_chance, vel_kind_continuous, vel_subtype_none, 0},
        {"Cost", vel_category_utility, vel_kind_stateless, vel_subtype_none, 0},
    };
    for (const Parent &p : parents) {
      vel_node_t *node = vel_domain_new_node(domain_, p.category, p.kind, p.subtype, p.name);
      ASSERT_NE(node, nullptr) << p.name;
      if (p.states) {
        ASSERT_EQ(vel_node_set_number_of_states(node, p.states), 0);
      }
      ASSERT_EQ(vel_node_add_parent(child_, node), 0) << p.name;
    }
  }
  void TearDown() override { vel_domain_delete(domain_); }

  vel_expression_t *parse(const std::string &text) {
    vel_expression_t *e = vel_parse_expression(text.c_str(), child_);
    EXPECT_NE(e, nullptr) << text << ": " << vel_error_message() << " at "
                          << vel_error_position();
    return e;
  }

  static std::string print(const vel_expression_t *e) {
    size_t length = vel_expression_print(e, nullptr, 0);
    if (length == static_cast<size_t>(-1)) return "<failed>";
    std::string text(length, '\0');
    EXPECT_EQ(vel_expression_print(e, text.data(), length + 1), length);
    return text;
  }

  std::string reprint(const std::string &text) {
    vel_expression_t *e = parse(text);
    if (!e) return "<parse failed>";
    std::string printed = print(e);
    vel_expression_delete(e);
    return printed;
  }

  vel_domain_t *domain_ = nullptr;
  vel_node_t *child_ = nullptr;
};

// Same codes, numbers bit for bit, labels, nodes and shape.
::testing::AssertionResult same_tree(const vel_expression_t *a, const vel_expression_t *b,
                                     const std::string &path = "root") {
  if (a->operator_ != b->operator_)
    return ::testing::AssertionFailure() << path << ": operator " << a->operator_ << " vs "
                                         << b->operator_;
  switch (a->operator_) {
    case vel_op_number:
      if (std::bit_cast<uint64_t>(a->number) != std::bit_cast<uint64_t>(b->number))
        return ::testing::AssertionFailure() << path << ": " << a->number << " vs " << b->number;
      return ::testing::AssertionSuccess();
    case vel_op_label:
      if (std::strcmp(a->label, b->label) != 0)
        return ::testing::AssertionFailure() << path << ": label " << a->label << " vs "
                                             << b->label;
      return ::testing::AssertionSuccess();
    case vel_op_node:
      if (a->node != b->node) return ::testing::AssertionFailure() << path << ": node";
      return ::testing::AssertionSuccess();
    case vel_op_truth:
      if (a->truth != b->truth) return ::testing::AssertionFailure() << path << ": truth";
      return ::testing::AssertionSuccess();
    default: break;
  }
  size_t i = 0;
  for (; a->arguments && a->arguments[i]; ++i) {
    if (!b->arguments || !b->arguments[i])
      return ::testing::AssertionFailure() << path << ": fewer arguments";
    auto inner = same_tree(a->arguments[i], b->arguments[i], path + "." + std::to_string(i));
    if (!inner) return inner;
  }
  if (b->arguments && b->arguments[i])
    return ::testing::AssertionFailure() << path << ": more arguments";
  return ::testing::AssertionSuccess();
}

struct PrintCase {
  const char *text;
  const char *printed;
};

// Fewest parentheses that keep the shape; shortest numbers; quoted labels.
TEST_F(PrinterTest, CanonicalText) {
  const PrintCase cases[] = {
      {"1+2*3", "1 + 2 * 3"}, {"(1+2)*3", "(1 + 2) * 3"}, {"(1-2)-3", "1 - 2 - 3"},
      {"1-(2-3)", "1 - (2 - 3)"}, {"1+(2+3)", "1 + (2 + 3)"}, {"A/B*C", "A / B * C"},
      {"A/(B*C)", "A / (B * C)"}, {"2^(3^2)", "2 ^ 3 ^ 2"}, {"(2^3)^2", "(2 ^ 3) ^ 2"},
      {"-2^2", "-2 ^ 2"}, {"(-2)^2", "(-2) ^ 2"}, {"(-A)^2", "(-A) ^ 2"}, {"2^-1", "2 ^ -1"},
      {"2^(-A)", "2 ^ -A"}, {"(A*B)^C", "(A * B) ^ C"}, {"-(A+B)", "-(A + B)"},
      {"-(A*B)", "-(A * B)"}, {"(-A)*B", "-A * B"}, {"- -A", "--A"}, {"-(A^2)", "-A ^ 2"},
      {"A*(-B)", "A * -B"}, {"A-(-3)", "A - -3"}, {"(-3)*A", "-3 * A"},
      {"(A<B)==true", "(A < B) == true"}, {"A==(B<C)", "A == (B < C)"},
      {"(A+1)<(B*2)", "A + 1 < B * 2"}, {"(A)", "A"}, {"((Normal( 0 ,1 )))", "Normal(0, 1)"},
      {"and()", "and()"}, {"if(A<1,(2),-(3))", "if(A < 1, 2, -3)"},
      {"state_index( Season )", "state_index(Season)"},
      {"max(0, (15 - Temp))", "max(0, 15 - Temp)"}, {"0.1", "0.1"}, {"1e300", "1e+300"},
      {"1e-5", "1e-05"},
      {"100000", "1e+05"},  // the shorter of the fixed and scientific forms
      {"123456", "123456"}, {"2.50", "2.5"}, {"-0", "-0"}, {"0", "0"}, {"-1.5", "-1.5"},
      {"\"sunny\"", "\"sunny\""}, {"\"a\\\"b\\\\c\"", "\"a\\\"b\\\\c\""}, {"\"\"", "\"\""},
      {"true", "true"}, {"false", "false"},
  };
  for (const PrintCase &c : cases) EXPECT_EQ(reprint(c.text), c.printed) << c.text;
}

// Trees the parser never makes still print as text that keeps their value.
TEST_F(PrinterTest, BuiltTreesWithNegativeConstants) {
  auto negate = [](vel_expression_t *operand) {
    vel_expression_t *arguments[] = {operand, nullptr};
    return vel_make_operator(vel_op_negate, arguments);
  };
  auto power = [](vel_expression_t *base, vel_expression_t *exponent) {
    vel_expression_t *arguments[] = {base, exponent, nullptr};
    return vel_make_operator(vel_op_power, arguments);
  };
  struct BuiltCase {
    vel_expression_t *tree;
    const char *printed;
  };
  const BuiltCase cases[] = {
      {negate(vel_make_number(-3)), "-(-3)"},
      {negate(vel_make_number(-0.0)), "-(-0)"},
      {negate(vel_make_number(3)), "-3"},
      {power(vel_make_number(-2), vel_make_number(2)), "(-2) ^ 2"},
      {power(vel_make_number(-0.0), vel_make_number(-1)), "(-0) ^ -1"},
  };
  for (const BuiltCase &c : cases) {
    ASSERT_NE(c.tree, nullptr);
    EXPECT_EQ(print(c.tree), c.printed);
    vel_expression_delete(c.tree);
  }
}

TEST_F(PrinterTest, ShortestNumbersReadBackBitForBit) {
  const double values[] = {
      0.1,        1.0 / 3.0,      2.0 / 3.0,   1e23,          9007199254740993.0,
      DBL_MAX,    -DBL_MAX,       DBL_MIN,     -DBL_MIN,      DBL_TRUE_MIN,
      DBL_EPSILON, 123456.789e10, -0.0,       5e-324,        1.7976931348623157e+308,
      0.3,        299792458.0,    -1e-300,     6.02214076e23, 2.2250738585072009e-308,
  };
  for (double value : values) {
    vel_expression_t *leaf = vel_make_number(value);
    ASSERT_NE(leaf, nullptr);
    std::string text = print(leaf);
    vel_expression_t *back = parse(text);
    ASSERT_NE(back, nullptr) << text;
    EXPECT_TRUE(same_tree(leaf, back)) << text;
    vel_expression_delete(leaf);
    vel_expression_delete(back);
  }
}

TEST_F(PrinterTest, SnprintfSemantics) {
  vel_expression_t *e = parse("1 + 2");  // prints as "1 + 2", 5 characters
  ASSERT_NE(e, nullptr);
  char buffer[8];
  std::memset(buffer, 'x', sizeof buffer);
  EXPECT_EQ(vel_expression_print(e, buffer, 4), 5u);
  EXPECT_STREQ(buffer, "1 +");
  EXPECT_EQ(buffer[4], 'x');
  EXPECT_EQ(vel_expression_print(e, buffer, 5), 5u);
  EXPECT_STREQ(buffer, "1 + ");
  EXPECT_EQ(vel_expression_print(e, buffer, 6), 5u);
  EXPECT_STREQ(buffer, "1 + 2");
  EXPECT_EQ(vel_expression_print(e, buffer, 1), 5u);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(vel_expression_print(e, nullptr, 0), 5u);
  EXPECT_EQ(vel_error_code(), 0);

  EXPECT_EQ(vel_expression_print(e, nullptr, 4), static_cast<size_t>(-1));
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_expression_print(nullptr, buffer, sizeof buffer), static_cast<size_t>(-1));
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  vel_expression_delete(e);
}

// Parsing the printed text of a parsed tree gives the same tree, and
// printing is then a fixed point.
TEST_F(PrinterTest, RoundTripCorpus) {
  const char *const corpus[] = {
      // Model-file examples.
      "Normal(0, 25)", "Normal(10, 16)", "truncate(5, Normal(22, 9))",
      "if(Temp < 0, true, Distribution(0.95, 0.05))", "-2 * max(0, 15 - Temp)", "-40",
      // Distributions.
      "LogNormal(0, 1)", "LogNormal(A, 0.5, -2)", "Beta(2, 5)", "Beta(2, 5, -1, 1e3)",
      "Gamma(2, 0.5)", "Gamma(2, 0.5, 10)", "Exponential(0.1)", "Exponential(0.1, -3)",
      "Weibull(1.5, 2, 0)", "Uniform(-1, 1)", "Triangular(0, 2.5, 10)", "PERT(0, 3, 10)",
      "PERT(0, 3, 10, 6)", "Binomial(10, 0.25)", "Poisson(3.5)", "NegativeBinomial(4, 0.5)",
      "Geometric(0.2)", "Distribution(1, 2, 3, 4)", "Distribution(A / 10, 1 - A / 10)",
      "NoisyOR(Frost, 0.9, A > 1, 0.3)", "truncate(Normal(0, 1), 2)",
      "truncate(-1, Normal(0, 1), 1)", "truncate(0, truncate(Gamma(2, 1), 5))",
      "aggregate(A, Season)",
      // Inference queries.
      "probability(Season == \"winter\")", "probability(and(A > 1, Frost))", "variance(Level)",
      "variance(Cost)", "quantile(Temp, 0.95)",
      // Numeric functions.
      "min(A, B, C)", "max(1)", "log(Level) + log2(8) - log10(1000)", "exp(-Level ^ 2 / 2)",
      "sin(A) ^ 2 + cos(A) ^ 2", "tan(0.5) * sinh(1) / cosh(1) - tanh(2)",
      "sqrt(abs(Level - 3))", "floor(Level) + ceil(-Level)", "mod(A + 7, 3)",
      "state_index(Season) * 2 + state_index(Heating)",
      // Conditionals and logic.
      "if(Frost, Normal(0, 1), 3)", "if(Season == \"summer\", \"hot\", \"cold\")",
      "if(not(Frost), A, if(A < B, B, C))", "and()", "or(Frost, Heating == \"on\", A >= 2)",
      "and(A != 1, B <= 2, not(C > 0))", "Frost == false",
      "\"he said \\\"hi\\\" \\\\ bye\" == Season",
      // Arithmetic shapes and constants.
      "1 - 2 - 3 - (4 - 5)", "A / B / C", "A / (B / C)", "2 ^ 3 ^ 2", "(2 ^ 3) ^ 2", "-2 ^ 2",
      "(-2) ^ 2", "2 ^ -1", "--A", "-(-(A))", "-(A - B) * -(C + 1)",
      "((A + B) * (C - 1)) / ((A - B) ^ 2)", "A * -1e-300", "-0 + 0", "0.1 + 0.2",
      "1e308 * 1.7976931348623157e308", "4.9406564584124654e-324", "123456789012345683968",
      "(A < B) == (B < C)", "Level * Level - 2 * Level + 1 >= 0",
  };
  static_assert(sizeof corpus / sizeof corpus[0] >= 60);
  for (const char *text : corpus) {
    vel_expression_t *first = parse(text);
    if (!first) continue;
    std::string printed = print(first);
    vel_expression_t *second = parse(printed);
    if (second) {
      EXPECT_TRUE(same_tree(first, second)) << text << " printed as " << printed;
      EXPECT_EQ(print(second), printed) << text;
    }
    vel_expression_delete(first);
    vel_expression_delete(second);
  }
}

// The deepest trees the parser accepts print as text it accepts again.
TEST_F(PrinterTest, DeepTreesRoundTrip) {
  std::string chain = "A";
  for (int i = 0; i < 999; ++i) chain += " - A";
  std::string nested;
  for (int i = 0; i < 499; ++i) nested += "-(A + ";
  nested += "A";
  for (int i = 0; i < 499; ++i) nested += ")";
  for (const std::string &text : {chain, nested}) {
    vel_expression_t *first = parse(text);
    ASSERT_NE(first, nullptr);
    vel_expression_t *second = parse(print(first));
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(same_tree(first, second));
    vel_expression_delete(first);
    vel_expression_delete(second);
  }
}

}  // namespace
