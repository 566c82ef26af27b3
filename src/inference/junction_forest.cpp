// From the cliques of the triangulated moral graph to the junction forest:
// each connected set of cliques becomes a tree by a maximum spanning tree on
// separator sizes (which gives the running-intersection property for the
// cliques of a triangulated graph), and each table goes to the smallest
// clique that holds its nodes.
#include <algorithm>
#include <numeric>
#include <string>
#include <unordered_set>

#include "common/error.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"

namespace vel::inference {

namespace {

std::vector<uint32_t> intersection(const std::vector<uint32_t> &a, const std::vector<uint32_t> &b) {
  std::vector<uint32_t> common;
  std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
  return common;
}

// Strides that walk `from` (variables of a potential) onto a table over
// `onto` (variables in the table's own order, its last varying fastest).
Strides strides_onto(const std::vector<uint32_t> &from, const std::vector<uint32_t> &onto,
                     const std::vector<vel_node_t *> &nodes) {
  Strides strides(from.size(), 0);
  uint64_t stride = 1;
  for (std::size_t k = onto.size(); k-- > 0;) {
    const auto at = std::find(from.begin(), from.end(), onto[k]);
    if (at != from.end()) strides[at - from.begin()] = stride;
    stride *= nodes[onto[k]]->state_count;
  }
  return strides;
}

int refuse_size(const std::string &what, uint64_t size) {
  const std::string message = what + " would have " + (size ? std::to_string(size) : std::string("too many")) +
                              " entries; the limit is " + std::to_string(max_clique_entries);
  set_error_message(message.c_str());
  return fail(vel_error_too_large);
}

// Product of the state counts; 0 when it exceeds the limit.
uint64_t table_size(const std::vector<uint32_t> &variables, const std::vector<vel_node_t *> &nodes) {
  uint64_t size = 1;
  for (uint32_t v : variables)
    if (__builtin_mul_overflow(size, nodes[v]->state_count, &size) || size > max_clique_entries) return 0;
  return size;
}

std::string clique_names(const std::vector<uint32_t> &variables, const std::vector<vel_node_t *> &nodes) {
  std::string names;
  for (uint32_t v : variables) names += (names.empty() ? "" : ", ") + std::string(nodes[v]->name);
  return "the clique of " + names;
}

int find_root(std::vector<int32_t> &up, int32_t c) {
  while (up[c] != c) c = up[c] = up[up[c]];
  return c;
}

// Links the cliques into trees: largest separators first, each edge joining
// two trees; then orders every tree from its first clique.  Only cliques
// that share a node are candidates.
void link_trees(JunctionForest &forest, const std::vector<std::vector<int32_t>> &cliques_of) {
  const int32_t count = static_cast<int32_t>(forest.cliques.size());
  struct Edge {
    std::size_t weight;
    int32_t a, b;
  };
  std::vector<Edge> edges;
  std::unordered_set<uint64_t> seen_pairs;
  for (const std::vector<int32_t> &holders : cliques_of)
    for (std::size_t i = 0; i < holders.size(); ++i)
      for (std::size_t k = i + 1; k < holders.size(); ++k) {
        const int32_t a = holders[i], b = holders[k];
        if (!seen_pairs.insert(static_cast<uint64_t>(a) << 32 | static_cast<uint32_t>(b)).second) continue;
        edges.push_back({intersection(forest.cliques[a].variables, forest.cliques[b].variables).size(), a, b});
      }
  std::sort(edges.begin(), edges.end(), [](const Edge &x, const Edge &y) {
    return x.weight != y.weight ? x.weight > y.weight : x.a != y.a ? x.a < y.a : x.b < y.b;
  });
  std::vector<int32_t> up(count);
  std::iota(up.begin(), up.end(), 0);
  std::vector<std::vector<int32_t>> linked(count);
  for (const Edge &e : edges) {
    const int32_t ra = find_root(up, e.a), rb = find_root(up, e.b);
    if (ra == rb) continue;
    up[ra] = rb;
    linked[e.a].push_back(e.b);
    linked[e.b].push_back(e.a);
  }
  std::vector<char> seen(count, 0);
  for (int32_t root = 0; root < count; ++root) {
    if (seen[root]) continue;
    seen[root] = 1;
    const std::size_t first = forest.order.size();
    forest.order.push_back(root);
    for (std::size_t i = first; i < forest.order.size(); ++i) {
      const int32_t c = forest.order[i];
      forest.cliques[c].tree = forest.tree_count;
      for (int32_t next : linked[c]) {
        if (seen[next]) continue;
        seen[next] = 1;
        forest.cliques[next].parent = c;
        forest.order.push_back(next);
      }
    }
    ++forest.tree_count;
  }
}

void make_separators(JunctionForest &forest) {
  std::size_t largest = 0;
  for (int32_t c : forest.order) {
    Clique &clique = forest.cliques[c];
    if (clique.parent < 0) continue;
    const Clique &parent = forest.cliques[clique.parent];
    const std::vector<uint32_t> shared = intersection(clique.variables, parent.variables);
    clique.separator = static_cast<int32_t>(forest.separators.size());
    clique.to_separator = strides_onto(clique.variables, shared, forest.nodes);
    clique.parent_to_separator = strides_onto(parent.variables, shared, forest.nodes);
    uint64_t size = 1;
    for (uint32_t v : shared) size *= forest.nodes[v]->state_count;
    forest.separators.emplace_back(size, 1.0);
    largest = std::max<std::size_t>(largest, size);
  }
  forest.scratch.assign(largest, 0.0);
}

// The smallest clique holding every variable of `family`, among those
// holding its first; -1 for an empty family.
int32_t smallest_holder(const JunctionForest &forest, const std::vector<std::vector<int32_t>> &cliques_of,
                        const std::vector<uint32_t> &family) {
  int32_t best = -1;
  if (family.empty()) return best;
  std::vector<uint32_t> sorted = family;
  std::sort(sorted.begin(), sorted.end());
  for (int32_t c : cliques_of[family.front()]) {
    const std::vector<uint32_t> &v = forest.cliques[c].variables;
    if (!std::includes(v.begin(), v.end(), sorted.begin(), sorted.end())) continue;
    if (best < 0 || forest.cliques[c].values.size() < forest.cliques[best].values.size()) best = c;
  }
  return best;
}

// A table's variables in its storage order: the discrete parents, then the
// node itself when it has states.
std::vector<uint32_t> table_variables(const JunctionForest &forest, const vel_node_t *node) {
  std::vector<uint32_t> family;
  for (vel_node_t *const *parent = node->parents; parent && *parent; ++parent)
    if (host::is_discrete(*parent)) family.push_back(static_cast<uint32_t>(forest.variable_of[(*parent)->index]));
  if (host::is_discrete(node)) family.push_back(static_cast<uint32_t>(forest.variable_of[node->index]));
  return family;
}

void assign_tables(vel_domain_t *domain, JunctionForest &forest,
                   const std::vector<std::vector<int32_t>> &cliques_of) {
  for (uint32_t v = 0; v < forest.nodes.size(); ++v) forest.home.push_back(smallest_holder(forest, cliques_of, {v}));
  for (vel_node_t *node = domain->first_node; node; node = node->next) {
    if (!host::is_discrete(node) && node->category != vel_category_utility) continue;
    const std::vector<uint32_t> family = table_variables(forest, node);
    const int32_t holder = smallest_holder(forest, cliques_of, family);
    if (host::is_discrete(node)) {
      Clique &clique = forest.cliques[holder];
      clique.tables.push_back({node, strides_onto(clique.variables, family, forest.nodes)});
    } else {
      Strides strides = holder < 0 ? Strides{} : strides_onto(forest.cliques[holder].variables, family, forest.nodes);
      forest.utilities.push_back({node, holder, std::move(strides)});
    }
  }
}

}  // namespace

int build_junction_forest(vel_domain_t *domain, std::unique_ptr<JunctionForest> *result) {
  const MoralGraph graph = build_moral_graph(domain);
  const std::vector<std::vector<uint32_t>> sets = triangulate(graph);
  uint64_t total = 0;
  std::vector<uint64_t> sizes;
  for (const std::vector<uint32_t> &set : sets) {
    const uint64_t size = table_size(set, graph.nodes);
    if (size == 0) return refuse_size(clique_names(set, graph.nodes), 0);
    total += size;
    if (total > max_clique_entries) return refuse_size("the clique tables of the domain", total);
    sizes.push_back(size);
  }

  auto forest = std::make_unique<JunctionForest>();
  forest->nodes = graph.nodes;
  forest->variable_of.assign(domain->host->nodes.size(), -1);
  for (uint32_t v = 0; v < forest->nodes.size(); ++v) forest->variable_of[forest->nodes[v]->index] = static_cast<int32_t>(v);
  forest->total_size = total;
  for (std::size_t c = 0; c < sets.size(); ++c) {
    Clique clique;
    clique.variables = sets[c];
    for (uint32_t v : clique.variables) clique.counts.push_back(forest->nodes[v]->state_count);
    clique.values.assign(sizes[c], 1.0);
    forest->cliques.push_back(std::move(clique));
  }
  std::vector<std::vector<int32_t>> cliques_of(forest->nodes.size());  // ascending
  for (int32_t c = 0; c < static_cast<int32_t>(forest->cliques.size()); ++c)
    for (uint32_t v : forest->cliques[c].variables) cliques_of[v].push_back(c);
  link_trees(*forest, cliques_of);
  make_separators(*forest);
  assign_tables(domain, *forest, cliques_of);
  *result = std::move(forest);
  return _vel_error_code = 0;
}

JunctionForest *forest_of(const vel_domain_t *domain) {
  return static_cast<JunctionForest *>(domain->host->junction_forest.get());
}

}  // namespace vel::inference
