// The parser against real nodes: tree shapes, numbers, labels, names,
// arities, error positions and messages, and the nesting limit.
#include <string>

#include "case_file.h"
#include "text_form_support.h"

namespace {

using ParserTest = texttest::TextFormTest;

TEST_F(ParserTest, TreeShapes) {
  for (const auto &c : vel_test::read_cases("host/data/expression_shapes.tsv"))
    EXPECT_EQ(shape(c["text"]), c["shape"]) << c["text"];
}

TEST_F(ParserTest, SyntaxErrorsNameWhatAndWhere) {
  for (const auto &c : vel_test::read_cases("host/data/expression_errors.tsv")) {
    EXPECT_EQ(vel_parse_expression(c["text"].c_str(), child_), nullptr) << c["text"];
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c["text"];
    EXPECT_EQ(vel_error_message(), c["message"]) << c["text"];
    EXPECT_EQ(vel_error_position(), c.integer("position")) << c["text"];
  }
  EXPECT_EQ(vel_parse_expression(nullptr, child_), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_parse_expression("1", nullptr), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

// Allowed argument counts of every call; each is tried with 0 to 6 node
// arguments so that node-name rules never interfere.
TEST_F(ParserTest, EveryCallEnforcesItsArity) {
  for (const auto &c : vel_test::read_cases("host/data/call_arities.tsv")) {
    for (int count = 0; count <= 6; ++count) {
      std::string text = c["name"] + "(";
      for (int i = 0; i < count; ++i) text += i ? ", A" : "A";
      text += ")";
      vel_expression_t *e = vel_parse_expression(text.c_str(), child_);
      if ((" " + c["accepted"] + " ").find(" " + std::to_string(count) + " ") != std::string::npos) {
        EXPECT_NE(e, nullptr) << text << ": " << vel_error_message();
        vel_expression_delete(e);
        continue;
      }
      EXPECT_EQ(e, nullptr) << text;
      EXPECT_EQ(vel_error_code(), vel_error_usage) << text;
      const std::string message = vel_error_message();
      EXPECT_EQ(message.rfind(c["name"] + " takes ", 0), 0u) << message;
      EXPECT_NE(message.find(" (" + c["allowed"] + "), got " + std::to_string(count)), std::string::npos) << message;
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
