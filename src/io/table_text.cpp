// The text layout of a table, for a person:
//
//   Temp: conditional probability table
//   Season | [-inf;0)  [0;10)  [10;20)  [20;inf)
//   -------+------------------------------------
//   winter |      0.5    0.25    0.125     0.125
//
// Parent states head the rows (left-aligned), the node's states or "utility"
// head the value columns (right-aligned).
#include <algorithm>
#include <string>
#include <vector>

#include "io/table_output.h"
#include "io/table_view.h"

namespace vel::io {

namespace {

void pad(std::ostream &out, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) out << ' ';
}

void write_row(std::ostream &out, const std::vector<std::string> &cells, std::size_t heading_count,
               const std::vector<std::size_t> &widths) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) out << (i == heading_count ? " | " : "  ");
    if (i < heading_count) {
      out << cells[i];
      if (i + 1 < cells.size()) pad(out, widths[i] - cells[i].size());
    } else {
      pad(out, widths[i] - cells[i].size());
      out << cells[i];
    }
  }
  out << '\n';
}

}  // namespace

void write_table_text(std::ostream &out, vel_node_t *node) {
  const detail::TableView view = detail::view_table(node);
  const std::size_t headings = view.row_nodes.size();

  std::vector<std::vector<std::string>> lines;
  std::vector<std::string> header;
  for (vel_node_t *parent : view.row_nodes) header.push_back(vel_node_get_name(parent));
  header.insert(header.end(), view.columns.begin(), view.columns.end());
  lines.push_back(header);
  for (std::size_t row = 0; row < view.rows; ++row) {
    std::vector<std::string> cells;
    const std::vector<std::size_t> states = view.row_states(row);
    for (std::size_t i = 0; i < headings; ++i) cells.push_back(state_text(view.row_nodes[i], states[i]));
    for (std::size_t column = 0; column < view.columns.size(); ++column)
      cells.push_back(entry_text(view.entry(row, column)));
    lines.push_back(cells);
  }

  std::vector<std::size_t> widths(header.size(), 0);
  for (const auto &cells : lines)
    for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], cells[i].size());

  out << vel_node_get_name(node) << ": " << table_word(node) << " table\n";
  write_row(out, lines[0], headings, widths);
  std::string rule;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    if (i > 0) rule += i == headings ? "-+-" : "--";
    rule.append(widths[i], '-');
  }
  out << rule << '\n';
  for (std::size_t line = 1; line < lines.size(); ++line) write_row(out, lines[line], headings, widths);
}

}  // namespace vel::io
