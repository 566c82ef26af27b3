// Reading back what a loader built: nodes by name and in order, their names,
// state labels and table entries.
#ifndef VEL_TESTS_LOADED_MODEL_ACCESS_H
#define VEL_TESTS_LOADED_MODEL_ACCESS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "io/model_file.h"

namespace vel_test {

inline vel_node_t *node(const vel::io::LoadedModel &model, const std::string &name) {
  vel_node_t *found = vel_domain_get_node_by_name(model.domain.get(), name.c_str());
  EXPECT_NE(found, nullptr) << name;
  return found;
}

inline std::vector<vel_node_t *> nodes_of(const vel::io::LoadedModel &model) {
  std::vector<vel_node_t *> nodes;
  for (vel_node_t *n = vel_domain_get_first_node(model.domain.get()); n; n = vel_node_get_next(n)) nodes.push_back(n);
  return nodes;
}

// The names of a list of nodes that ends with NULL, or of a vector.
inline std::vector<std::string> names_of(vel_node_t *const *nodes, std::size_t count = SIZE_MAX) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count && nodes && nodes[i]; ++i) names.push_back(vel_node_get_name(nodes[i]));
  return names;
}
inline std::vector<std::string> names_of(const std::vector<vel_node_t *> &nodes) {
  return names_of(nodes.data(), nodes.size());
}

inline std::vector<std::string> labels_of(vel_node_t *node) {
  std::vector<std::string> labels;
  for (std::size_t s = 0; s < vel_node_get_number_of_states(node); ++s) {
    const char *label = vel_node_get_state_label(node, s);
    labels.push_back(label ? label : "?");
  }
  return labels;
}

inline std::vector<float> entries_of(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  const float *data = vel_table_get_data(table);
  return {data, data + vel_table_get_size(table)};
}

}  // namespace vel_test

#endif  // VEL_TESTS_LOADED_MODEL_ACCESS_H
