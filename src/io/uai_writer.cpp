// The BAYES form of the UAI inference-competition format: the variables'
// cardinalities in order, each table's scope (its parents, then its node),
// then the tables with the scope's last variable varying fastest, which is
// the library's storage order.
#include "io/network_writers.h"
#include "io/table_output.h"

namespace vel::io::detail {

void write_uai(std::ostream &out, const std::vector<ExportNode> &nodes) {
  out << "BAYES\n" << nodes.size() << "\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) out << (i ? " " : "") << nodes[i].states.size();
  out << "\n" << nodes.size() << "\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    out << nodes[i].parents.size() + 1;
    for (const std::size_t parent : nodes[i].parents) out << " " << parent;
    out << " " << i << "\n";
  }
  for (const ExportNode &node : nodes) {
    out << "\n" << node.size << "\n";
    const std::size_t states = node.states.size();
    for (std::size_t start = 0; start < node.size; start += states) {
      for (std::size_t s = 0; s < states; ++s) out << ' ' << shortest_text(node.data[start + s]);
      out << '\n';
    }
  }
}

}  // namespace vel::io::detail
