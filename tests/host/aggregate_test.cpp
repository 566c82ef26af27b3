// The distribution of a sum of N copies of an interval node, against sums
// worked out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "common/error.h"
#include "host/host.h"
#include "host/records.h"
#include "vel/vel.h"

namespace {

const double kInf = vel_infinity;

class AggregateSumTest : public ::testing::Test {
 protected:
  AggregateSumTest() : domain_(vel_domain_new()) {}
  ~AggregateSumTest() override { vel_domain_delete(domain_); }

  vel_node_t *interval(const std::vector<double> &bounds) {
    std::string name = "I" + std::to_string(++count_);
    vel_node_t *node = vel_domain_new_node(domain_, vel_category_function, vel_kind_discrete,
                                           vel_subtype_interval, name.c_str());
    vel_node_set_number_of_states(node, bounds.size() - 1);
    for (size_t i = 0; i < bounds.size(); ++i) vel_node_set_state_value(node, i, bounds[i]);
    return node;
  }

  // The node's row for counts with these weights and an item with these
  // intervals and beliefs.
  int sum(const std::vector<float> &counts, const std::vector<double> &item_bounds,
          const std::vector<double> &item_beliefs, const std::vector<double> &bounds,
          std::vector<double> *row) {
    vel_node_t *item = interval(item_bounds);
    EXPECT_EQ(vel_node_set_beliefs(item, item_beliefs.data(), item_beliefs.size()), 0);
    vel_node_t *node = interval(bounds);
    row->assign(bounds.size() - 1, -1.0);
    return _vel_aggregate(node, counts.data(), counts.size(), item, row->data());
  }

  vel_domain_t *domain_;
  int count_ = 0;
};

TEST_F(AggregateSumTest, SumsWorkedOutByHand) {
  struct Case {
    const char *what;
    std::vector<float> counts;
    std::vector<double> item_bounds, item_beliefs, bounds, row;
  } cases[] = {
      {"one U(0,1)", {0, 1}, {0, 1}, {1}, {0, 0.25, 0.5, 1}, {0.25, 0.25, 0.5}},
      {"two U(0,1): triangular on [0, 2]", {0, 0, 1}, {0, 1}, {1}, {0, 0.3, 1, 1.5, 2},
       {0.045, 0.455, 0.375, 0.125}},
      {"no copies: a point mass at 0", {1}, {0, 1}, {1}, {-1, 0, 1}, {0, 1}},
      {"counts normalised", {0, 2, 2}, {0, 1}, {1}, {0, 1, 2}, {0.75, 0.25}},
      {"two U(2,5): triangular on [4, 10]", {0, 0, 1}, {2, 5}, {1}, {4, 5.5, 7, 10},
       {0.125, 0.375, 0.5}},
      // Half a point mass at 0 from (-inf, 0), half U(0, 1).
      {"unbounded item interval", {0, 0, 1}, {-kInf, 0, 1}, {0.5, 0.5}, {0, 0.5, 1, 2},
       {0.53125, 0.34375, 0.125}},
      // Densities 0.5 on [0, 1) and 0.25 on [1, 3).
      {"unequal widths", {0, 0, 1}, {0, 1, 3}, {0.5, 0.5}, {0, 1, 2, 6}, {0.125, 0.25, 0.625}},
      {"unbounded node ends", {0, 0, 1}, {0, 1}, {1}, {-kInf, 1, kInf}, {0.5, 0.5}},
  };
  for (const Case &c : cases) {
    std::vector<double> row;
    EXPECT_EQ(sum(c.counts, c.item_bounds, c.item_beliefs, c.bounds, &row), 0) << c.what;
    ASSERT_EQ(row.size(), c.row.size());
    for (size_t i = 0; i < row.size(); ++i) EXPECT_NEAR(row[i], c.row[i], 1e-9) << c.what << " " << i;
  }
}

TEST_F(AggregateSumTest, Refusals) {
  std::vector<double> row;
  EXPECT_EQ(sum({0, 0, 1}, {0, 1}, {1}, {0, 1}, &row), vel_error_state_range);
  EXPECT_EQ(sum({0, 0}, {0, 1}, {1}, {0, 1}, &row), vel_error_computation);
  EXPECT_EQ(sum({0, 1}, {0, 1}, {0}, {0, 1}, &row), vel_error_computation);
  // Bounds with no common lattice fine enough for the accuracy required.
  EXPECT_EQ(sum({0, 1}, {0, 1, 1 + std::sqrt(2.0)}, {0.5, 0.5}, {0, 3}, &row),
            vel_error_computation);
  EXPECT_EQ(_vel_error_code, vel_error_computation);
}

}  // namespace
