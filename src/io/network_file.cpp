#include "io/network_file.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "io/file_text.h"

namespace vel::io {

namespace {

std::string lower_extension(const std::string &path) {
  const std::size_t slash = path.find_last_of('/');
  const std::size_t dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string extension = path.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

// The first word of BIF-like text, after blanks and comments.
std::string_view first_word(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    if (std::isspace(static_cast<unsigned char>(text[i]))) {
      ++i;
    } else if (text.substr(i, 2) == "//") {
      i = text.find('\n', i);
      if (i == std::string_view::npos) return {};
    } else if (text.substr(i, 2) == "/*") {
      i = text.find("*/", i + 2);
      if (i == std::string_view::npos) return {};
      i += 2;
    } else {
      break;
    }
  }
  std::size_t end = i;
  while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end]))) ++end;
  return text.substr(i, end - i);
}

}  // namespace

NetworkFormat network_format(const std::string &path, const std::string &text) {
  const std::string extension = lower_extension(path);
  if (extension == "yaml" || extension == "yml" || extension == "json") return NetworkFormat::model_file;
  if (extension == "bif") return NetworkFormat::bif;
  if (extension == "xml" || extension == "xmlbif") return NetworkFormat::xmlbif;

  std::string_view body = text;
  if (body.substr(0, 3) == "\xEF\xBB\xBF") body.remove_prefix(3);  // a UTF-8 byte-order mark
  const std::size_t start = body.find_first_not_of(" \t\r\n");
  if (start != std::string_view::npos && body[start] == '<') return NetworkFormat::xmlbif;
  const std::string_view word = first_word(body);
  if (word == "network" || word == "variable" || word == "probability") return NetworkFormat::bif;
  return NetworkFormat::model_file;
}

LoadedModel load_network_file(const std::string &path) {
  const std::string text = read_file_text(path);
  switch (network_format(path, text)) {
    case NetworkFormat::bif: return load_bif_text(text, path);
    case NetworkFormat::xmlbif: return load_xmlbif_text(text, path);
    default: return load_model_text(text, path);
  }
}

}  // namespace vel::io
