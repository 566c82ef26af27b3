// The JSON document of a run of generations.  Numbers are written by hand so
// that each entry is the shortest text of its float (a JSON library would
// print the float's double value).
#include <stdexcept>

#include "io/json_text.h"
#include "io/table_output.h"

namespace vel::io {

namespace {

template <typename Item>
void write_list(std::ostream &out, std::size_t count, Item item) {
  out << '[';
  for (std::size_t i = 0; i < count; ++i) {
    if (i) out << ", ";
    item(i);
  }
  out << ']';
}

void write_table(std::ostream &out, vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  if (!table) throw std::runtime_error(std::string("node ") + vel_node_get_name(node) + " has no table");
  vel_node_t *const *nodes = vel_table_get_nodes(table);
  const std::size_t count = vel_table_get_node_count(table);
  out << "{\"node\": " << json_string(vel_node_get_name(node))
      << ", \"table\": " << json_string(table_word(node)) << ",\n     \"nodes\": ";
  write_list(out, count, [&](std::size_t i) { out << json_string(vel_node_get_name(nodes[i])); });
  out << ",\n     \"states\": ";
  write_list(out, count, [&](std::size_t i) {
    write_list(out, vel_node_get_number_of_states(nodes[i]),
               [&](std::size_t s) { out << json_string(state_text(nodes[i], s)); });
  });
  out << ",\n     \"shape\": ";
  write_list(out, count, [&](std::size_t i) { out << vel_node_get_number_of_states(nodes[i]); });
  out << ",\n     \"data\": ";
  const float *data = vel_table_get_data(table);
  write_list(out, vel_table_get_size(table), [&](std::size_t i) { out << json_number(data[i]); });
  out << '}';
}

}  // namespace

std::string json_error(const GenerationError &error) {
  return "{\"code\": " + std::to_string(error.code) + ", \"name\": " +
         json_string(vel_error_name(error.code)) + ", \"node\": " + json_string(error.node) +
         ", \"message\": " + json_string(error.message) + "}";
}

std::string json_load_error(const std::string &message) {
  return "{\"code\": null, \"name\": \"load_error\", \"node\": null, \"message\": " +
         json_string(message) + "}";
}

namespace {

void write_document(std::ostream &out, const std::string &domain, const std::vector<vel_node_t *> &tables,
                    const std::string &error) {
  out << "{\n  \"domain\": " << domain << ",\n  \"tables\": [";
  for (std::size_t i = 0; i < tables.size(); ++i) {
    out << (i ? ",\n    " : "\n    ");
    write_table(out, tables[i]);
  }
  out << (tables.empty() ? "]" : "\n  ]") << ",\n  \"error\": " << error << "\n}\n";
}

}  // namespace

void write_json_document(std::ostream &out, const std::string &domain,
                         const std::vector<vel_node_t *> &tables, const GenerationError *error) {
  write_document(out, json_string(domain), tables, error ? json_error(*error) : "null");
}

void write_json_load_failure(std::ostream &out, const std::string &message) {
  write_document(out, "null", {}, json_load_error(message));
}

}  // namespace vel::io
