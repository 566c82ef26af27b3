// The BAYES form of the UAI inference-competition format: the variables'
// cardinalities in file order, each table's scope (its parents, then its
// node), then the tables with the scope's last variable varying fastest.
//
// The parents of every scope are listed in one topological order of the
// network rather than in parent order, so that any two scopes sharing two
// variables list them the same way round: toulbar2 1.1.1 (Debian 12) merges
// functions over a shared pair without transposing one, and finds wrong
// optima when the orders differ.
#include <algorithm>
#include <numeric>

#include "io/network_writers.h"
#include "io/table_output.h"

namespace vel::io::detail {

namespace {

// Each node's rank in a topological order (parents first, ties in file
// order).
std::vector<std::size_t> topological_ranks(const std::vector<ExportNode> &nodes) {
  std::vector<std::size_t> waiting(nodes.size()), ranks(nodes.size());
  std::vector<std::vector<std::size_t>> children(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    waiting[i] = nodes[i].parents.size();
    for (const std::size_t parent : nodes[i].parents) children[parent].push_back(i);
  }
  std::vector<std::size_t> ready;
  for (std::size_t i = nodes.size(); i-- > 0;)
    if (waiting[i] == 0) ready.push_back(i);
  for (std::size_t rank = 0; !ready.empty(); ++rank) {
    // The smallest file index among the ready nodes.
    const auto first = std::min_element(ready.begin(), ready.end());
    const std::size_t node = *first;
    ready.erase(first);
    ranks[node] = rank;
    for (const std::size_t child : children[node])
      if (--waiting[child] == 0) ready.push_back(child);
  }
  return ranks;
}

// The node's table over its parents in `order` (positions in node.parents),
// then the node, the last fastest.
std::vector<float> reordered_table(const std::vector<ExportNode> &nodes, const ExportNode &node,
                                   const std::vector<std::size_t> &order) {
  const std::size_t count = node.parents.size(), states = node.states.size();
  // Strides of the parents in the storage order (parent order, node last).
  std::vector<std::size_t> stride(count);
  for (std::size_t i = count, step = states; i-- > 0;) {
    stride[i] = step;
    step *= nodes[node.parents[i]].states.size();
  }
  std::vector<float> table;
  table.reserve(node.size);
  std::vector<std::size_t> state(count, 0);
  for (std::size_t start = 0; table.size() < node.size;) {
    table.insert(table.end(), node.data + start, node.data + start + states);
    // Next configuration in the new order: its last parent fastest.
    for (std::size_t k = count; k-- > 0;) {
      const std::size_t p = order[k];
      start += stride[p];
      if (++state[k] < nodes[node.parents[p]].states.size()) break;
      start -= state[k] * stride[p];
      state[k] = 0;
    }
  }
  return table;
}

}  // namespace

void write_uai(std::ostream &out, const std::vector<ExportNode> &nodes) {
  const std::vector<std::size_t> ranks = topological_ranks(nodes);
  std::vector<std::vector<std::size_t>> orders(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    std::vector<std::size_t> &order = orders[i];
    order.resize(nodes[i].parents.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return ranks[nodes[i].parents[a]] < ranks[nodes[i].parents[b]];
    });
  }

  out << "BAYES\n" << nodes.size() << "\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) out << (i ? " " : "") << nodes[i].states.size();
  out << "\n" << nodes.size() << "\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    out << nodes[i].parents.size() + 1;
    for (const std::size_t p : orders[i]) out << " " << nodes[i].parents[p];
    out << " " << i << "\n";
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const std::vector<float> table = reordered_table(nodes, nodes[i], orders[i]);
    const std::size_t states = nodes[i].states.size();
    out << "\n" << table.size() << "\n";
    for (std::size_t start = 0; start < table.size(); start += states) {
      for (std::size_t s = 0; s < states; ++s) out << ' ' << shortest_text(table[start + s]);
      out << '\n';
    }
  }
}

}  // namespace vel::io::detail
