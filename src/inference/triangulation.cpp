// Triangulation by elimination: each step eliminates the node whose
// elimination adds the fewest fill-in edges (min-fill), ties going to the
// smaller clique table (min-weight), then to the earlier node.  The cliques
// are the elimination sets that no earlier set contains.
#include <algorithm>
#include <cmath>

#include "inference/junction_forest.h"

namespace vel::inference {

namespace {

class Eliminator {
 public:
  explicit Eliminator(const MoralGraph &graph)
      : adjacent_(graph.neighbours), alive_(graph.nodes.size(), 1), fill_(graph.nodes.size()),
        weight_(graph.nodes.size()), dirty_(graph.nodes.size(), 0) {
    for (vel_node_t *node : graph.nodes) log_count_.push_back(std::log2(static_cast<double>(node->state_count)));
    for (uint32_t v = 0; v < adjacent_.size(); ++v) score(v);
  }

  // The next node to eliminate.
  uint32_t choose() const {
    uint32_t best = 0;
    bool found = false;
    for (uint32_t v = 0; v < alive_.size(); ++v) {
      if (!alive_[v]) continue;
      if (!found || fill_[v] < fill_[best] || (fill_[v] == fill_[best] && weight_[v] < weight_[best])) best = v;
      found = true;
    }
    return best;
  }

  // Eliminates v and returns its elimination set, ascending.
  std::vector<uint32_t> eliminate(uint32_t v) {
    std::vector<uint32_t> neighbours = adjacent_[v];
    for (std::size_t i = 0; i < neighbours.size(); ++i)
      for (std::size_t k = i + 1; k < neighbours.size(); ++k) join(neighbours[i], neighbours[k]);
    for (uint32_t n : neighbours) {
      std::vector<uint32_t> &list = adjacent_[n];
      list.erase(std::lower_bound(list.begin(), list.end(), v));
    }
    alive_[v] = 0;
    // Only the neighbours' scores and their neighbours' can have changed.
    for (uint32_t n : neighbours) {
      dirty_[n] = 1;
      for (uint32_t m : adjacent_[n]) dirty_[m] = 1;
    }
    for (uint32_t n : neighbours) {
      for (uint32_t m : adjacent_[n]) rescore(m);
      rescore(n);
    }
    neighbours.insert(std::lower_bound(neighbours.begin(), neighbours.end(), v), v);
    return neighbours;
  }

 private:
  bool adjacent(uint32_t a, uint32_t b) const {
    return std::binary_search(adjacent_[a].begin(), adjacent_[a].end(), b);
  }

  void join(uint32_t a, uint32_t b) {
    if (adjacent(a, b)) return;
    adjacent_[a].insert(std::lower_bound(adjacent_[a].begin(), adjacent_[a].end(), b), b);
    adjacent_[b].insert(std::lower_bound(adjacent_[b].begin(), adjacent_[b].end(), a), a);
  }

  void score(uint32_t v) {
    const std::vector<uint32_t> &list = adjacent_[v];
    uint64_t missing = 0;
    double weight = log_count_[v];
    for (std::size_t i = 0; i < list.size(); ++i) {
      weight += log_count_[list[i]];
      for (std::size_t k = i + 1; k < list.size(); ++k) missing += !adjacent(list[i], list[k]);
    }
    fill_[v] = missing;
    weight_[v] = weight;
  }

  void rescore(uint32_t v) {
    if (!dirty_[v]) return;
    dirty_[v] = 0;
    score(v);
  }

  std::vector<std::vector<uint32_t>> adjacent_;  // among nodes not yet eliminated
  std::vector<double> log_count_;
  std::vector<char> alive_;
  std::vector<uint64_t> fill_;
  std::vector<double> weight_;  // log2 of the clique table size
  std::vector<char> dirty_;
};

}  // namespace

// An elimination set can only lie inside an earlier clique that holds the
// node just eliminated, so only those are searched.
std::vector<std::vector<uint32_t>> triangulate(const MoralGraph &graph) {
  Eliminator eliminator(graph);
  std::vector<std::vector<uint32_t>> cliques;
  std::vector<std::vector<uint32_t>> holding(graph.nodes.size());  // cliques holding each node
  for (std::size_t step = 0; step < graph.nodes.size(); ++step) {
    const uint32_t v = eliminator.choose();
    std::vector<uint32_t> set = eliminator.eliminate(v);
    const bool contained = std::any_of(holding[v].begin(), holding[v].end(), [&](uint32_t c) {
      return std::includes(cliques[c].begin(), cliques[c].end(), set.begin(), set.end());
    });
    if (contained) continue;
    for (uint32_t member : set) holding[member].push_back(static_cast<uint32_t>(cliques.size()));
    cliques.push_back(std::move(set));
  }
  return cliques;
}

}  // namespace vel::inference
