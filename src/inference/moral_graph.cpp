// The moral graph of a domain's discrete nodes: every node joined to its
// discrete parents, the parents of a node married, and the discrete parents
// of a utility node married too, so that some clique holds each table.
#include <algorithm>

#include "host/storage_internal.h"
#include "inference/junction_forest.h"

namespace vel::inference {

namespace {

void join(MoralGraph &graph, uint32_t a, uint32_t b) {
  if (a == b) return;
  std::vector<uint32_t> &list = graph.neighbours[a];
  auto at = std::lower_bound(list.begin(), list.end(), b);
  if (at != list.end() && *at == b) return;
  list.insert(at, b);
  graph.neighbours[b].insert(std::lower_bound(graph.neighbours[b].begin(), graph.neighbours[b].end(), a), a);
}

}  // namespace

MoralGraph build_moral_graph(vel_domain_t *domain) {
  MoralGraph graph;
  std::vector<int32_t> position(domain->host->nodes.size(), -1);
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (host::is_discrete(node)) {
      position[node->index] = static_cast<int32_t>(graph.nodes.size());
      graph.nodes.push_back(node);
    }
  graph.neighbours.resize(graph.nodes.size());

  std::vector<uint32_t> family;
  for (vel_node_t *node = domain->first_node; node; node = node->next) {
    const bool has_table = host::is_discrete(node) || node->category == vel_category_utility;
    if (!has_table) continue;
    family.clear();
    for (vel_node_t *const *parent = node->parents; parent && *parent; ++parent)
      if (host::is_discrete(*parent)) family.push_back(static_cast<uint32_t>(position[(*parent)->index]));
    if (host::is_discrete(node)) family.push_back(static_cast<uint32_t>(position[node->index]));
    for (std::size_t i = 0; i < family.size(); ++i)
      for (std::size_t k = i + 1; k < family.size(); ++k) join(graph, family[i], family[k]);
  }
  return graph;
}

}  // namespace vel::inference
