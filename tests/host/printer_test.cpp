// The printer: canonical text, parentheses, numbers, labels, buffer
// semantics, and the round trip parse -> print -> parse.
#include <cstring>
#include <string>

#include "case_file.h"
#include "text_form_support.h"

namespace {

class PrinterTest : public texttest::TextFormTest {
 protected:
  static std::string print(const vel_expression_t *e) {
    size_t length = vel_expression_print(e, nullptr, 0);
    if (length == static_cast<size_t>(-1)) return "<failed>";
    std::string text(length, '\0');
    EXPECT_EQ(vel_expression_print(e, text.data(), length + 1), length);
    return text;
  }
  // `text` parsed for Child and printed.
  std::string printed(const std::string &text) {
    vel_expression_t *e = vel_parse_expression(text.c_str(), child_);
    if (!e) return "<parse failed: " + std::string(vel_error_message()) + ">";
    const std::string result = print(e);
    vel_expression_delete(e);
    return result;
  }
  // Text parsed, printed and parsed again: the two trees must be the same,
  // and printing the second gives the same text.  Returns the printed text.
  std::string round_trip(const std::string &text) {
    const std::string once = printed(text);
    EXPECT_NE(shape(text), "") << text << ": " << vel_error_message();
    EXPECT_EQ(shape(once), shape(text)) << text << " printed as " << once;
    EXPECT_EQ(printed(once), once) << text;
    return once;
  }
};

TEST_F(PrinterTest, CanonicalText) {
  for (const auto &c : vel_test::read_cases("host/data/canonical_text.tsv"))
    EXPECT_EQ(round_trip(c["text"]), c["printed"]) << c["text"];
}

// A tree the parser never makes (it folds the minus into the constant).
TEST_F(PrinterTest, NegatedNegativeConstantKeepsItsParentheses) {
  vel_expression_t *const arguments[] = {vel_make_number(-3), nullptr};
  vel_expression_t *negated = vel_make_operator(vel_op_negate, arguments);
  EXPECT_EQ(print(negated), "-(-3)");
  vel_expression_delete(negated);
}

TEST_F(PrinterTest, SnprintfSemantics) {
  vel_expression_t *e = vel_parse_expression("1 + 2", child_);  // prints as "1 + 2", 5 characters
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

// The corpus, and the deepest trees the parser accepts.
TEST_F(PrinterTest, RoundTripCorpus) {
  for (const auto &c : vel_test::read_cases("host/data/round_trip_corpus.tsv")) round_trip(c["text"]);
  std::string chain = "A";
  for (int i = 0; i < 999; ++i) chain += " - A";
  round_trip(chain);
  std::string nested;
  for (int i = 0; i < 499; ++i) nested += "-(A + ";
  round_trip(nested + "A" + std::string(499, ')'));
}

}  // namespace
