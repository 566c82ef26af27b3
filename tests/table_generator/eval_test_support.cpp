#include "eval_test_support.h"

#include <cmath>

namespace evaltest {

bool same_double(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b && std::signbit(a) == std::signbit(b);
}

vel_node_t *ExpressionTest::adopt(vel_node_t *node) {
  EXPECT_EQ(vel_node_add_parent(child_, node), 0) << vel_node_get_name(node);
  return node;
}

vel_node_t *ExpressionTest::parent(const char *name, int category, int kind, int subtype, size_t states) {
  vel_node_t *node = vel_domain_new_node(domain(), category, kind, subtype, name);
  EXPECT_NE(node, nullptr) << name;
  if (states) {
    EXPECT_EQ(vel_node_set_number_of_states(node, states), 0) << name;
  }
  return adopt(node);
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

}  // namespace evaltest
