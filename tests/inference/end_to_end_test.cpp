// Tables and function-node values computed from propagated results, checked
// against values derived by hand, and generated again after the evidence
// changes.
//
// A is numbered {1, 2, 3} with P = (0.2, 0.5, 0.3); B is boolean with
// P(B | A) = (0.1, 0.5, 0.9).  F = probability(A >= 2), G = quantile(A, 0.5),
// V = variance(A) are function nodes; C's table reads F, U's table reads A's
// variance field.  T aggregates N copies of X, uniform on [0, 2), with N in
// {0, 1, 2} at (0.5, 0.25, 0.25): the sum of two copies is triangular on
// [0, 4], so T's intervals [0,1) .. [3,4) get 0.5 + 0.25/2 + 0.25/8,
// 0.25/2 + 0.25 * 3/8, 0.25 * 3/8 and 0.25/8.

#include "table_generator/generation_test_support.h"

namespace {

using Network = gentest::DomainBuilder;

class EndToEnd : public ::testing::Test {
 protected:
  void SetUp() override {
    a = n.add("A", 3, {}, {0.2, 0.5, 0.3}, vel_category_chance, vel_subtype_numbered);
    for (int i = 0; i < 3; ++i) vel_node_set_state_value(a, i, i + 1);
    b = n.add("B", 2, {a}, {0.9, 0.1, 0.5, 0.5, 0.1, 0.9}, vel_category_chance, vel_subtype_boolean);
    f = function("F", "probability(A >= 2)");
    g = function("G", "quantile(A, 0.5)");
    v = function("V", "variance(A)");
    c = n.add("C", 2, {f});
    Network::model(c, {}, {"Distribution(1 - F, F)"});
    u = n.add("U", 0, {a}, {}, vel_category_utility, vel_subtype_none);
    Network::model(u, {}, {"10 * variance(A)"});
    count = n.add("N", 3, {}, {0.5, 0.25, 0.25}, vel_category_chance, vel_subtype_numbered);
    for (int i = 0; i < 3; ++i) vel_node_set_state_value(count, i, i);
    x = n.add("X", 2, {}, {0.5, 0.5}, vel_category_chance, vel_subtype_interval);
    t = n.add("T", 4, {count, x}, {}, vel_category_function, vel_subtype_interval);
    for (int i = 0; i < 3; ++i) vel_node_set_state_value(x, i, i);
    for (int i = 0; i < 5; ++i) vel_node_set_state_value(t, i, i);
    Network::model(t, {}, {"aggregate(N, X)"});
  }

  vel_node_t *function(const char *name, const char *expression) {
    vel_node_t *node = n.add(name, 0, {a}, {}, vel_category_function, vel_subtype_none);
    Network::model(node, {}, {expression});
    return node;
  }

  // The checks of one state of evidence: p(A) as the beliefs should be.
  void expect_results(const std::vector<double> &p, const char *when) {
    SCOPED_TRACE(when);
    const double mean = p[0] + 2 * p[1] + 3 * p[2];
    const double variance = p[0] + 4 * p[1] + 9 * p[2] - mean * mean;
    EXPECT_NEAR(vel_node_get_value(f), p[1] + p[2], 1e-7);
    EXPECT_EQ(vel_node_get_value(g), p[0] >= 0.5 ? 1 : p[0] + p[1] >= 0.5 ? 2 : 3);
    EXPECT_NEAR(vel_node_get_value(v), variance, 1e-6);
    const std::vector<double> table_c = Network::table(c);
    EXPECT_NEAR(table_c[1], p[1] + p[2], 1e-7);
    EXPECT_NEAR(table_c[0] + table_c[1], 1.0, 1e-7);
    for (double entry : Network::table(u)) EXPECT_NEAR(entry, 10 * variance, 1e-5);
    const std::vector<double> table_t = Network::table(t);
    const double row[] = {0.65625, 0.21875, 0.09375, 0.03125};
    for (std::size_t i = 0; i < table_t.size(); ++i) EXPECT_NEAR(table_t[i], row[i % 4], 1e-6);
  }

  Network n;
  vel_node_t *a, *b, *f, *g, *v, *c, *u, *count, *x, *t;
};

TEST_F(EndToEnd, TablesAndFunctionValuesFromPropagatedResults) {
  ASSERT_EQ(vel_domain_compile(n.domain()), 0) << vel_error_message();
  // Compilation generated C from the first propagation and propagated again
  // with it: C's beliefs are its table's row.
  EXPECT_NEAR(vel_node_get_belief(c, 1), 0.8, 1e-7);
  EXPECT_NEAR(vel_node_get_expected_utility(u, 0), 4.9, 1e-5);
  EXPECT_EQ(vel_model_get_tables_outdated(vel_node_get_model(c)), 1) << "propagation outdates what read results";
  ASSERT_EQ(vel_domain_generate_tables(n.domain()), 0);
  expect_results({0.2, 0.5, 0.3}, "no evidence");

  ASSERT_EQ(vel_node_enter_evidence(b, 1), 0);
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_sum), 0);
  EXPECT_EQ(vel_model_get_tables_outdated(vel_node_get_model(u)), 1);
  EXPECT_NEAR(vel_domain_get_probability_of_evidence(n.domain()), 0.54, 1e-7);
  EXPECT_NEAR(vel_node_get_mean(a), (0.02 + 0.5 + 0.81) / 0.54, 1e-6);
  ASSERT_EQ(vel_domain_generate_tables(n.domain()), 0);
  expect_results({0.02 / 0.54, 0.25 / 0.54, 0.27 / 0.54}, "B = true");
}

}  // namespace
