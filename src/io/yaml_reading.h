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
  // What the loader may still read (see charge_list, charge_text).
  mutable std::size_t reading_left = 0;

  [[noreturn]] void fail(const YAML::Mark &mark, const std::string &message) const;
  [[noreturn]] void fail(const YAML::Node &at, const std::string &message) const;
};

// What reading a file may cost: four times its size and 16 MiB more.  An
// alias repeats an anchored list or text for a few bytes, so that a small
// file could otherwise make the loader read, parse and store without end; a
// file without aliases never comes near the bound.
std::size_t reading_allowance(std::size_t file_size);

// Counts a list's items (one each) and a scalar's text against what is left
// to read, before they are stored; refused at `at` when the file's aliases
// have made it read more than its allowance.
void charge_list(const Source &source, const YAML::Node &list);
void charge_text(const Source &source, const YAML::Node &item);

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
