// Domains, nodes, states, parents, models and tables built through the
// public builder: what a new record holds and what the builder refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
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

  vel_domain_t *domain_ = nullptr;
};

TEST_F(BuilderTest, NewNodeFieldsAndList) {
  vel_node_t *a = discrete("A", vel_subtype_boolean, 2);
  vel_node_t *u = vel_domain_new_node(domain_, vel_category_utility, vel_kind_stateless,
                                      vel_subtype_none, "U");
  vel_node_t *c = vel_domain_new_node(domain_, vel_category_chance, vel_kind_continuous,
                                      vel_subtype_none, "Level");
  ASSERT_TRUE(a && u && c);
  EXPECT_EQ(vel_domain_get_first_node(domain_), a);
  EXPECT_EQ(vel_node_get_next(a), u);
  EXPECT_EQ(vel_node_get_next(u), c);
  EXPECT_EQ(vel_node_get_next(c), nullptr);
  EXPECT_EQ(c->index, 2u);
  EXPECT_EQ(vel_domain_get_node_by_name(domain_, "U"), u);
  EXPECT_EQ(vel_domain_get_node_by_name(domain_, "Nothing"), nullptr);

  EXPECT_EQ(a->state_index, -1);
  EXPECT_EQ(a->function_status[0], -1);
  EXPECT_EQ(a->function_status[1], -1);
  EXPECT_EQ(a->evidence.state, -1);
  EXPECT_EQ(a->configured_state, -1);
  EXPECT_EQ(a->junction_tree, vel_domain_get_junction_tree(domain_));
  EXPECT_EQ(a->junction_tree->domain, domain_);
  EXPECT_EQ(a->junction_tree->equilibrium, vel_equilibrium_none);
  EXPECT_EQ(vel_node_get_number_of_states(a), 2u);
  EXPECT_STREQ(vel_node_get_state_label(a, 0), "false");
  EXPECT_STREQ(vel_node_get_state_label(a, 1), "true");
  EXPECT_EQ(vel_node_get_parents(a)[0], nullptr);
  EXPECT_EQ(vel_node_get_children(a)[0], nullptr);
}

TEST_F(BuilderTest, NewNodeRefusals) {
  discrete("Taken", vel_subtype_labeled, 2);
  struct Case {
    int category, kind, subtype;
    const char *name;
  } cases[] = {
      {vel_category_chance, 0, vel_subtype_labeled, "1abc"},
      {vel_category_chance, 0, vel_subtype_labeled, "a-b"},
      {vel_category_chance, 0, vel_subtype_labeled, ""},
      {vel_category_chance, 0, vel_subtype_labeled, "true"},
      {vel_category_chance, 0, vel_subtype_labeled, "false"},
      {vel_category_chance, 0, vel_subtype_labeled, "Taken"},
      {vel_category_chance, 0, vel_subtype_none, "NoSubtype"},
      {vel_category_chance, 0, 34, "BadSubtype"},
      {vel_category_utility, 0, vel_subtype_labeled, "DiscreteUtility"},
      {vel_category_function, 1, vel_subtype_none, "ContinuousFunction"},
      {vel_category_decision, 1, vel_subtype_none, "ContinuousDecision"},
      {vel_category_chance, 1, vel_subtype_numbered, "ContinuousWithSubtype"},
      {vel_category_chance, -1, vel_subtype_none, "StatelessChance"},
      {vel_category_decision, -1, vel_subtype_none, "StatelessDecision"},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(vel_domain_new_node(domain_, c.category, c.kind, c.subtype, c.name), nullptr)
        << c.name;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << c.name;
  }
  EXPECT_EQ(vel_domain_new_node(nullptr, 1, 0, vel_subtype_labeled, "X"), nullptr);
  EXPECT_EQ(vel_domain_new_node(domain_, 1, 0, vel_subtype_labeled, nullptr), nullptr);
  // An unusual category is a chance node, stored as given.
  vel_node_t *odd = vel_domain_new_node(domain_, 42, 0, vel_subtype_labeled, "_odd_1");
  ASSERT_NE(odd, nullptr);
  EXPECT_EQ(vel_node_get_category(odd), 42);
}

TEST_F(BuilderTest, StatesLabelsAndValues) {
  vel_node_t *l = discrete("L", vel_subtype_labeled, 3);
  vel_node_t *n = discrete("N", vel_subtype_numbered, 2);
  vel_node_t *i = discrete("I", vel_subtype_interval, 2);
  vel_node_t *b = discrete("B", vel_subtype_boolean, 2);
  EXPECT_STREQ(vel_node_get_state_label(l, 2), "");
  EXPECT_EQ(vel_node_set_state_label(l, 1, "mid"), 0);
  EXPECT_STREQ(vel_node_get_state_label(l, 1), "mid");
  EXPECT_EQ(vel_node_set_state_value(n, 1, 7.5), 0);
  EXPECT_EQ(vel_node_get_state_value(n, 1), 7.5);
  EXPECT_EQ(vel_node_get_state_value(n, 0), 0.0);
  EXPECT_EQ(vel_node_set_state_value(i, 2, vel_infinity), 0);
  EXPECT_EQ(i->state_values[2], vel_infinity);

  struct Refusal {
    const char *what;
    int code;
  } refusals[] = {
      {"boolean count", vel_node_set_number_of_states(b, 3)},
      {"label out of range", vel_node_set_state_label(l, 3, "x")},
      {"label on numbered", vel_node_set_state_label(n, 0, "x")},
      {"label on boolean", vel_node_set_state_label(b, 0, "no")},
      {"NULL label", vel_node_set_state_label(l, 0, nullptr)},
      {"numbered index = count", vel_node_set_state_value(n, 2, 1.0)},
      {"interval index > count", vel_node_set_state_value(i, 3, 1.0)},
      {"value on labeled", vel_node_set_state_value(l, 0, 1.0)},
      {"NULL node", vel_node_set_number_of_states(nullptr, 2)},
  };
  for (const Refusal &r : refusals) EXPECT_EQ(r.code, vel_error_usage) << r.what;
  EXPECT_EQ(vel_node_get_state_label(l, 3), nullptr);
  EXPECT_TRUE(std::isnan(vel_node_get_state_value(n, 2)));
  EXPECT_STREQ(vel_node_get_state_label(b, 0), "false");
}

TEST_F(BuilderTest, AddParentRefusals) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *b = discrete("B", vel_subtype_labeled, 2);
  vel_node_t *c = discrete("C", vel_subtype_labeled, 2);
  vel_domain_t *other = vel_domain_new();
  vel_node_t *x = vel_domain_new_node(other, 1, 0, vel_subtype_boolean, "X");
  ASSERT_EQ(vel_node_add_parent(b, a), 0);
  ASSERT_EQ(vel_node_add_parent(c, b), 0);

  struct Case {
    const char *what;
    vel_node_t *node, *parent;
  } cases[] = {
      {"NULL parent", a, nullptr}, {"NULL node", nullptr, a}, {"other domain", a, x},
      {"self", a, a},              {"duplicate", b, a},       {"cycle", a, c},
      {"two-cycle", a, b},
  };
  for (const Case &k : cases) {
    EXPECT_EQ(vel_node_add_parent(k.node, k.parent), vel_error_usage) << k.what;
    EXPECT_EQ(vel_error_code(), vel_error_usage) << k.what;
  }
  vel_node_add_parent(a, c);
  EXPECT_NE(std::string(vel_error_message()).find("C as a parent of A"), std::string::npos)
      << vel_error_message();
  // The refusals left the lists as they were.
  EXPECT_EQ(vel_node_get_parents(a)[0], nullptr);
  EXPECT_EQ(vel_node_get_parents(b)[0], a);
  EXPECT_EQ(vel_node_get_parents(b)[1], nullptr);
  EXPECT_EQ(vel_node_get_children(a)[0], b);
  EXPECT_EQ(vel_node_get_children(a)[1], nullptr);
  ASSERT_EQ(vel_node_add_parent(c, a), 0);
  EXPECT_EQ(vel_node_get_children(a)[1], c);
  EXPECT_EQ(vel_node_get_parents(c)[1], a);
  vel_domain_delete(other);
}

TEST_F(BuilderTest, ModelCreationAndRefusals) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *b = discrete("B", vel_subtype_numbered, 3);
  vel_node_t *level = vel_domain_new_node(domain_, 1, 1, vel_subtype_none, "Level");
  vel_node_t *unrelated = discrete("Z", vel_subtype_labeled, 2);
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  for (vel_node_t *p : {a, b, level}) ASSERT_EQ(vel_node_add_parent(child, p), 0);

  vel_node_t *const ok[] = {b, a, nullptr};
  vel_model_t *model = vel_node_new_model(child, ok);
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(vel_model_get_size(model), 6u);
  EXPECT_EQ(model->expressions, nullptr);
  EXPECT_EQ(model->tables_outdated, 1);
  EXPECT_EQ(model->samples_per_interval, 25u);
  EXPECT_EQ(vel_model_get_nodes(model)[0], b);
  EXPECT_EQ(vel_node_get_model(child), model);

  vel_node_t *const not_parent[] = {unrelated, nullptr};
  vel_node_t *const continuous[] = {level, nullptr};
  vel_node_t *const twice[] = {a, a, nullptr};
  for (vel_node_t *const *list : {not_parent, continuous, twice}) {
    EXPECT_EQ(vel_node_new_model(child, list), nullptr);
    EXPECT_EQ(vel_error_code(), vel_error_usage);
  }
  EXPECT_EQ(vel_node_new_model(level, nullptr), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_node_get_model(child), model);  // refusals keep the old model
  EXPECT_EQ(vel_model_set_samples_per_interval(model, 0), vel_error_usage);

  // No model nodes: one expression.
  vel_model_t *single = vel_node_new_model(child, nullptr);
  ASSERT_NE(single, nullptr);
  EXPECT_EQ(vel_model_get_size(single), 1u);
  EXPECT_EQ(vel_node_delete_model(child), 0);
  EXPECT_EQ(vel_node_get_model(child), nullptr);
  EXPECT_EQ(vel_node_delete_model(child), vel_error_usage);
}

TEST_F(BuilderTest, ModelSizeOverflowIsRefused) {
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  std::vector<vel_node_t *> nodes;
  for (int k = 0; k < 8; ++k) {
    std::string name = "P" + std::to_string(k);
    nodes.push_back(discrete(name.c_str(), vel_subtype_labeled, 256));
    ASSERT_EQ(vel_node_add_parent(child, nodes.back()), 0);
  }
  nodes.push_back(nullptr);
  EXPECT_EQ(vel_node_new_model(child, nodes.data()), nullptr);  // 2^64 configurations
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

TEST_F(BuilderTest, StateCountOfModelNode) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  ASSERT_EQ(vel_node_add_parent(child, a), 0);
  vel_node_t *const nodes[] = {a, nullptr};
  vel_model_t *model = vel_node_new_model(child, nodes);
  // Unspecified: the size follows the new count.
  ASSERT_EQ(vel_node_set_number_of_states(a, 4), 0);
  EXPECT_EQ(vel_model_get_size(model), 4u);
  ASSERT_EQ(vel_model_set_expression(model, 3, vel_make_label("x")), 0);
  EXPECT_EQ(vel_node_set_number_of_states(a, 5), vel_error_usage);
  EXPECT_EQ(vel_node_get_number_of_states(a), 4u);
  EXPECT_EQ(vel_model_get_size(model), 4u);
}

TEST_F(BuilderTest, ModelExpressionsOwnership) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 3);
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  ASSERT_EQ(vel_node_add_parent(child, a), 0);
  vel_node_t *const nodes[] = {a, nullptr};
  vel_model_t *model = vel_node_new_model(child, nodes);
  model->tables_outdated = 0;

  vel_expression_t *x = vel_make_label("x");
  ASSERT_EQ(vel_model_set_expression(model, 1, x), 0);
  EXPECT_EQ(x->owner, model);
  EXPECT_EQ(model->tables_outdated, 1);
  EXPECT_EQ(vel_model_get_expression(model, 0), nullptr);
  EXPECT_EQ(vel_model_get_expression(model, 1), x);
  vel_expression_t *refused = vel_make_label("refused");
  EXPECT_EQ(vel_model_set_expression(model, 3, refused), vel_error_usage) << "index out of range";
  EXPECT_EQ(vel_expression_delete(refused), 0) << "a refused expression stays the caller's";
  EXPECT_EQ(vel_model_set_expression(model, 2, x), vel_error_usage) << "owned already";
  EXPECT_EQ(vel_expression_delete(x), vel_error_usage);

  vel_expression_t *y = vel_make_label("y");
  vel_expression_t *z = vel_make_label("z");
  vel_expression_t *const short_list[] = {y, z};
  EXPECT_EQ(vel_model_set_expressions(model, short_list, 2), vel_error_usage);
  vel_expression_t *const repeated[] = {y, nullptr, y};
  EXPECT_EQ(vel_model_set_expressions(model, repeated, 3), vel_error_usage);
  vel_expression_t *const with_owned[] = {y, x, z};
  EXPECT_EQ(vel_model_set_expressions(model, with_owned, 3), vel_error_usage);
  EXPECT_EQ(y->owner, nullptr);
  EXPECT_EQ(vel_model_get_expression(model, 1), x);

  vel_expression_t *const full[] = {y, nullptr, z};
  model->tables_outdated = 0;
  ASSERT_EQ(vel_model_set_expressions(model, full, 3), 0);  // frees x
  EXPECT_EQ(model->tables_outdated, 1);
  EXPECT_EQ(vel_model_get_expression(model, 0), y);
  EXPECT_EQ(vel_model_get_expression(model, 1), nullptr);
  EXPECT_EQ(z->owner, model);
  ASSERT_EQ(vel_model_set_expressions(model, nullptr, 0), 0);
  EXPECT_EQ(model->expressions, nullptr);
  ASSERT_EQ(vel_model_set_expression(model, 0, vel_make_number(1)), 0);
  // Deleting the domain frees the model's expressions (checked by ASan).
}

TEST_F(BuilderTest, TablesFollowParentsAndStates) {
  vel_node_t *a = discrete("A", vel_subtype_labeled, 2);
  vel_node_t *level = vel_domain_new_node(domain_, 1, 1, vel_subtype_none, "Level");
  vel_node_t *b = discrete("B", vel_subtype_numbered, 3);
  vel_node_t *child = discrete("Child", vel_subtype_boolean, 2);
  vel_node_t *u = vel_domain_new_node(domain_, vel_category_utility, -1, 0, "U");
  vel_node_t *f = vel_domain_new_node(domain_, vel_category_function, -1, 0, "F");
  for (vel_node_t *p : {a, level}) ASSERT_EQ(vel_node_add_parent(child, p), 0);
  ASSERT_EQ(vel_node_add_parent(u, child), 0);

  vel_table_t *table = vel_node_get_table(child);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->node_count, 2u);
  EXPECT_EQ(table->nodes[0], a);
  EXPECT_EQ(table->nodes[1], child);
  EXPECT_EQ(table->nodes[2], nullptr);
  EXPECT_EQ(vel_table_get_size(table), 4u);
  EXPECT_EQ(table->is_utility_table, 0);
  EXPECT_EQ(table->domain, domain_);
  EXPECT_EQ(table->node, child);
  const double entries[] = {0.25, 0.75, 1, 0};
  ASSERT_EQ(vel_node_set_table_data(child, entries, 4), 0);
  EXPECT_EQ(table->data[1], 0.75f);
  EXPECT_EQ(vel_node_get_table(child), table);
  EXPECT_EQ(table->data[1], 0.75f) << "unchanged table keeps its data";

  ASSERT_EQ(vel_node_add_parent(child, b), 0);
  EXPECT_EQ(vel_node_get_table(child), table);
  EXPECT_EQ(table->node_count, 3u);
  EXPECT_EQ(table->nodes[1], b);
  EXPECT_EQ(vel_table_get_size(table), 12u);
  ASSERT_EQ(vel_node_set_number_of_states(b, 1), 0);
  vel_node_get_table(child);
  EXPECT_EQ(vel_table_get_size(table), 4u);
  EXPECT_EQ(table->data[1], 0.0f) << "rebuilt tables start zero-filled";

  vel_table_t *utility = vel_node_get_table(u);
  ASSERT_NE(utility, nullptr);
  EXPECT_EQ(utility->node_count, 1u);
  EXPECT_EQ(utility->is_utility_table, 1);
  EXPECT_EQ(vel_table_get_size(utility), 2u);

  EXPECT_EQ(vel_node_get_table(level), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  EXPECT_EQ(vel_node_get_table(f), nullptr);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
  const double wrong[] = {1, 2, 3};
  EXPECT_EQ(vel_node_set_table_data(child, wrong, 3), vel_error_usage);
  const double huge[] = {1e300, 0, 0, 0};
  EXPECT_EQ(vel_node_set_table_data(child, huge, 4), vel_error_usage);
}

TEST_F(BuilderTest, TableSizeOverflowIsOutOfMemory) {
  vel_node_t *child = discrete("Child", vel_subtype_labeled, 2);
  for (int k = 0; k < 8; ++k) {
    std::string name = "P" + std::to_string(k);
    ASSERT_EQ(vel_node_add_parent(child, discrete(name.c_str(), vel_subtype_labeled, 256)), 0);
  }
  EXPECT_EQ(vel_node_get_table(child), nullptr);  // 2^65 entries
  EXPECT_EQ(vel_error_code(), vel_error_out_of_memory);
}

}  // namespace
