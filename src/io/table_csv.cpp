// A table as CSV: "# NODE (word)", a header row (parent names, then the
// node's states or "utility"), one row per parent configuration.
#include <string>

#include "io/table_output.h"
#include "io/table_view.h"

namespace vel::io {

namespace {

// RFC 4180: a field with a comma, quote or line break is quoted, its quotes
// doubled.
std::string field(const std::string &text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

}  // namespace

void write_table_csv(std::ostream &out, vel_node_t *node, bool titled) {
  const detail::TableView view = detail::view_table(node);
  if (titled) out << "# " << vel_node_get_name(node) << " (" << table_word(node) << ")\n";
  bool first = true;
  auto cell = [&](const std::string &text) {
    if (!first) out << ',';
    out << field(text);
    first = false;
  };
  for (vel_node_t *parent : view.row_nodes) cell(vel_node_get_name(parent));
  for (const std::string &column : view.columns) cell(column);
  out << '\n';
  for (std::size_t row = 0; row < view.rows; ++row) {
    first = true;
    const std::vector<std::size_t> states = view.row_states(row);
    for (std::size_t i = 0; i < view.row_nodes.size(); ++i) cell(state_text(view.row_nodes[i], states[i]));
    for (std::size_t column = 0; column < view.columns.size(); ++column)
      cell(entry_text(view.entry(row, column)));
    out << '\n';
  }
}

}  // namespace vel::io
