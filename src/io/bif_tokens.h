// The tokens of BIF text: words, quoted strings and the punctuation
// , ; { } ( ) [ ] |, with blanks, // comments and /* */ comments between them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "io/model_file.h"

namespace vel::io::detail {

struct BifToken {
  enum Kind { word, string, punctuation, end };
  Kind kind = end;
  std::string_view text;  // a string without its quotes
  Position at;

  bool is(char mark) const { return kind == punctuation && text[0] == mark; }
  bool is(std::string_view keyword) const { return kind == word && text == keyword; }
  // "'text'", or "end of file"
  std::string describe() const;
};

// Reads tokens one at a time; throws LoadError at an unterminated comment or
// string and at a control character.  A word is a run of characters other
// than blanks, quotes and the punctuation, so state names such as "<5",
// ">=7.5", "Asy/Patch" are words; a comment starts only where a token could.
class BifLexer {
 public:
  BifLexer(std::string_view text, const std::string &file);

  BifToken next();
  BifToken peek();

  // Where the next token starts, to read from there again later.
  struct Mark {
    std::size_t offset;
    Position at;
  };
  Mark mark();
  void reset(Mark mark);

  const std::string &file() const { return file_; }

 private:
  void skip_blanks_and_comments();
  char current() const { return text_[offset_]; }
  void step(std::size_t count);

  std::string_view text_;
  std::string file_;
  std::size_t offset_ = 0;
  Position at_{1, 1};
};

}  // namespace vel::io::detail
