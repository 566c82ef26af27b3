#include "io/json_text.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "io/table_output.h"

namespace vel::io {

namespace {

template <typename Real>
std::string number(Real value) {
  const std::string text = shortest_text(value);
  return std::isfinite(value) ? text : json_string(text);
}

}  // namespace

// nlohmann-json escapes; a file name in another encoding must not throw
// halfway through a document.
std::string json_string(const std::string &text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string json_number(float value) { return number(value); }
std::string json_number(double value) { return number(value); }

}  // namespace vel::io
