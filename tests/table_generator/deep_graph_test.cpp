// Graphs and expressions far larger than models are written by hand: long
// chains of function nodes (evaluated and invalidated without deep
// recursion), many nodes and edges in any order (linear checks), and calls
// with very many arguments, tables over very many one-state parents.
#include <string>
#include <vector>

#include "function_node_support.h"

namespace {

constexpr int chain_length = 200000;

class DeepGraphTest : public gentest::FunctionNodeFixture {
 protected:
  // F0 = L, Fi = F(i-1) + 1: every value in the chain is computed at once.
  std::vector<vel_node_t *> chain(vel_node_t *start) {
    std::vector<vel_node_t *> nodes{function_of("F0", {start}, "L")};
    for (int i = 1; i < chain_length; ++i) {
      const std::string name = "F" + std::to_string(i);
      const std::string text = "F" + std::to_string(i - 1) + " + 1";
      nodes.push_back(function_of(name.c_str(), {nodes.back()}, text.c_str()));
    }
    return nodes;
  }
};

TEST_F(DeepGraphTest, ChainOfFunctionNodesInBothModes) {
  vel_node_t *start = continuous("L", 2);
  vel_node_set_configured_value(start, 5);
  vel_domain_set_compiled(domain(), 1);
  const std::vector<vel_node_t *> nodes = chain(start);
  EXPECT_EQ(value(nodes.back(), vel_mode_inference), 2.0 + chain_length - 1);
  EXPECT_EQ(value(nodes.back(), vel_mode_configured), 5.0 + chain_length - 1);
  for (vel_node_t *node : {nodes.front(), nodes[chain_length / 2], nodes.back()}) {
    EXPECT_EQ(node->function_status[0], 0);
    EXPECT_EQ(node->mark, 0) << "every mark is cleared again";
  }

  // A new mean invalidates the whole chain in mode 0 only.
  vel_node_set_mean_and_variance(start, 10, 0);
  EXPECT_EQ(nodes.back()->function_status[0], -1);
  EXPECT_EQ(nodes.back()->function_status[1], 0);
  EXPECT_EQ(value(nodes.back(), vel_mode_inference), 10.0 + chain_length - 1);

  // A failure at the bottom is the status of every node above it.
  model(nodes[1], {}, {"F0 / 0"});
  EXPECT_EQ(code(nodes.back(), vel_mode_configured), vel_error_division_by_zero);
  EXPECT_EQ(nodes[chain_length / 2]->function_status[1], vel_error_division_by_zero);
}

// Edges added against the order of creation, and a cycle found far away.
TEST_F(DeepGraphTest, ManyNodesAndEdgesInAnyOrder) {
  constexpr int count = 100000;
  std::vector<vel_node_t *> nodes;
  for (int i = 0; i < count; ++i) nodes.push_back(boolean(("N" + std::to_string(i)).c_str()));
  for (int i = 0; i + 1 < count; ++i) ASSERT_EQ(vel_node_add_parent(nodes[i], nodes[i + 1]), 0) << i;
  EXPECT_EQ(vel_node_add_parent(nodes.back(), nodes.front()), vel_error_usage);
  EXPECT_STREQ(vel_error_message(), "cannot add N0 as a parent of N99999: it would close a directed cycle");
  EXPECT_EQ(vel_node_add_parent(nodes[5], nodes[6]), vel_error_usage);
  EXPECT_EQ(vel_node_add_parent(nodes.front(), nodes.back()), 0);
  EXPECT_EQ(vel_domain_new_node(domain(), vel_category_chance, vel_kind_discrete, vel_subtype_boolean, "N77"),
            nullptr);
}

TEST_F(DeepGraphTest, CallWithManyArguments) {
  vel_node_t *start = continuous("L", 2);
  vel_domain_set_compiled(domain(), 1);
  std::string text = "max(L";
  for (int i = 1; i < 200000; ++i) text += ", L + " + std::to_string(i % 1000);
  text += ")";
  vel_node_t *f = function_of("F", {start}, text.c_str());
  EXPECT_EQ(value(f, vel_mode_inference), 2.0 + 999);

  std::vector<vel_expression_t *> arguments(200000, vel_make_number(1));
  arguments.push_back(nullptr);
  EXPECT_EQ(vel_make_operator(vel_op_max, arguments.data()), nullptr);
  EXPECT_STREQ(vel_error_message(), "argument 2 of max repeats argument 1");
  EXPECT_EQ(vel_expression_delete(arguments[0]), 0) << "the refused argument is its caller's again";
}

// Tables over the most nodes allowed: one-state parents, every one a model
// node and every other one an interval parent that is sampled, each a level
// of the generator's walks; one more parent is refused before anything is
// made.
TEST_F(DeepGraphTest, WidestTables) {
  vel_node_t *child = boolean("X");
  std::vector<vel_node_t *> wide;
  for (uint64_t i = 0; i + 1 < vel_max_table_nodes; ++i) {
    const std::string name = "P" + std::to_string(i);
    wide.push_back(i % 2 ? interval(name.c_str(), {0, 1}) : labeled(name.c_str(), {"only"}));
  }
  parents(child, wide);
  model(child, wide, {"if(P1 < 0.5, Distribution(1, 3), Distribution(3, 1))"});
  // One sample point per interval, its midpoint: every further point would
  // multiply the work by the number of interval parents.
  vel_model_set_samples_per_interval(vel_node_get_model(child), 1);
  ASSERT_EQ(vel_node_generate_table(child), 0) << vel_error_message();
  EXPECT_EQ(table(child), (std::vector<double>{0.75, 0.25}));

  parents(child, {labeled("Last", {"only"})});
  EXPECT_EQ(vel_node_get_table(child), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_too_large);
  EXPECT_STREQ(vel_error_message(), "the table of X would have 1001 nodes, more than the limit of 1000");

  // Twelve sampled intervals at 25 points each: 25^12 points for one row,
  // refused before any is computed.
  vel_node_t *y = boolean("Y");
  std::vector<vel_node_t *> sampled(wide.begin() + 1, wide.begin() + 24);
  parents(y, sampled);
  model(y, {}, {"Distribution(1, 1)"});
  vel_model_set_samples_per_interval(vel_node_get_model(y), 25);
  EXPECT_EQ(vel_node_generate_table(y), vel_error_too_large);
  EXPECT_STREQ(vel_error_message(),
               "generating the table of Y would compute 5.96e+16 sample points, more than the "
               "limit of 2^40");
}

}  // namespace
