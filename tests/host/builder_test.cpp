// Domains, nodes, states, parents, models and tables built through the
// public builder: what a new record holds and what the builder refuses.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "host/records.h"
#include "vel/vel.h"

namespace {

class BuilderTest : public ::testing::Test {
 protected:
  void SetUp() override { domain_ = vel_domain_new(); }
  void TearDown() override { vel_domain_delete(domain_); }

  vel_node_t *discrete(const char *name, int subtype, size_t states,
                       int category = vel_category_chance) {
    vel_node_t *node = vel_domain_new_node(domain_, category, vel_kind_discrete, subtype, name);
    EXPECT_NE(node, nullptr) << name;
    if (node && subtype != vel_subtype_boolean) {
      EXPECT_EQ(vel_node_set_number_of_states(node, states), 0);
    }
    return node;
  }
  // A model of `node` over `nodes`.
  static vel_model_t *model_over(vel_node_t *node, std::vector<vel_node_t *> nodes) {
    nodes.push_back(nullptr);
    return vel_node_new_model(node, nodes.data());
  }
  // The error code of a call that returns a record: 0 when it returned one.
  template <typename T>
  static int code_of(T *record) { return record ? 0 : vel_error_code(); }

  vel_domain_t *domain_ = nullptr;
};

// Every refusal is a usage error and leaves the records as they were.
TEST_F(BuilderTest, Refusals) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *b = discrete("B", vel_subtype_numbered, 3);
  vel_node_t *c = discrete("C", vel_subtype_interval, 2);
  vel_node_t *flag = discrete("Flag", vel_subtype_boolean, 2);
  vel_node_t *level = vel_domain_new_node(domain_, 1, vel_kind_continuous, 0, "Level");
  vel_node_t *loose = discrete("Loose", vel_subtype_labeled, 2);
  vel_domain_t *other = vel_domain_new();
  vel_node_t *x = vel_domain_new_node(other, 1, 0, vel_subtype_boolean, "X");
  ASSERT_EQ(vel_node_add_parent(b, a), 0);
  ASSERT_EQ(vel_node_add_parent(c, b), 0);
  ASSERT_EQ(vel_node_add_parent(c, level), 0);
  vel_model_t *model = model_over(c, {b});
  ASSERT_EQ(vel_model_set_expression(model, 0, vel_make_number(1)), 0);
  vel_expression_t *owned = vel_model_get_expression(model, 0);
  auto new_node = [&](int category, int kind, int subtype, const char *name) {
    return [=, this] { return code_of(vel_domain_new_node(domain_, category, kind, subtype, name)); };
  };
  struct Case { const char *what; std::function<int()> call; } cases[] = {
      {"name not an identifier", new_node(1, 0, vel_subtype_labeled, "a-b")},
      {"name taken", new_node(1, 0, vel_subtype_labeled, "A")},
      {"NULL name", new_node(1, 0, vel_subtype_labeled, nullptr)},
      {"discrete without subtype", new_node(1, 0, vel_subtype_none, "N1")},
      {"discrete utility", new_node(vel_category_utility, 0, vel_subtype_labeled, "N2")},
      {"continuous function", new_node(vel_category_function, 1, vel_subtype_none, "N3")},
      {"stateless decision", new_node(vel_category_decision, -1, vel_subtype_none, "N5")},
      {"boolean count", [&] { return vel_node_set_number_of_states(flag, 3); }},
      {"count of a model node of a model with expressions",
       [&] { return vel_node_set_number_of_states(b, 4); }},
      {"label index", [&] { return vel_node_set_state_label(a, 2, "x"); }},
      {"numbered value index", [&] { return vel_node_set_state_value(b, 3, 1.0); }},
      {"interval bound index", [&] { return vel_node_set_state_value(c, 3, 1.0); }},
      {"NULL parent", [&] { return vel_node_add_parent(a, nullptr); }},
      {"parent in another domain", [&] { return vel_node_add_parent(a, x); }},
      {"own parent", [&] { return vel_node_add_parent(a, a); }},
      {"duplicate parent", [&] { return vel_node_add_parent(b, a); }},
      {"cycle", [&] { return vel_node_add_parent(a, c); }},
      {"model node not a parent", [&] { return code_of(model_over(c, {loose})); }},
      {"continuous model node", [&] { return code_of(model_over(c, {level})); }},
      {"model node twice", [&] { return code_of(model_over(c, {b, b})); }},
      {"model of a continuous node", [&] { return code_of(model_over(level, {})); }},
      {"zero samples", [&] { return vel_model_set_samples_per_interval(model, 0); }},
      {"expression index", [&] { return vel_model_set_expression(model, 3, owned); }},
      {"owned expression", [&] { return vel_model_set_expression(model, 1, owned); }},
      {"freeing an owned expression", [&] { return vel_expression_delete(owned); }},
      {"expression array length",
       [&] { return vel_model_set_expressions(model, std::vector<vel_expression_t *>(2).data(), 2); }},
      {"table data length", [&] { return vel_node_set_table_data(b, std::vector<double>(5).data(), 5); }},
      {"table entry beyond single precision",
       [&] { return vel_node_set_table_data(b, std::vector<double>(6, 1e300).data(), 6); }},
  };
  for (const Case &k : cases) EXPECT_EQ(k.call(), vel_error_usage) << k.what;
  vel_node_add_parent(a, c);
  EXPECT_NE(std::string(vel_error_message()).find("C as a parent of A"), std::string::npos);

  EXPECT_EQ(vel_node_get_parents(a)[0], nullptr);
  EXPECT_EQ(vel_node_get_children(a)[1], nullptr);
  EXPECT_EQ(vel_node_get_number_of_states(b), 3u);
  EXPECT_EQ(vel_node_get_model(c), model);
  EXPECT_EQ(vel_model_get_expression(model, 0), owned);
  vel_domain_delete(other);
}

// 2^64 model configurations; a table of 2^65 entries (or of anything beyond
// 2^32) is refused as too large, naming the limit.
TEST_F(BuilderTest, SizesThatOverflow) {
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  std::vector<vel_node_t *> nodes;
  for (int k = 0; k < 8; ++k) {
    nodes.push_back(discrete(("P" + std::to_string(k)).c_str(), vel_subtype_labeled, 256));
    ASSERT_EQ(vel_node_add_parent(child, nodes.back()), 0);
  }
  EXPECT_EQ(code_of(model_over(child, nodes)), vel_error_usage);
  EXPECT_EQ(code_of(vel_node_get_table(child)), vel_error_too_large);
  EXPECT_STREQ(vel_error_message(),
               "the table of Child would have more than 2^64 entries, more than the limit of 2^32");
  // Just beyond the limit: 2 * 65536 * 32769 entries.
  vel_node_t *wide = discrete("Wide", vel_subtype_labeled, 2);
  for (size_t states : {size_t{65536}, size_t{32769}}) {
    const std::string name = "W" + std::to_string(states);
    ASSERT_EQ(vel_node_add_parent(wide, discrete(name.c_str(), vel_subtype_labeled, states)), 0);
  }
  EXPECT_EQ(code_of(vel_node_get_table(wide)), vel_error_too_large);
  EXPECT_STREQ(vel_error_message(), "the table of Wide would have 4295098368 entries, more than the limit of 2^32");
  // A model over some of them: a new count of a model node must keep the size in range.
  vel_model_t *model = model_over(child, {nodes[0]});
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(model->tables_outdated, 1);
  EXPECT_EQ(model->samples_per_interval, 25u);
  ASSERT_EQ(vel_node_set_number_of_states(nodes[0], 4), 0);
  EXPECT_EQ(vel_model_get_size(model), 4u) << "an unspecified model follows the count";
}

// A model owns what it was given and frees what it replaces; a refused list
// stays the caller's (ASan checks both).
TEST_F(BuilderTest, ModelExpressionsOwnership) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 3);
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  ASSERT_EQ(vel_node_add_parent(child, a), 0);
  vel_model_t *model = model_over(child, {a});
  vel_expression_t *x = vel_make_label("x");
  ASSERT_EQ(vel_model_set_expression(model, 1, x), 0);
  EXPECT_EQ(vel_model_get_expression(model, 0), nullptr);
  vel_expression_t *y = vel_make_label("y");
  vel_expression_t *z = vel_make_label("z");
  vel_expression_t *const repeated[] = {y, nullptr, y};
  vel_expression_t *const with_owned[] = {y, x, z};
  EXPECT_EQ(vel_model_set_expressions(model, repeated, 3), vel_error_usage);
  EXPECT_EQ(vel_model_set_expressions(model, with_owned, 3), vel_error_usage);
  EXPECT_EQ(y->owner, nullptr);
  vel_expression_t *const full[] = {y, nullptr, z};
  model->tables_outdated = 0;
  ASSERT_EQ(vel_model_set_expressions(model, full, 3), 0);  // frees x
  EXPECT_EQ(model->tables_outdated, 1);
  EXPECT_EQ(z->owner, model);
  ASSERT_EQ(vel_model_set_expressions(model, nullptr, 0), 0);
  EXPECT_EQ(model->expressions, nullptr);
  ASSERT_EQ(vel_model_set_expression(model, 0, vel_make_number(1)), 0);
  ASSERT_NE(model_over(child, {}), nullptr);
  EXPECT_EQ(vel_node_delete_model(child), 0);
  EXPECT_EQ(vel_node_delete_model(child), vel_error_usage);
}

// A table is rebuilt, zero-filled, when the node's discrete parents or their
// state counts change, and kept with its data otherwise.
TEST_F(BuilderTest, TablesFollowParentsAndStates) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *level = vel_domain_new_node(domain_, 1, 1, vel_subtype_none, "Level");
  vel_node_t *b = discrete("B", vel_subtype_numbered, 3);
  vel_node_t *child = discrete("Child", vel_subtype_boolean, 2);
  vel_node_t *u = vel_domain_new_node(domain_, vel_category_utility, -1, 0, "U");
  for (vel_node_t *p : {a, level}) ASSERT_EQ(vel_node_add_parent(child, p), 0);
  ASSERT_EQ(vel_node_add_parent(u, child), 0);
  vel_table_t *table = vel_node_get_table(child);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->nodes[0], a);
  EXPECT_EQ(table->nodes[1], child);
  const double entries[] = {0.25, 0.75, 1, 0};
  ASSERT_EQ(vel_node_set_table_data(child, entries, 4), 0);
  EXPECT_EQ(vel_node_get_table(child), table);
  EXPECT_EQ(table->data[1], 0.75f);

  ASSERT_EQ(vel_node_add_parent(child, b), 0);
  EXPECT_EQ(vel_node_get_table(child), table);
  EXPECT_EQ(table->nodes[1], b);
  EXPECT_EQ(vel_table_get_size(table), 12u);
  ASSERT_EQ(vel_node_set_number_of_states(b, 1), 0);
  vel_node_get_table(child);
  EXPECT_EQ(vel_table_get_size(table), 4u);
  EXPECT_EQ(table->data[1], 0.0f);
  EXPECT_EQ(vel_table_is_utility(vel_node_get_table(u)), 1);
  EXPECT_EQ(vel_table_is_utility(table), 0);
}

}  // namespace
