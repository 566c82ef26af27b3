// The JSON document of a run of generations.  Numbers are written by hand so
// that each entry is the shortest text of its float (nlohmann-json would
// print the float's double value); strings go through nlohmann-json for
// escaping.
#include <cmath>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "io/table_output.h"

namespace vel::io {

namespace {

// Bytes that are not UTF-8 (a file name in another encoding) become U+FFFD
// rather than an exception halfway through the document.
std::string json_string(const std::string &text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

template <typename Real>
std::string number(Real value) {
  const std::string text = shortest_text(value);
  return std::isfinite(value) ? text : json_string(text);
}

void write_table(std::ostream &out, vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  if (!table) throw std::runtime_error(std::string("node ") + vel_node_get_name(node) + " has no table");
  out << "{\"node\": " << json_string(vel_node_get_name(node))
      << ", \"table\": " << json_string(table_word(node)) << ",\n     \"nodes\": [";
  vel_node_t *const *nodes = vel_table_get_nodes(table);
  const std::size_t count = vel_table_get_node_count(table);
  for (std::size_t i = 0; i < count; ++i)
    out << (i ? ", " : "") << json_string(vel_node_get_name(nodes[i]));
  out << "],\n     \"data\": [";
  const float *data = vel_table_get_data(table);
  const std::size_t size = vel_table_get_size(table);
  for (std::size_t i = 0; i < size; ++i) out << (i ? ", " : "") << number(data[i]);
  out << "]}";
}

}  // namespace

std::string json_number(float value) { return number(value); }
std::string json_number(double value) { return number(value); }

std::string json_error(const GenerationError &error) {
  const char *name = vel_error_name(error.code);
  return "{\"code\": " + std::to_string(error.code) + ", \"name\": " + json_string(name ? name : "") +
         ", \"node\": " + json_string(error.node) + "}";
}

void write_json_document(std::ostream &out, const std::string &domain,
                         const std::vector<vel_node_t *> &tables, const GenerationError *error) {
  out << "{\n  \"domain\": " << json_string(domain) << ",\n  \"tables\": [";
  for (std::size_t i = 0; i < tables.size(); ++i) {
    out << (i ? ",\n    " : "\n    ");
    write_table(out, tables[i]);
  }
  out << (tables.empty() ? "]" : "\n  ]") << ",\n  \"error\": " << (error ? json_error(*error) : "null")
      << "\n}\n";
}

}  // namespace vel::io
