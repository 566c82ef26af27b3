// Tokenizer of the expression text form.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vel::host {

enum class TokenKind {
  end,
  number,
  label,
  name,
  left_paren,
  right_paren,
  comma,
  plus,
  minus,
  star,
  slash,
  caret,
  equals,
  not_equals,
  less,
  greater,
  less_or_equal,
  greater_or_equal,
};

struct Token {
  TokenKind kind = TokenKind::end;
  size_t offset = 0;      // byte offset of the token's first character
  std::string_view text;  // the token as written
  double number = 0.0;    // number tokens
  std::string label;      // label tokens, escapes resolved
};

// A malformed token: where, and what was expected.
struct LexError {
  size_t offset = 0;
  std::string message;
};

// Reads the token that starts at or after `offset` (blanks skipped) and moves
// `offset` past it.  False with `error` filled when the text there is not a
// token.
bool read_token(std::string_view text, size_t &offset, Token &token, LexError &error);

}  // namespace vel::host
