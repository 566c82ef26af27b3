#include "eval_test_support.h"

#include <cmath>

namespace evaltest {

bool same_double(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b && std::signbit(a) == std::signbit(b);
}

ExpressionTest::ExpressionTest()
    : domain_(vel_domain_new()),
      child_(vel_domain_new_node(domain_, vel_category_function, vel_kind_stateless,
                                 vel_subtype_none, "Child")) {}

ExpressionTest::~ExpressionTest() { vel_domain_delete(domain_); }

vel_node_t *ExpressionTest::parent(const char *name, int category, int kind, int subtype,
                                   size_t states) {
  vel_node_t *node = vel_domain_new_node(domain_, category, kind, subtype, name);
  EXPECT_NE(node, nullptr) << name;
  if (states) {
    EXPECT_EQ(vel_node_set_number_of_states(node, states), 0) << name;
  }
  EXPECT_EQ(vel_node_add_parent(child_, node), 0) << name;
  return node;
}

vel_node_t *ExpressionTest::numbered(const char *name, const std::vector<double> &values) {
  vel_node_t *node = parent(name, vel_category_chance, vel_kind_discrete, vel_subtype_numbered,
                            values.size());
  for (size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(vel_node_set_state_value(node, i, values[i]), 0);
  return node;
}

vel_node_t *ExpressionTest::labeled(const char *name, const std::vector<const char *> &labels) {
  vel_node_t *node = parent(name, vel_category_chance, vel_kind_discrete, vel_subtype_labeled,
                            labels.size());
  for (size_t i = 0; i < labels.size(); ++i)
    EXPECT_EQ(vel_node_set_state_label(node, i, labels[i]), 0);
  return node;
}

Expr ExpressionTest::parse(const char *text) {
  Expr e(vel_parse_expression(text, child_));
  EXPECT_TRUE(e) << text << ": " << vel_error_message();
  return e;
}

Expr ExpressionTest::typed(const char *text, uint32_t mode) {
  Expr e = parse(text);
  EXPECT_TRUE(e && _vel_assign_types(e.get(), mode)) << text;
  return e;
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
