#include "generation_test_support.h"

#include <cstdlib>

namespace gentest {

GenerationTest::~GenerationTest() {
  // The domain, deleted after this, must not write to a closed log.
  vel_domain_set_log_file(domain(), nullptr);
  close_log();
}

void GenerationTest::close_log() {
  if (log_file_) fclose(log_file_);
  free(log_buffer_);
  log_file_ = nullptr;
  log_buffer_ = nullptr;
  log_size_ = 0;
}

void GenerationTest::use_log() {
  close_log();
  log_file_ = open_memstream(&log_buffer_, &log_size_);
  ASSERT_NE(log_file_, nullptr);
  vel_domain_set_log_file(domain(), log_file_);
}

void GenerationTest::use_failing_log() {
  close_log();
  log_file_ = fopen("/dev/full", "w");
  ASSERT_NE(log_file_, nullptr);
  setvbuf(log_file_, nullptr, _IONBF, 0);
  vel_domain_set_log_file(domain(), log_file_);
}

std::string GenerationTest::log() {
  if (!log_file_) return "";
  fflush(log_file_);
  if (!log_buffer_) return "";
  return std::string(log_buffer_, log_size_);
}

namespace {

vel_node_t *discrete(vel_domain_t *domain, int category, int subtype, const char *name,
                     size_t states) {
  vel_node_t *node = vel_domain_new_node(domain, category, vel_kind_discrete, subtype, name);
  EXPECT_NE(node, nullptr) << name;
  if (node && subtype != vel_subtype_boolean) {
    EXPECT_EQ(vel_node_set_number_of_states(node, states), 0) << name;
  }
  return node;
}

}  // namespace

vel_node_t *DomainBuilder::labeled(const char *name, const std::vector<const char *> &labels,
                                    int category) {
  vel_node_t *node = discrete(domain(), category, vel_subtype_labeled, name, labels.size());
  for (size_t i = 0; i < labels.size(); ++i) EXPECT_EQ(vel_node_set_state_label(node, i, labels[i]), 0);
  return node;
}

vel_node_t *DomainBuilder::boolean(const char *name, int category) {
  return discrete(domain(), category, vel_subtype_boolean, name, 2);
}

vel_node_t *DomainBuilder::numbered(const char *name, const std::vector<double> &values,
                                     int category) {
  vel_node_t *node = discrete(domain(), category, vel_subtype_numbered, name, values.size());
  for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(vel_node_set_state_value(node, i, values[i]), 0);
  return node;
}

vel_node_t *DomainBuilder::interval(const char *name, const std::vector<double> &bounds,
                                     int category) {
  vel_node_t *node = discrete(domain(), category, vel_subtype_interval, name, bounds.size() - 1);
  for (size_t i = 0; i < bounds.size(); ++i) EXPECT_EQ(vel_node_set_state_value(node, i, bounds[i]), 0);
  return node;
}

vel_node_t *DomainBuilder::continuous(const char *name, double mean, double variance) {
  vel_node_t *node =
      vel_domain_new_node(domain(), vel_category_chance, vel_kind_continuous, vel_subtype_none, name);
  EXPECT_EQ(vel_node_set_mean_and_variance(node, mean, variance), 0) << name;
  return node;
}

vel_node_t *DomainBuilder::utility(const char *name) {
  return vel_domain_new_node(domain(), vel_category_utility, vel_kind_stateless, vel_subtype_none,
                             name);
}

vel_node_t *DomainBuilder::real_function(const char *name) {
  return vel_domain_new_node(domain(), vel_category_function, vel_kind_stateless,
                             vel_subtype_none, name);
}

void DomainBuilder::parents(vel_node_t *node, const std::vector<vel_node_t *> &parents) {
  for (vel_node_t *p : parents) EXPECT_EQ(vel_node_add_parent(node, p), 0);
}

vel_model_t *DomainBuilder::model(vel_node_t *node, std::vector<vel_node_t *> model_nodes,
                                   const std::vector<const char *> &texts) {
  model_nodes.push_back(nullptr);
  vel_model_t *model = vel_node_new_model(node, model_nodes.data());
  EXPECT_NE(model, nullptr);
  std::vector<vel_expression_t *> expressions;
  for (const char *text : texts) {
    vel_expression_t *e = text ? vel_parse_expression(text, node) : nullptr;
    EXPECT_TRUE(e || !text) << text << ": " << vel_error_message();
    expressions.push_back(e);
  }
  EXPECT_EQ(vel_model_set_expressions(model, expressions.data(), expressions.size()), 0);
  return model;
}

std::vector<double> DomainBuilder::table(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  const float *data = vel_table_get_data(table);
  return std::vector<double>(data, data + vel_table_get_size(table));
}

vel_node_t *DomainBuilder::add(const char *name, size_t states, const std::vector<vel_node_t *> &parents,
                               const std::vector<double> &table, int category, int subtype) {
  vel_node_t *node = subtype == vel_subtype_none
                         ? vel_domain_new_node(domain(), category, vel_kind_stateless, vel_subtype_none, name)
                         : discrete(domain(), category, subtype, name, states);
  for (size_t i = 0; subtype == vel_subtype_labeled && i < states; ++i)
    vel_node_set_state_label(node, i, ("s" + std::to_string(i)).c_str());
  this->parents(node, parents);
  if (!table.empty()) {
    EXPECT_EQ(vel_node_set_table_data(node, table.data(), table.size()), 0) << vel_error_message();
  }
  return node;
}

std::vector<double> DomainBuilder::beliefs(const vel_node_t *node) {
  std::vector<double> result;
  for (size_t i = 0; i < vel_node_get_number_of_states(node); ++i) result.push_back(vel_node_get_belief(node, i));
  return result;
}

void GenerationTest::propagate(vel_node_t *node, const std::vector<double> &beliefs) {
  vel_domain_set_compiled(domain(), 1);
  vel_jt_set_state(vel_domain_get_junction_tree(domain()), vel_equilibrium_sum,
                   vel_evidence_mode_normal, 0);
  if (node) {
    EXPECT_EQ(vel_node_set_beliefs(node, beliefs.data(), beliefs.size()), 0);
  }
}

}  // namespace gentest
