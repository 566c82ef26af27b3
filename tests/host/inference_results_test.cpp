// Results of inference set through the public API and read back the way the
// table generator reads them: beliefs, quantiles, means, variances, expected
// utilities, configured values and function-node values.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "common/error.h"
#include "host/host.h"
#include "vel/vel.h"

namespace {

const double inf = vel_infinity;

class InferenceResultsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    domain_ = vel_domain_new();
    vel_domain_set_compiled(domain_, 1);
    vel_jt_set_state(vel_domain_get_junction_tree(domain_), vel_equilibrium_sum,
                     vel_evidence_mode_normal, 0);
  }
  void TearDown() override { vel_domain_delete(domain_); }

  vel_node_t *node(int subtype, const std::vector<double> &values, const std::vector<double> &beliefs) {
    std::string name = "N" + std::to_string(count_++);
    vel_node_t *n = vel_domain_new_node(domain_, 1, 0, subtype, name.c_str());
    if (subtype != vel_subtype_boolean) vel_node_set_number_of_states(n, beliefs.size());
    for (size_t i = 0; i < values.size(); ++i) vel_node_set_state_value(n, i, values[i]);
    EXPECT_EQ(vel_node_set_beliefs(n, beliefs.data(), beliefs.size()), 0);
    return n;
  }

  vel_domain_t *domain_ = nullptr;
  int count_ = 0;
};

TEST_F(InferenceResultsTest, QuantilePerSubtype) {
  vel_node_t *numbered = node(vel_subtype_numbered, {10, 20, 30}, {0.25, 0.5, 0.25});
  vel_node_t *scaled = node(vel_subtype_numbered, {10, 20, 30}, {1, 2, 1});
  vel_node_t *gap = node(vel_subtype_numbered, {10, 20, 30}, {0, 0.5, 0.5});
  vel_node_t *interval = node(vel_subtype_interval, {0, 10, 20, 40}, {0.25, 0.5, 0.25});
  vel_node_t *open = node(vel_subtype_interval, {-inf, 0, inf}, {0.5, 0.5});
  vel_node_t *labeled = node(vel_subtype_labeled, {}, {0.25, 0.25, 0.5});
  vel_node_t *boolean = node(vel_subtype_boolean, {}, {0.75, 0.25});
  struct Case { vel_node_t *node; double p, quantile; } cases[] = {
      {numbered, 0, 10},   {numbered, 0.25, 10}, {numbered, 0.26, 20}, {numbered, 0.75, 20},
      {numbered, 0.76, 30}, {numbered, 1, 30},   {scaled, 0.26, 20},   {scaled, 1, 30},
      {gap, 0, 20},        {gap, 0.5, 20},       {gap, 0.51, 30},      {interval, 0, 0},
      {interval, 0.125, 5}, {interval, 0.5, 15}, {interval, 0.875, 30}, {interval, 1, 40},
      {open, 0.25, 0},     {open, 0.75, 0},      {labeled, 0.5, 1},    {labeled, 0.51, 2},
      {boolean, 0.75, 0},  {boolean, 0.8, 1},
  };
  for (const Case &c : cases) {
    _vel_error_code = 99;
    EXPECT_DOUBLE_EQ(vel_node_get_quantile(c.node, c.p), c.quantile) << "case " << (&c - cases);
    EXPECT_EQ(vel_error_code(), 0) << "case " << (&c - cases);
  }
}

TEST_F(InferenceResultsTest, QuantileRefusals) {
  vel_node_t *numbered = node(vel_subtype_numbered, {1, 2}, {0.5, 0.5});
  vel_node_t *zero = node(vel_subtype_numbered, {1, 2}, {0, 0});
  vel_node_t *level = vel_domain_new_node(domain_, 1, 1, 0, "Level");
  // The domain's inference state is tested with the values from inference.
  struct Case { const char *what; vel_node_t *node; double p; int code; } cases[] = {
      {"p below 0", numbered, -0.1, vel_error_usage},
      {"p above 1", numbered, 1.1, vel_error_usage},
      {"p NaN", numbered, std::nan(""), vel_error_usage},
      {"continuous node", level, 0.5, vel_error_usage},
      {"no belief mass", zero, 0.5, vel_error_computation},
  };
  for (const Case &c : cases) {
    vel_node_get_quantile(c.node, c.p);
    EXPECT_EQ(vel_error_code(), c.code) << c.what;
  }
  EXPECT_EQ(vel_node_get_quantile(nullptr, 0.5), -1.0);
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

// Setters refuse what inference could not have produced; a new state count
// resizes the beliefs and drops an evidence state that no longer exists.
TEST_F(InferenceResultsTest, SettersAndReaders) {
  vel_node_t *n = node(vel_subtype_labeled, {}, {0.25, 0.75});
  vel_node_t *level = vel_domain_new_node(domain_, 1, 1, 0, "Level");
  vel_node_t *cost = vel_domain_new_node(domain_, vel_category_utility, -1, 0, "Cost");
  vel_node_t *numbered = node(vel_subtype_numbered, {10, 20, 30}, {1, 2, 1});
  vel_node_t *f = vel_domain_new_node(domain_, vel_category_function, 0, vel_subtype_numbered, "F");
  const double negative[] = {-0.1, 1.1};
  const double three[] = {0.2, 0.3, 0.5};
  struct Refusal { const char *what; int code; } refusals[] = {
      {"negative belief", vel_node_set_beliefs(n, negative, 2)},
      {"belief count", vel_node_set_beliefs(n, three, 3)},
      {"evidence state", vel_node_set_evidence(n, 2)},
      {"negative variance", vel_node_set_mean_and_variance(level, 0, -1)},
      {"utility beyond single precision", vel_node_set_expected_utility(cost, 1e300, 0)},
      {"configured value of a discrete node", vel_node_set_configured_value(numbered, 1)},
  };
  for (const Refusal &r : refusals) EXPECT_EQ(r.code, vel_error_usage) << r.what;
  EXPECT_EQ(vel_node_get_value(f), -1.0) << "not a real-valued function node";
  EXPECT_EQ(vel_error_code(), vel_error_usage);

  ASSERT_EQ(vel_node_set_mean_and_variance(level, 2.5, 0.25), 0);
  EXPECT_EQ(_vel_node_get_variance(level, 1), 0.25);
  EXPECT_DOUBLE_EQ(_vel_node_get_variance(numbered, 1), 50.0);
  // The variance operator's field follows every change of stated results.
  ASSERT_EQ(vel_node_set_expected_utility(cost, 1, 2.5), 0);
  EXPECT_EQ(level->variance, 0.25);
  EXPECT_DOUBLE_EQ(numbered->variance, 50.0);
  EXPECT_EQ(cost->variance, 2.5);
  ASSERT_EQ(vel_node_set_configured_value(level, 3.5), 0);
  EXPECT_EQ(level->evidence.value, 3.5);

  ASSERT_EQ(vel_node_set_evidence(n, 1), 0);
  ASSERT_EQ(vel_node_set_configured_state(n, 0), 0);
  ASSERT_EQ(vel_node_set_number_of_states(n, 1), 0);
  EXPECT_EQ(n->belief_table->data[0], 0.0f);
  EXPECT_EQ(n->evidence.state, -1);
  EXPECT_EQ(n->configured_state, 0);
}

}  // namespace
