#include "io/yaml_reading.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

#include "io/model_file.h"
#include "io/text_positions.h"
#include "vel/vel.h"

namespace vel::io::detail {

void Source::fail(const YAML::Mark &mark, const std::string &message) const {
  // yaml-cpp counts from 0 and gives -1 for a mark it does not know.
  const std::size_t line = mark.line < 0 ? 1 : mark.line + 1;
  const std::size_t column = mark.column < 0 ? 1 : mark.column + 1;
  fail_at(file, {line, column}, message);
}

void Source::fail(const YAML::Node &at, const std::string &message) const {
  fail(at.Mark(), message);
}

std::size_t reading_allowance(std::size_t file_size) {
  constexpr std::size_t extra = std::size_t{16} << 20;
  return file_size > (SIZE_MAX - extra) / 4 ? SIZE_MAX : 4 * file_size + extra;
}

namespace {

void charge(const Source &source, const YAML::Node &at, std::size_t cost) {
  if (cost > source.reading_left)
    source.fail(at, "the file's aliases repeat too much: reading it would take more than four times "
                    "its size and 16 MiB");
  source.reading_left -= cost;
}

}  // namespace

void charge_list(const Source &source, const YAML::Node &list) {
  charge(source, list, list.size());
}

void charge_text(const Source &source, const YAML::Node &item) {
  if (item.IsScalar()) charge(source, item, item.Scalar().size());
}

YAML::Mark Entry::value_mark() const {
  return value.IsNull() ? key.Mark() : value.Mark();
}

namespace {

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

bool is_one_of(std::string_view text, std::initializer_list<std::string_view> words) {
  for (std::string_view word : words)
    if (text == word) return true;
  return false;
}

}  // namespace

void check_mapping(const Source &source, const YAML::Node &map,
                   std::initializer_list<std::string_view> allowed, std::string_view what) {
  if (!map.IsMap()) source.fail(map, std::string(what) + " must be a mapping");
  for (auto it = map.begin(); it != map.end(); ++it) {
    const YAML::Node key = it->first;
    if (!key.IsScalar()) source.fail(key, "a key must be a plain name");
    const std::string &name = key.Scalar();
    if (!is_one_of(name, allowed)) source.fail(key, "unknown key " + quoted(name));
    for (auto earlier = map.begin(); earlier != it; ++earlier)
      if (earlier->first.IsScalar() && earlier->first.Scalar() == name)
        source.fail(key, "duplicate key " + quoted(name));
  }
}

Entry find(const YAML::Node &map, std::string_view key) {
  for (auto it = map.begin(); it != map.end(); ++it)
    if (it->first.IsScalar() && it->first.Scalar() == key) return {it->first, it->second, true};
  return {};
}

bool is_null(const Entry &entry) { return !entry.present() || entry.value.IsNull(); }

std::string read_text(const Source &source, const Entry &entry, std::string_view what) {
  if (!entry.value.IsScalar()) source.fail(entry.value_mark(), std::string(what) + " must be a string");
  return entry.value.Scalar();
}

bool read_truth(const Source &source, const Entry &entry) {
  if (entry.value.IsScalar()) {
    const std::string &text = entry.value.Scalar();
    if (text == "true") return true;
    if (text == "false") return false;
  }
  source.fail(entry.value_mark(), quoted(entry.key.Scalar()) + " must be true or false");
}

double read_number(const Source &source, const YAML::Node &at, std::string_view what) {
  double value = 0.0;
  if (!at.IsScalar() || !parse_number(at.Scalar(), value))
    source.fail(at, std::string(what) + " must be a number");
  return value;
}

std::size_t read_count(const Source &source, const Entry &entry) {
  const std::string message = "samples_per_interval must be an integer from 1 to " +
                              std::to_string(vel_max_samples_per_interval);
  if (!entry.value.IsScalar()) source.fail(entry.value_mark(), message);
  const std::string &text = entry.value.Scalar();
  unsigned long long count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end != text.data() + text.size() || count < 1 ||
      count > vel_max_samples_per_interval)
    source.fail(entry.value_mark(), message);
  return static_cast<std::size_t>(count);
}

void require_sequence(const Source &source, const Entry &entry, std::string_view what) {
  if (!entry.value.IsSequence()) source.fail(entry.value_mark(), std::string(what) + " must be a list");
}

}  // namespace vel::io::detail
