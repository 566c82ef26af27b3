// The junction forest that compilation builds: the triangulation heuristic
// and the size limit. (Whether the forest propagates correctly, the
// comparison of random networks with NumPy decides.)

#include "common/error.h"
#include "inference/junction_forest.h"
#include "table_generator/generation_test_support.h"

namespace {

using Network = gentest::DomainBuilder;
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
    n.add(("U" + std::to_string(i)).c_str(), 0, edges[i], std::vector<double>(6, 1.0), vel_category_utility,
          vel_subtype_none);
  ASSERT_EQ(vel_domain_compile(n.domain()), 0) << vel_error_message();
  const JunctionForest &forest = *forest_of(n.domain());
  ASSERT_EQ(forest.cliques.size(), 2u);
  EXPECT_EQ(clique_names(forest, 0), (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(clique_names(forest, 1), (std::vector<std::string>{"A", "C", "D"}));
  EXPECT_EQ(vel_domain_get_clique_table_size(n.domain()), 24u);
  EXPECT_EQ(forest.tree_count, 1);
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
      vel_node_t *u = n.add(("U" + std::to_string(g)).c_str(), 0, group, {}, vel_category_utility, vel_subtype_none);
      Network::model(u, {}, {"0"});
    }
    EXPECT_EQ(vel_domain_compile(n.domain()), vel_error_too_large);
    EXPECT_STREQ(vel_error_message(), c.message);
    EXPECT_FALSE(vel_domain_is_compiled(n.domain()));
    EXPECT_EQ(forest_of(n.domain()), nullptr);
  }
}

}  // namespace
