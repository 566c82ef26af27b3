// Case files: test cases kept as data beside the tests that run them.
//
// One case a line, its fields separated by tabs (or by another separator the
// reader is given, such as the commas of the reference tables); the first
// line names the fields. Blank lines and lines starting with '#' are skipped.
// Within a field, \n, \t, \\ and \xNN stand for a newline, a tab, a
// backslash and the byte NN, so that any text can be a field.
#ifndef VEL_TESTS_CASE_FILE_H
#define VEL_TESTS_CASE_FILE_H

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vel_test {

class Case {
 public:
  Case(std::shared_ptr<const std::vector<std::string>> names, std::vector<std::string> fields, int line)
      : names_(std::move(names)), fields_(std::move(fields)), line_(line) {}

  const std::string &operator[](std::string_view name) const {
    const auto at = std::find(names_->begin(), names_->end(), name);
    if (at == names_->end()) throw std::out_of_range("no field " + std::string(name));
    return fields_[static_cast<std::size_t>(at - names_->begin())];
  }
  int integer(std::string_view name) const { return std::stoi((*this)[name]); }
  double number(std::string_view name) const { return std::stod((*this)[name]); }
  // A field of numbers separated by blanks.
  std::vector<double> numbers(std::string_view name) const {
    std::vector<double> values;
    std::istringstream words((*this)[name]);
    for (std::string word; words >> word;) values.push_back(std::stod(word));
    return values;
  }
  const std::vector<std::string> &fields() const { return fields_; }
  const std::vector<std::string> &names() const { return *names_; }
  int line() const { return line_; }  // in the case file, for messages

 private:
  std::shared_ptr<const std::vector<std::string>> names_;
  std::vector<std::string> fields_;
  int line_;
};

inline std::string unescaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char next = text[++i];
    if (next == 'n') {
      out += '\n';
    } else if (next == 't') {
      out += '\t';
    } else if (next == 'x' && i + 2 < text.size()) {
      out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      out += next;
    }
  }
  return out;
}

inline std::vector<std::string> fields_of(const std::string &line, char separator) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (std::size_t tab; (tab = line.find(separator, start)) != std::string::npos; start = tab + 1)
    fields.push_back(unescaped(std::string_view(line).substr(start, tab - start)));
  fields.push_back(unescaped(std::string_view(line).substr(start)));
  return fields;
}

// The whole text of a file; "" when there is none.
inline std::string read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The text of tests/<path>: a case file, or a model or network the tests load.
inline std::string test_file_text(const std::string &path) {
  const std::string full = std::string(VEL_SOURCE_DIR) + "/tests/" + path;
  if (!std::ifstream(full)) throw std::runtime_error("cannot read tests/" + path);
  return read_file(full);
}

// The cases of tests/<path>; a line with the wrong number of fields throws.
inline std::vector<Case> read_cases(const std::string &path, char separator = '\t') {
  std::istringstream in(test_file_text(path));
  std::shared_ptr<const std::vector<std::string>> names;
  std::vector<Case> cases;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> fields = fields_of(line, separator);
    if (!names) {
      names = std::make_shared<const std::vector<std::string>>(std::move(fields));
    } else if (fields.size() != names->size()) {
      throw std::runtime_error("tests/" + path + ":" + std::to_string(number) + ": " +
                               std::to_string(fields.size()) + " fields, not " + std::to_string(names->size()));
    } else {
      cases.emplace_back(names, std::move(fields), number);
    }
  }
  return cases;
}

}  // namespace vel_test

#endif  // VEL_TESTS_CASE_FILE_H
