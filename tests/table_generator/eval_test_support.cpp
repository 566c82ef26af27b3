#include "eval_test_support.h"

#include <cmath>
#include <cstring>

namespace evaltest {

vel_expression_t *num(double value) { return vel_make_number(value); }
vel_expression_t *label(const char *text) { return vel_make_label(text); }
vel_expression_t *truth(int value) { return vel_make_truth(value); }
vel_expression_t *ref(vel_node_t *node) { return vel_make_node_reference(node); }

vel_expression_t *op(int code, std::initializer_list<vel_expression_t *> arguments) {
  std::vector<vel_expression_t *> list(arguments);
  list.push_back(nullptr);
  vel_expression_t *e = vel_make_operator(code, list.data());
  if (!e) {
    ADD_FAILURE() << "operator " << code << " refused, error " << vel_error_code();
    for (vel_expression_t *a : arguments) vel_expression_delete(a);
  }
  return e;
}

vel_expression_t *normal() { return op(vel_op_Normal, {num(0), num(1)}); }

bool same_double(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b && std::signbit(a) == std::signbit(b);
}

ExpressionTest::ExpressionTest() : domain_(vel_domain_new()) {}

ExpressionTest::~ExpressionTest() { vel_domain_delete(domain_); }

namespace {

vel_node_t *discrete(vel_domain_t *domain, int subtype, const char *name, size_t states) {
  vel_node_t *node = vel_domain_new_node(domain, vel_category_chance, vel_kind_discrete,
                                         subtype, name);
  EXPECT_NE(node, nullptr) << name;
  if (node && subtype != vel_subtype_boolean) {
    EXPECT_EQ(vel_node_set_number_of_states(node, states), 0) << name;
  }
  return node;
}

}  // namespace

vel_node_t *ExpressionTest::numbered(const char *name, const std::vector<double> &values) {
  vel_node_t *node = discrete(domain_, vel_subtype_numbered, name, values.size());
  for (size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(vel_node_set_state_value(node, i, values[i]), 0);
  return node;
}

vel_node_t *ExpressionTest::interval(const char *name, const std::vector<double> &bounds) {
  vel_node_t *node = discrete(domain_, vel_subtype_interval, name, bounds.size() - 1);
  for (size_t i = 0; i < bounds.size(); ++i)
    EXPECT_EQ(vel_node_set_state_value(node, i, bounds[i]), 0);
  return node;
}

vel_node_t *ExpressionTest::labeled(const char *name, const std::vector<const char *> &labels) {
  vel_node_t *node = discrete(domain_, vel_subtype_labeled, name, labels.size());
  for (size_t i = 0; i < labels.size(); ++i)
    EXPECT_EQ(vel_node_set_state_label(node, i, labels[i]), 0);
  return node;
}

vel_node_t *ExpressionTest::boolean(const char *name) {
  return discrete(domain_, vel_subtype_boolean, name, 2);
}

vel_node_t *ExpressionTest::continuous(const char *name) {
  return vel_domain_new_node(domain_, vel_category_chance, vel_kind_continuous,
                             vel_subtype_none, name);
}

vel_node_t *ExpressionTest::utility(const char *name) {
  return vel_domain_new_node(domain_, vel_category_utility, vel_kind_stateless,
                             vel_subtype_none, name);
}

vel_node_t *ExpressionTest::real_function(const char *name) {
  return vel_domain_new_node(domain_, vel_category_function, vel_kind_stateless,
                             vel_subtype_none, name);
}

void ExpressionTest::clear_error_code() { vel_domain_get_log_file(domain_); }

void ExpressionTest::propagate(vel_node_t *node, const std::vector<double> &beliefs) {
  ASSERT_EQ(vel_domain_set_compiled(domain_, 1), 0);
  ASSERT_EQ(vel_jt_set_state(vel_domain_get_junction_tree(domain_), vel_equilibrium_sum,
                             vel_evidence_mode_normal, 0),
            0);
  ASSERT_EQ(vel_node_set_beliefs(node, beliefs.data(), beliefs.size()), 0);
}

}  // namespace evaltest
