// Helpers for the expression tests: a domain with nodes built through the
// public builder, and terse constructors for expression trees.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <vector>

#include "host/records.h"
#include "table_generator/table_generator.h"
#include "vel/vel.h"

namespace evaltest {

struct ExpressionDeleter {
  void operator()(vel_expression_t *e) const { vel_expression_delete(e); }
};
// The root of a tree owned by a test.
using Expr = std::unique_ptr<vel_expression_t, ExpressionDeleter>;

vel_expression_t *num(double value);
vel_expression_t *label(const char *text);
vel_expression_t *truth(int value);
vel_expression_t *ref(vel_node_t *node);
// Operator over freshly built arguments; on refusal the arguments are freed
// and the test fails.
vel_expression_t *op(int code, std::initializer_list<vel_expression_t *> arguments);
vel_expression_t *normal();  // Normal(0, 1)

// Bitwise-faithful comparison of doubles: NaN equals NaN, -0 differs from +0.
bool same_double(double a, double b);

class ExpressionTest : public ::testing::Test {
 protected:
  ExpressionTest();
  ~ExpressionTest() override;

  vel_node_t *numbered(const char *name, const std::vector<double> &values);
  vel_node_t *interval(const char *name, const std::vector<double> &bounds);
  vel_node_t *labeled(const char *name, const std::vector<const char *> &labels);
  vel_node_t *boolean(const char *name);
  vel_node_t *continuous(const char *name);
  vel_node_t *utility(const char *name);
  vel_node_t *real_function(const char *name);

  // Through a successful host call: in sanitized position-independent
  // executables, direct access to the thread-local code is misreported.
  void clear_error_code();

  // Compiled domain with a sum equilibrium and these beliefs on `node`.
  void propagate(vel_node_t *node, const std::vector<double> &beliefs);

  vel_domain_t *domain_;
};

}  // namespace evaltest
