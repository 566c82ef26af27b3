// The junction forest that compilation builds: the triangulation heuristic,
// the running-intersection property, tables in cliques that hold them, one
// tree per connected component, and the size limit.
#include <algorithm>
#include <numeric>
#include <random>
#include <set>

#include "common/error.h"
#include "inference/junction_forest.h"
#include "network_support.h"

namespace {

using inftest::Network;
using vel::inference::forest_of;
using vel::inference::JunctionForest;

std::vector<std::string> clique_names(const JunctionForest &forest, int c) {
  std::vector<std::string> names;
  for (uint32_t v : forest.cliques[c].variables) names.push_back(forest.nodes[v]->name);
  return names;
}

// A four-cycle A-B-C-D (each edge married by a utility) needs one chord.
// Every choice adds one fill-in; eliminating B or D first makes cliques of
// 2 * 3 * 2 entries, A or C first of 3 * 2 * 3.
TEST(JunctionForest, MinFillTiesGoToTheSmallerClique) {
  Network n;
  vel_node_t *a = n.add("A", 2, {}, {0.5, 0.5});
  vel_node_t *b = n.add("B", 3, {}, {0.2, 0.3, 0.5});
  vel_node_t *c = n.add("C", 2, {}, {0.5, 0.5});
  vel_node_t *d = n.add("D", 3, {}, {0.2, 0.3, 0.5});
  const std::vector<std::vector<vel_node_t *>> edges = {{a, b}, {b, c}, {c, d}, {d, a}};
  for (std::size_t i = 0; i < edges.size(); ++i)
    n.stateless(("U" + std::to_string(i)).c_str(), edges[i], std::vector<double>(6, 1.0));
  ASSERT_EQ(vel_domain_compile(n.domain), 0) << vel_error_message();
  const JunctionForest &forest = *forest_of(n.domain);
  ASSERT_EQ(forest.cliques.size(), 2u);
  EXPECT_EQ(clique_names(forest, 0), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(clique_names(forest, 1), (std::vector<std::string>{"A", "C", "D"}));
  EXPECT_EQ(vel_domain_get_clique_table_size(n.domain), 24u);
  EXPECT_EQ(forest.tree_count, 1);
}

// Random networks: the cliques holding any node form one connected subtree,
// and there is one tree per component.
TEST(JunctionForest, RunningIntersectionOnRandomNetworks) {
  std::mt19937 random(12);
  for (int round = 0; round < 40; ++round) {
    Network n;
    const int count = 2 + static_cast<int>(random() % 24);
    std::vector<vel_node_t *> nodes;
    std::vector<int> component(count);
    std::iota(component.begin(), component.end(), 0);
    auto root = [&](int x) { while (component[x] != x) x = component[x]; return x; };
    for (int i = 0; i < count; ++i) {
      std::vector<vel_node_t *> parents;
      for (int k = 0; k < i && parents.size() < 3; ++k)
        if (random() % 5 == 0) {
          parents.push_back(nodes[k]);
          component[root(k)] = root(i);
        }
      const std::size_t states = 2 + random() % 2;
      std::size_t rows = 1;
      for (vel_node_t *p : parents) rows *= vel_node_get_number_of_states(p);
      std::vector<double> table(rows * states, 1.0 / static_cast<double>(states));
      nodes.push_back(n.add(("N" + std::to_string(i)).c_str(), states, parents, table));
    }
    ASSERT_EQ(vel_domain_compile(n.domain), 0) << vel_error_message();
    const JunctionForest &forest = *forest_of(n.domain);
    std::set<int> components;
    for (int i = 0; i < count; ++i) components.insert(root(i));
    EXPECT_EQ(forest.tree_count, static_cast<int>(components.size())) << "round " << round;
    for (uint32_t v = 0; v < forest.nodes.size(); ++v) {
      int holders = 0, links = 0;
      for (const auto &clique : forest.cliques) {
        auto holds = [&](const auto &c) { return std::binary_search(c.variables.begin(), c.variables.end(), v); };
        holders += holds(clique);
        links += clique.parent >= 0 && holds(clique) && holds(forest.cliques[clique.parent]);
      }
      EXPECT_EQ(holders - links, 1) << "round " << round << ", node " << forest.nodes[v]->name;
    }
  }
}

// Neither a clique beyond the limit nor a total beyond it is allocated: the
// utilities' tables, generated later, are never made either.
TEST(JunctionForest, TablesBeyondTheLimitAreRefused) {
  struct Case {
    std::size_t states, groups, group_size;
    const char *message;
  } cases[] = {
      {1000, 1, 5, "the clique of N0_0, N0_1, N0_2, N0_3, N0_4 would have too many entries; the limit is 134217728"},
      {8192, 3, 2, "the clique tables of the domain would have 201326592 entries; the limit is 134217728"},
  };
  for (const Case &c : cases) {
    Network n;
    for (std::size_t g = 0; g < c.groups; ++g) {
      std::vector<vel_node_t *> group;
      for (std::size_t k = 0; k < c.group_size; ++k) {
        const std::string name = "N" + std::to_string(g) + "_" + std::to_string(k);
        group.push_back(n.add(name.c_str(), c.states, {}, std::vector<double>(c.states, 1.0 / c.states),
                              vel_category_chance, vel_subtype_numbered));
      }
      Network::model(n.stateless(("U" + std::to_string(g)).c_str(), group), {}, {"0"});
    }
    EXPECT_EQ(vel_domain_compile(n.domain), vel_error_too_large);
    EXPECT_STREQ(vel_error_message(), c.message);
    EXPECT_FALSE(vel_domain_is_compiled(n.domain));
    EXPECT_EQ(forest_of(n.domain), nullptr);
  }
}

}  // namespace
