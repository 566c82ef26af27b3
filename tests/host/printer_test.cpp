// The printer: canonical text, parentheses, numbers, labels, buffer
// semantics, and the round trip parse -> print -> parse.
#include <cstring>
#include <string>

#include "text_form_support.h"

namespace {

class PrinterTest : public texttest::TextFormTest {
 protected:
  vel_expression_t *parse(const std::string &text) {
    vel_expression_t *e = vel_parse_expression(text.c_str(), child_);
    EXPECT_NE(e, nullptr) << text << ": " << vel_error_message();
    return e;
  }

  static std::string print(const vel_expression_t *e) {
    size_t length = vel_expression_print(e, nullptr, 0);
    if (length == static_cast<size_t>(-1)) return "<failed>";
    std::string text(length, '\0');
    EXPECT_EQ(vel_expression_print(e, text.data(), length + 1), length);
    return text;
  }

  // Text parsed, printed and parsed again: the two trees must be the same,
  // and printing the second gives the same text.  Returns the printed text.
  std::string round_trip(const std::string &text) {
    vel_expression_t *first = parse(text);
    if (!first) return "<parse failed>";
    std::string printed = print(first);
    vel_expression_t *second = parse(printed);
    if (second) {
      EXPECT_EQ(describe(first), describe(second)) << text << " printed as " << printed;
      EXPECT_EQ(print(second), printed) << text;
    }
    vel_expression_delete(first);
    vel_expression_delete(second);
    return printed;
  }
};

// Fewest parentheses that keep the shape; shortest numbers; quoted labels.
TEST_F(PrinterTest, CanonicalText) {
  const struct {
    const char *text;
    const char *printed;
  } cases[] = {
      {"1+2*3", "1 + 2 * 3"}, {"(1+2)*3", "(1 + 2) * 3"}, {"(1-2)-3", "1 - 2 - 3"},
      {"1-(2-3)", "1 - (2 - 3)"}, {"1+(2+3)", "1 + (2 + 3)"}, {"A/(B*C)", "A / (B * C)"},
      {"2^(3^2)", "2 ^ 3 ^ 2"}, {"(2^3)^2", "(2 ^ 3) ^ 2"}, {"-2^2", "-2 ^ 2"},
      {"(-2)^2", "(-2) ^ 2"}, {"(-A)^2", "(-A) ^ 2"}, {"2^-1", "2 ^ -1"},
      {"(A*B)^C", "(A * B) ^ C"}, {"-(A+B)", "-(A + B)"}, {"(-A)*B", "-A * B"},
      {"- -A", "--A"}, {"A*(-B)", "A * -B"}, {"A-(-3)", "A - -3"},
      {"(A<B)==true", "(A < B) == true"}, {"A==(B<C)", "A == (B < C)"},
      {"(A+1)<(B*2)", "A + 1 < B * 2"}, {"((Normal( 0 ,1 )))", "Normal(0, 1)"},
      {"if(A<1,(2),-(3))", "if(A < 1, 2, -3)"}, {"state_index( Season )", "state_index(Season)"},
      {"1e300", "1e+300"}, {"100000", "1e+05"}, {"2.50", "2.5"}, {"-0", "-0"},
      {"\"a\\\"b\\\\c\"", "\"a\\\"b\\\\c\""}, {"false", "false"},
  };
  for (const auto &c : cases) EXPECT_EQ(round_trip(c.text), c.printed) << c.text;
}

// A tree the parser never makes (it folds the minus into the constant).
TEST_F(PrinterTest, NegatedNegativeConstantKeepsItsParentheses) {
  vel_expression_t *const arguments[] = {vel_make_number(-3), nullptr};
  vel_expression_t *negated = vel_make_operator(vel_op_negate, arguments);
  EXPECT_EQ(print(negated), "-(-3)");
  vel_expression_delete(negated);
}

TEST_F(PrinterTest, SnprintfSemantics) {
  vel_expression_t *e = parse("1 + 2");  // prints as "1 + 2", 5 characters
  char buffer[8];
  std::memset(buffer, 'x', sizeof buffer);
  EXPECT_EQ(vel_expression_print(e, buffer, 4), 5u);
  EXPECT_STREQ(buffer, "1 +");
  EXPECT_EQ(buffer[4], 'x');
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

// Every operator and leaf kind, the shapes that need care, the deepest trees
// the parser accepts, and numbers that must read back bit for bit.
TEST_F(PrinterTest, RoundTripCorpus) {
  std::string chain = "A";
  for (int i = 0; i < 999; ++i) chain += " - A";
  std::string nested;
  for (int i = 0; i < 499; ++i) nested += "-(A + ";
  nested += "A" + std::string(499, ')');
  const std::string corpus[] = {
      "truncate(5, Normal(22, 9))", "if(Level < 0, true, Distribution(0.95, 0.05))",
      "LogNormal(A, 0.5, -2)", "Beta(2, 5, -1, 1e3)", "Gamma(2, 0.5, 10)",
      "Exponential(0.1, -3)", "Weibull(1.5, 2, 0)", "Uniform(-1, 1)", "Triangular(0, 2.5, 10)",
      "PERT(0, 3, 10, 6)", "Binomial(10, 0.25)", "Poisson(3.5)", "NegativeBinomial(4, 0.5)",
      "Geometric(0.2)", "NoisyOR(Frost, 0.9, A > 1, 0.3)", "truncate(Normal(0, 1), 2)",
      "truncate(-1, truncate(Gamma(2, 1), 5), 1)", "aggregate(A, Season)",
      "probability(and(Season == \"winter\", Frost))", "variance(Cost)", "quantile(A, 0.95)",
      "min(A, B, C) + max(1)", "log(Level) + log2(8) - log10(1000)", "exp(-Level ^ 2 / 2)",
      "sin(A) ^ 2 + cos(A) ^ 2", "tan(0.5) * sinh(1) / cosh(1) - tanh(2)",
      "sqrt(abs(Level - 3))", "floor(Level) + ceil(-Level)", "mod(A + 7, 3)",
      "state_index(Season) * 2", "if(Frost, Normal(0, 1), 3)",
      "if(not(Frost), \"hot\", if(A < B, Season, \"cold\"))", "or(Frost, A >= 2, and())",
      "and(A != 1, B <= 2, not(C > 0))", "\"he said \\\"hi\\\" \\\\ bye\" == Season",
      "1 - 2 - 3 - (4 - 5)", "A / (B / C)", "-(A - B) * -(C + 1)", "-0 + 0.1 + 0.2",
      "(A < B) == (B < C)", chain, nested,
      // Numbers whose shortest text is delicate: extremes, halfway cases.
      "0.3333333333333333", "1e23", "9007199254740993", "1.7976931348623157e308", "5e-324",
      "-2.2250738585072014e-308", "2.2250738585072009e-308", "2.220446049250313e-16",
  };
  for (const std::string &text : corpus) round_trip(text);
}

}  // namespace
