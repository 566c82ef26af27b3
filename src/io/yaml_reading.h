// Strict reading of YAML values for the model-file loader: every failure is a
// LoadError at the offending key or scalar.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include <yaml-cpp/yaml.h>

#include "io/number_parsing.h"

namespace vel::io::detail {

// The file being read; turns marks into "FILE:LINE:COLUMN: message" errors.
struct Source {
  std::string file;

  [[noreturn]] void fail(const YAML::Mark &mark, const std::string &message) const;
  [[noreturn]] void fail(const YAML::Node &at, const std::string &message) const;
};

// A key of a mapping with its value.
struct Entry {
  YAML::Node key;
  YAML::Node value;
  bool found = false;

  bool present() const { return found; }
  // Where to point at the value: the value itself, or its key when the value
  // is empty (an empty value's mark lies on the next line).
  YAML::Mark value_mark() const;
};

// Checks that `map` is a mapping whose keys are scalars from `allowed`, with
// none given twice.  `what` names the mapping in the message when it is not
// a mapping ("a node", "the model").
void check_mapping(const Source &source, const YAML::Node &map,
                   std::initializer_list<std::string_view> allowed, std::string_view what);

Entry find(const YAML::Node &map, std::string_view key);
bool is_null(const Entry &entry);  // absent, or present with a null value

// Scalars.  `what` names the value in the message ("the domain name").
std::string read_text(const Source &source, const Entry &entry, std::string_view what);
bool read_truth(const Source &source, const Entry &entry);
// Numbers as written: decimal text, the infinities "inf"/"-inf" (also YAML's
// ".inf"/"-.inf") and decimal text beyond double range, stored as
// +-vel_infinity, and NaN (".nan", "nan").
// Throws at `at` if the scalar is no number.
double read_number(const Source &source, const YAML::Node &at, std::string_view what);
// An integer from 1 to vel_max_samples_per_interval (samples per interval).
std::size_t read_count(const Source &source, const Entry &entry);
// A sequence (the value of `entry`), with `what` naming it.
void require_sequence(const Source &source, const Entry &entry, std::string_view what);

}  // namespace vel::io::detail
