#include "io/table_view.h"

#include <stdexcept>

#include "io/table_output.h"

namespace vel::io::detail {

std::vector<std::size_t> TableView::row_states(std::size_t row) const {
  std::vector<std::size_t> states(row_nodes.size());
  for (std::size_t i = row_nodes.size(); i-- > 0;) {
    const std::size_t count = vel_node_get_number_of_states(row_nodes[i]);
    states[i] = row % count;
    row /= count;
  }
  return states;
}

TableView view_table(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  if (!table) throw std::runtime_error(std::string("node ") + vel_node_get_name(node) + " has no table");
  TableView view;
  view.node = node;
  const bool has_states = vel_node_get_kind(node) == vel_kind_discrete;
  vel_node_t *const *nodes = vel_table_get_nodes(table);
  const std::size_t count = vel_table_get_node_count(table);
  for (std::size_t i = 0; i < count; ++i)
    if (!(has_states && i + 1 == count)) view.row_nodes.push_back(nodes[i]);
  if (has_states) {
    const std::size_t states = vel_node_get_number_of_states(node);
    for (std::size_t s = 0; s < states; ++s) view.columns.push_back(state_text(node, s));
  } else {
    view.columns.push_back("utility");
  }
  const std::size_t size = vel_table_get_size(table);
  view.rows = view.columns.empty() ? 0 : size / view.columns.size();
  view.data = vel_table_get_data(table);
  return view;
}

}  // namespace vel::io::detail
