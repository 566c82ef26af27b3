// What vel check finds: errors (what generation would refuse) and warnings
// (what the library accepts but is almost certainly a mistake), each at the
// position of the offending item in the file.
#pragma once

#include <string>
#include <vector>

#include "io/model_file.h"

namespace vel::cli {

struct Finding {
  io::Position at;
  std::string node;
  bool error;
  std::string text;
};

class Findings {
 public:
  void error(io::Position at, const std::string &node, const std::string &text) {
    items_.push_back({at, node, true, text});
  }
  void warning(io::Position at, const std::string &node, const std::string &text) {
    items_.push_back({at, node, false, text});
  }
  bool has_errors() const;
  bool empty() const { return items_.empty(); }
  // "FILE:LINE:COLUMN: node N: error: TEXT", one line each, in file order,
  // each distinct finding once.
  void print(const std::string &file);

 private:
  std::vector<Finding> items_;
};

// The position of a node's item, or of the node itself when the item's is
// unknown.
io::Position item_position(const io::LoadedModel &model, const vel_node_t *node,
                           io::Position io::NodeSource::*item);
io::Position expression_position(const io::LoadedModel &model, const vel_node_t *node, long index);

// The warnings: labels and numbers that name no state of the node they are
// compared with or given to, distributions that cannot apply to the node,
// literal table rows that do not sum to 1 or have a negative entry, and
// duplicate state labels.
void find_warnings(const io::LoadedModel &model, Findings &findings);

}  // namespace vel::cli
