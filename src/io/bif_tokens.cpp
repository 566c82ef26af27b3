#include "io/bif_tokens.h"

#include "io/text_positions.h"

namespace vel::io::detail {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

bool is_control(char c) {
  const unsigned char byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && !is_blank(c)) || byte == 0x7F;
}

bool is_punctuation(char c) {
  return std::string_view(",;{}()[]|").find(c) != std::string_view::npos;
}

}  // namespace

std::string BifToken::describe() const {
  if (kind == end) return "end of file";
  if (kind == string) return "\"" + std::string(text) + "\"";
  return "'" + std::string(text) + "'";
}

BifLexer::BifLexer(std::string_view text, const std::string &file) : text_(text), file_(file) {}

void BifLexer::step(std::size_t count) {
  at_ = advance(at_, text_.substr(offset_, count));
  offset_ += count;
}

void BifLexer::skip_blanks_and_comments() {
  while (offset_ < text_.size()) {
    if (is_blank(current())) {
      step(1);
    } else if (text_.substr(offset_, 2) == "//") {
      const std::size_t end = text_.find('\n', offset_);
      step((end == std::string_view::npos ? text_.size() : end) - offset_);
    } else if (text_.substr(offset_, 2) == "/*") {
      const std::size_t end = text_.find("*/", offset_ + 2);
      if (end == std::string_view::npos) fail_at(file_, at_, "unterminated comment");
      step(end + 2 - offset_);
    } else {
      return;
    }
  }
}

BifToken BifLexer::next() {
  skip_blanks_and_comments();
  BifToken token;
  token.at = at_;
  if (offset_ == text_.size()) return token;
  const char c = current();
  if (is_control(c)) fail_at(file_, at_, "unexpected control character");
  if (is_punctuation(c)) {
    token.kind = BifToken::punctuation;
    token.text = text_.substr(offset_, 1);
    step(1);
  } else if (c == '"') {
    const std::size_t end = text_.find('"', offset_ + 1);
    if (end == std::string_view::npos) fail_at(file_, at_, "unterminated string");
    token.kind = BifToken::string;
    token.text = text_.substr(offset_ + 1, end - offset_ - 1);
    step(end + 1 - offset_);
  } else {
    std::size_t end = offset_;
    while (end < text_.size() && !is_blank(text_[end]) && !is_punctuation(text_[end]) && text_[end] != '"') {
      if (is_control(text_[end])) fail_at(file_, advance(at_, text_.substr(offset_, end - offset_)),
                                          "unexpected control character");
      ++end;
    }
    token.kind = BifToken::word;
    token.text = text_.substr(offset_, end - offset_);
    step(end - offset_);
  }
  return token;
}

BifToken BifLexer::peek() {
  const Mark start = mark();
  const BifToken token = next();
  reset(start);
  return token;
}

BifLexer::Mark BifLexer::mark() { return {offset_, at_}; }

void BifLexer::reset(Mark mark) {
  offset_ = mark.offset;
  at_ = mark.at;
}

}  // namespace vel::io::detail
