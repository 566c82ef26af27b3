#include "io/number_parsing.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <limits>
#include <locale.h>
#include <string>

#include "vel/vel.h"

namespace vel::io::detail {

namespace {

bool one_of(std::string_view text, std::initializer_list<std::string_view> words) {
  for (std::string_view word : words)
    if (text == word) return true;
  return false;
}

}  // namespace

bool parse_number(std::string_view text, double &value) {
  std::string_view body = text;
  bool negative = false;
  if (!body.empty() && (body.front() == '+' || body.front() == '-')) {
    negative = body.front() == '-';
    body.remove_prefix(1);
  }
  std::string_view word = body;
  if (!word.empty() && word.front() == '.') word.remove_prefix(1);
  if (one_of(word, {"inf", "Inf", "INF", "infinity", "Infinity"})) {
    value = negative ? -vel_infinity : vel_infinity;
    return true;
  }
  if (one_of(word, {"nan", "NaN", "NAN"})) {
    value = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  // from_chars takes no leading '+' and would take "inf"/"nan" itself, both
  // handled above; what remains must be plain decimal text.
  if (body.empty() || !(std::isdigit(static_cast<unsigned char>(body.front())) || body.front() == '.'))
    return false;
  double magnitude = 0.0;
  const auto [end, error] = std::from_chars(body.data(), body.data() + body.size(), magnitude);
  if (end != body.data() + body.size()) return false;
  if (error == std::errc::result_out_of_range) {
    // Decimal text beyond double range: too large is infinite, too small is
    // zero.  strtod_l tells which, in the C locale whatever the global one.
    static const locale_t c_locale = newlocale(LC_NUMERIC_MASK, "C", locale_t{});
    magnitude = strtod_l(std::string(body).c_str(), nullptr, c_locale);
    if (std::isinf(magnitude)) magnitude = vel_infinity;
  } else if (error != std::errc()) {
    return false;
  }
  value = negative ? -magnitude : magnitude;
  return true;
}

}  // namespace vel::io::detail
