#include "io/text_positions.h"

namespace vel::io::detail {

LoadError load_error(const std::string &file, Position at, const std::string &message) {
  return LoadError(file + ":" + std::to_string(at.line) + ":" + std::to_string(at.column) + ": " + message);
}

void fail_at(const std::string &file, Position at, const std::string &message) {
  throw load_error(file, at, message);
}

Position advance(Position at, std::string_view text) {
  for (const char c : text) {
    if (c == '\n') {
      ++at.line;
      at.column = 1;
    } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
      ++at.column;
    }
  }
  return at;
}

bool is_utf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    std::size_t length;
    char32_t point;
    if (lead < 0x80) {
      ++i;
      continue;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      point = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      point = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      point = lead & 0x07;
    } else {
      return false;
    }
    if (text.size() - i < length) return false;
    for (std::size_t k = 1; k < length; ++k) {
      const unsigned char next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) return false;
      point = (point << 6) | (next & 0x3F);
    }
    const char32_t smallest = length == 3 ? 0x800 : length == 4 ? 0x10000 : 0x80;
    if (point < smallest || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) return false;
    i += length;
  }
  return true;
}

}  // namespace vel::io::detail
