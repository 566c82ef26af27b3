// Numbers and states as text.
#include <charconv>
#include <cmath>
#include <string>

#include "io/table_output.h"

namespace vel::io {

namespace {

template <typename Real>
std::string shortest(Real value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace

std::string bound_text(double bound) {
  if (bound <= -vel_infinity) return "-inf";
  if (bound >= vel_infinity) return "inf";
  return shortest(bound);
}

std::string shortest_text(float value) { return shortest(value); }
std::string shortest_text(double value) { return shortest(value); }

std::string entry_text(float value) { return value == 0.0f ? "0" : shortest(value); }

const char *table_word(const vel_node_t *node) {
  switch (vel_node_get_category(node)) {
    case vel_category_decision: return "policy";
    case vel_category_utility: return "utility";
    default: return "conditional probability";
  }
}

std::string state_text(const vel_node_t *node, std::size_t state) {
  switch (vel_node_get_subtype(node)) {
    case vel_subtype_labeled:
    case vel_subtype_boolean: {
      const char *label = vel_node_get_state_label(node, state);
      return label ? label : "";
    }
    case vel_subtype_numbered: return bound_text(vel_node_get_state_value(node, state));
    case vel_subtype_interval:
      return "[" + bound_text(vel_node_get_state_value(node, state)) + ";" +
             bound_text(vel_node_get_state_value(node, state + 1)) + ")";
    default: return std::to_string(state);
  }
}

}  // namespace vel::io
