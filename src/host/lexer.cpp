#include "host/lexer.h"

#include <charconv>
#include <cstdlib>
#include <system_error>

namespace vel::host {
namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_name_start(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool is_name_char(char c) { return is_name_start(c) || is_digit(c); }
bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Decimal exponent of the leading significant digit of a literal that
// from_chars found out of range: positive means it overflowed, otherwise it
// underflowed.
long leading_exponent(std::string_view literal) {
  size_t i = 0;
  long integer_digits = 0;
  bool significant = false;
  long fraction_zeros = 0;
  for (; i < literal.size() && is_digit(literal[i]); ++i) {
    if (literal[i] != '0') significant = true;
    if (significant) ++integer_digits;
  }
  if (i < literal.size() && literal[i] == '.') {
    for (++i; i < literal.size() && is_digit(literal[i]); ++i) {
      if (significant) continue;
      if (literal[i] != '0') significant = true;
      else ++fraction_zeros;
    }
  }
  long exponent = 0;
  if (i < literal.size() && (literal[i] == 'e' || literal[i] == 'E')) {
    bool negative = literal[i + 1] == '-';
    size_t digits = i + 1 + (literal[i + 1] == '-' || literal[i + 1] == '+');
    // Saturate: only the sign and a rough size matter.
    for (; digits < literal.size(); ++digits)
      if (exponent < 100000) exponent = exponent * 10 + (literal[digits] - '0');
    if (negative) exponent = -exponent;
  }
  long lead = integer_digits > 0 ? integer_digits - 1 : -fraction_zeros - 1;
  return lead + exponent;
}

bool read_number(std::string_view text, size_t &offset, Token &token, LexError &error) {
  size_t start = offset;
  size_t i = offset;
  size_t mantissa_digits = 0;
  for (; i < text.size() && is_digit(text[i]); ++i) ++mantissa_digits;
  if (i < text.size() && text[i] == '.')
    for (++i; i < text.size() && is_digit(text[i]); ++i) ++mantissa_digits;
  if (mantissa_digits == 0) {
    error = {start, "unexpected character '.'"};
    return false;
  }
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j >= text.size() || !is_digit(text[j])) {
      error = {j, "expected digits in the exponent of a number"};
      return false;
    }
    for (i = j; i < text.size() && is_digit(text[i]); ++i) {
    }
  }
  std::string_view literal = text.substr(start, i - start);
  double value = 0.0;
  auto [end, code] = std::from_chars(literal.data(), literal.data() + literal.size(), value);
  if (code == std::errc::result_out_of_range) {
    if (leading_exponent(literal) > 0) {
      error = {start, "number too large"};
      return false;
    }
    value = 0.0;  // below the smallest subnormal: rounds to zero
  } else if (code != std::errc() || end != literal.data() + literal.size()) {
    error = {start, "malformed number"};
    return false;
  }
  token.kind = TokenKind::number;
  token.text = literal;
  token.number = value;
  offset = i;
  return true;
}

bool read_label(std::string_view text, size_t &offset, Token &token, LexError &error) {
  size_t start = offset;
  token.label.clear();
  size_t i = offset + 1;
  for (;;) {
    if (i >= text.size()) {
      error = {start, "unterminated label: expected '\"'"};
      return false;
    }
    char c = text[i];
    if (c == '"') break;
    if (c == '\\') {
      char escaped = i + 1 < text.size() ? text[i + 1] : '\0';
      if (escaped != '"' && escaped != '\\') {
        error = {i, "unknown escape in label: only \\\" and \\\\ are allowed"};
        return false;
      }
      token.label += escaped;
      i += 2;
      continue;
    }
    token.label += c;
    ++i;
  }
  token.kind = TokenKind::label;
  token.text = text.substr(start, i + 1 - start);
  offset = i + 1;
  return true;
}

struct Symbol {
  std::string_view text;
  TokenKind kind;
};

// Two-character symbols first so that "<=" is not read as "<".
constexpr Symbol symbols[] = {
    {"==", TokenKind::equals},     {"!=", TokenKind::not_equals},
    {"<=", TokenKind::less_or_equal}, {">=", TokenKind::greater_or_equal},
    {"(", TokenKind::left_paren},  {")", TokenKind::right_paren},
    {",", TokenKind::comma},       {"+", TokenKind::plus},
    {"-", TokenKind::minus},       {"*", TokenKind::star},
    {"/", TokenKind::slash},       {"^", TokenKind::caret},
    {"<", TokenKind::less},        {">", TokenKind::greater},
};

}  // namespace

bool read_token(std::string_view text, size_t &offset, Token &token, LexError &error) {
  while (offset < text.size() && is_blank(text[offset])) ++offset;
  token.offset = offset;
  token.number = 0.0;
  if (offset >= text.size()) {
    token.kind = TokenKind::end;
    token.text = text.substr(text.size());
    return true;
  }
  char c = text[offset];
  if (is_digit(c) || c == '.') return read_number(text, offset, token, error);
  if (c == '"') return read_label(text, offset, token, error);
  if (is_name_start(c)) {
    size_t end = offset + 1;
    while (end < text.size() && is_name_char(text[end])) ++end;
    token.kind = TokenKind::name;
    token.text = text.substr(offset, end - offset);
    offset = end;
    return true;
  }
  for (const Symbol &symbol : symbols) {
    if (text.substr(offset, symbol.text.size()) == symbol.text) {
      token.kind = symbol.kind;
      token.text = text.substr(offset, symbol.text.size());
      offset += symbol.text.size();
      return true;
    }
  }
  if (c == '=') {
    error = {offset, "unexpected '=': equality is written '=='"};
  } else if (c == '!') {
    error = {offset, "unexpected '!': use '!=' or not(...)"};
  } else if (static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7f) {
    error = {offset, std::string("unexpected character '") + c + "'"};
  } else {
    error = {offset, "unexpected character"};
  }
  return false;
}

}  // namespace vel::host
