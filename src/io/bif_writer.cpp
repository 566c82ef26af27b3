// BIF out: the variables, then one probability block per node, with one row
// per parent configuration (a node without parents gets a `table`).
#include "io/network_writers.h"
#include "io/table_output.h"

namespace vel::io::detail {

namespace {

void write_entries(std::ostream &out, const float *data, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) out << (i ? ", " : "") << shortest_text(data[i]);
  out << ";\n";
}

}  // namespace

void write_bif(std::ostream &out, const std::string &name, const std::vector<ExportNode> &nodes) {
  out << "network " << (is_bif_word(name) ? name : "unknown") << " {\n}\n";
  for (const ExportNode &node : nodes) {
    out << "variable " << node.name << " {\n  type discrete [ " << node.states.size() << " ] { ";
    for (std::size_t s = 0; s < node.states.size(); ++s) out << (s ? ", " : "") << node.states[s];
    out << " };\n}\n";
  }
  for (const ExportNode &node : nodes) {
    out << "probability ( " << node.name;
    for (std::size_t i = 0; i < node.parents.size(); ++i)
      out << (i ? ", " : " | ") << nodes[node.parents[i]].name;
    out << " ) {\n";
    const std::size_t states = node.states.size();
    if (node.parents.empty()) {
      out << "  table ";
      write_entries(out, node.data, states);
    }
    // Rows in storage order: the last parent's state varies fastest.
    std::vector<std::size_t> row(node.parents.size(), 0);
    for (std::size_t start = 0; !node.parents.empty() && start < node.size; start += states) {
      out << "  (";
      for (std::size_t i = 0; i < row.size(); ++i)
        out << (i ? ", " : "") << nodes[node.parents[i]].states[row[i]];
      out << ") ";
      write_entries(out, node.data + start, states);
      for (std::size_t i = row.size(); i-- > 0;) {
        if (++row[i] < nodes[node.parents[i]].states.size()) break;
        row[i] = 0;
      }
    }
    out << "}\n";
  }
}

}  // namespace vel::io::detail
