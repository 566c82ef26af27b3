// A domain built through the public builder for the inference tests: nodes
// with literal tables or models, and their results read back.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vel/vel.h"

namespace inftest {

class Network {
 public:
  Network() : domain(vel_domain_new()) {}
  ~Network() { vel_domain_delete(domain); }
  Network(const Network &) = delete;
  Network &operator=(const Network &) = delete;

  // A discrete node (labeled unless `subtype` says otherwise) with `states`
  // states, these parents and, when `table` is not empty, this table.
  vel_node_t *add(const char *name, std::size_t states, const std::vector<vel_node_t *> &parents = {},
                  const std::vector<double> &table = {}, int category = vel_category_chance,
                  int subtype = vel_subtype_labeled) {
    vel_node_t *node = vel_domain_new_node(domain, category, vel_kind_discrete, subtype, name);
    EXPECT_NE(node, nullptr) << vel_error_message();
    if (subtype != vel_subtype_boolean) {
      EXPECT_EQ(vel_node_set_number_of_states(node, states), 0);
    }
    for (std::size_t i = 0; subtype == vel_subtype_labeled && i < states; ++i)
      vel_node_set_state_label(node, i, ("s" + std::to_string(i)).c_str());
    for (vel_node_t *parent : parents) EXPECT_EQ(vel_node_add_parent(node, parent), 0) << vel_error_message();
    if (!table.empty()) {
      EXPECT_EQ(vel_node_set_table_data(node, table.data(), table.size()), 0) << vel_error_message();
    }
    return node;
  }
  // A node without states (utility, or real-valued function).
  vel_node_t *stateless(const char *name, const std::vector<vel_node_t *> &parents,
                        const std::vector<double> &table = {}, int category = vel_category_utility) {
    vel_node_t *node = vel_domain_new_node(domain, category, vel_kind_stateless, vel_subtype_none, name);
    for (vel_node_t *parent : parents) EXPECT_EQ(vel_node_add_parent(node, parent), 0) << vel_error_message();
    if (!table.empty()) {
      EXPECT_EQ(vel_node_set_table_data(node, table.data(), table.size()), 0) << vel_error_message();
    }
    return node;
  }
  // A model with one parsed expression per configuration of `model_nodes`.
  static void model(vel_node_t *node, const std::vector<vel_node_t *> &model_nodes,
                    const std::vector<const char *> &expressions) {
    std::vector<vel_node_t *> list = model_nodes;
    list.push_back(nullptr);
    vel_model_t *model = vel_node_new_model(node, list.data());
    ASSERT_NE(model, nullptr) << vel_error_message();
    for (std::size_t i = 0; i < expressions.size(); ++i) {
      vel_expression_t *e = vel_parse_expression(expressions[i], node);
      ASSERT_NE(e, nullptr) << expressions[i] << ": " << vel_error_message();
      ASSERT_EQ(vel_model_set_expression(model, i, e), 0);
    }
  }
  static std::vector<double> beliefs(const vel_node_t *node) {
    std::vector<double> result;
    for (std::size_t i = 0; i < vel_node_get_number_of_states(node); ++i) result.push_back(vel_node_get_belief(node, i));
    return result;
  }
  static std::vector<float> table(vel_node_t *node) {
    vel_table_t *table = vel_node_get_table(node);
    const float *data = vel_table_get_data(table);
    return std::vector<float>(data, data + vel_table_get_size(table));
  }

  vel_domain_t *domain;
};

}  // namespace inftest
