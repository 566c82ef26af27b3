// Helpers for the expression tests: every node made is a parent of one
// function node, so that expressions over them come from the real parser.
#pragma once

#include <memory>
#include <vector>

#include "generation_test_support.h"

namespace evaltest {

struct ExpressionDeleter {
  void operator()(vel_expression_t *e) const { vel_expression_delete(e); }
};
// The root of a tree owned by a test.
using Expr = std::unique_ptr<vel_expression_t, ExpressionDeleter>;

// Bitwise-faithful comparison of doubles: NaN equals NaN, -0 differs from +0.
bool same_double(double a, double b);

class ExpressionTest : public gentest::GenerationTest {
 protected:
  ExpressionTest() : child_(real_function("Child")) {}

  // Parents of child_; discrete ones get `states` states (booleans have two).
  vel_node_t *parent(const char *name, int category, int kind, int subtype, size_t states = 0);
  vel_node_t *adopt(vel_node_t *node);
  // Discrete parents whose states carry these values or labels.
  vel_node_t *numbered(const char *name, const std::vector<double> &values) {
    return adopt(GenerationTest::numbered(name, values));
  }
  vel_node_t *labeled(const char *name, const std::vector<const char *> &labels) {
    return adopt(GenerationTest::labeled(name, labels));
  }
  vel_node_t *interval(const char *name, size_t states) {
    return parent(name, vel_category_chance, vel_kind_discrete, vel_subtype_interval, states);
  }
  vel_node_t *boolean(const char *name) { return adopt(GenerationTest::boolean(name)); }
  vel_node_t *continuous(const char *name) { return adopt(GenerationTest::continuous(name)); }

  // `text` over the nodes made so far; the test fails on a syntax error.
  Expr parse(const char *text);
  // The same, typed in `mode`, as before every evaluation.
  Expr typed(const char *text, uint32_t mode = 1);

  // Through a successful host call: in sanitized position-independent
  // executables, direct access to the thread-local code is misreported.
  void clear_error_code() { vel_domain_get_log_file(domain()); }

  vel_node_t *child_;  // the node whose parents the expressions refer to
};

}  // namespace evaltest
