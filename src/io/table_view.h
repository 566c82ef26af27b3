// A table seen as rows and columns: one row per configuration of the parents
// in the table, one column per state of the node (or one utility column).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vel/vel.h"

namespace vel::io::detail {

struct TableView {
  vel_node_t *node = nullptr;
  std::vector<vel_node_t *> row_nodes;  // the table's nodes except the node itself
  std::vector<std::string> columns;     // state texts, or "utility"
  std::size_t rows = 0;
  const float *data = nullptr;          // rows * columns.size() entries, row-major

  // The states of the row nodes in row `row` (the last row node fastest).
  std::vector<std::size_t> row_states(std::size_t row) const;
  float entry(std::size_t row, std::size_t column) const { return data[row * columns.size() + column]; }
};

// Throws std::runtime_error when the node has no table.
TableView view_table(vel_node_t *node);

}  // namespace vel::io::detail
