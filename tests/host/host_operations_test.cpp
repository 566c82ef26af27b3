// The host operations that the table generator calls: verdicts on state
// values, value-to-state lookups, labels and the log file.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "common/error.h"
#include "host/host.h"
#include "vel/vel.h"
#include "case_file.h"

namespace {

const double inf = vel_infinity;
const double ieee_inf = HUGE_VAL;
const double nan = std::nan("");

class HostOperationsTest : public ::testing::Test {
 protected:
  void SetUp() override { domain_ = vel_domain_new(); }
  void TearDown() override { vel_domain_delete(domain_); }

  // A numbered node with one state per value, or an interval node with
  // values.size() - 1 states bounded by the values.
  vel_node_t *valued(int subtype, const std::vector<double> &values) {
    std::string name = "N" + std::to_string(count_++);
    vel_node_t *node = vel_domain_new_node(domain_, 1, 0, subtype, name.c_str());
    size_t states = subtype == vel_subtype_interval ? values.size() - 1 : values.size();
    EXPECT_EQ(vel_node_set_number_of_states(node, states), 0);
    for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(vel_node_set_state_value(node, i, values[i]), 0);
    return node;
  }
  vel_domain_t *domain_ = nullptr;
  int count_ = 0;
};

TEST_F(HostOperationsTest, StateValueVerdicts) {
  for (const auto &c : vel_test::read_cases("host/data/state_value_verdicts.tsv")) {
    const std::vector<double> values = c.numbers("values");
    const int subtype = c["node"] == "numbered" ? vel_subtype_numbered : vel_subtype_interval;
    vel_node_t *node = valued(subtype, values);
    EXPECT_EQ(_vel_node_check_status_of_state_values(node), c.integer("verdict")) << c["values"];
    const int wellformed = subtype == vel_subtype_numbered ? _vel_is_wellformed_numbered_node(node)
                                                           : _vel_is_wellformed_interval_node(node);
    EXPECT_EQ(wellformed != 0, c.integer("wellformed") != 0) << c["values"];
  }
  EXPECT_EQ(_vel_is_wellformed_interval_node(valued(vel_subtype_numbered, {0, 1})), 0);
}

TEST_F(HostOperationsTest, ValueToStateIndex) {
  vel_node_t *bounded = valued(vel_subtype_interval, {0, 1, 1, 2});
  vel_node_t *open = valued(vel_subtype_interval, {-inf, 0, inf});
  vel_node_t *ieee = valued(vel_subtype_interval, {-ieee_inf, 0, ieee_inf});
  vel_node_t *numbered = valued(vel_subtype_numbered, {-1, 0.5, 4});
  struct Case { vel_node_t *node; double value; int64_t state; } cases[] = {
      {bounded, 0, 0},    {bounded, 1, 1},      {bounded, 1.5, 2},   {bounded, 2, -1},
      {bounded, -0.1, -1}, {bounded, nan, -1},  {bounded, inf, -1},  {open, -inf, 0},
      {open, -ieee_inf, 0}, {open, 0, 1},       {open, inf, 1},      {open, ieee_inf, 1},
      {ieee, inf, 1},     {ieee, -inf, 0},      {numbered, 0.5, 1},  {numbered, 4, 2},
      {numbered, 0.6, -1}, {numbered, nan, -1},
  };
  for (const Case &c : cases)
    EXPECT_EQ(_vel_node_state_value_to_state_index(c.node, c.value), c.state)
        << "case " << (&c - cases);
}

TEST_F(HostOperationsTest, LabelsAndStateValues) {
  vel_node_t *node = vel_domain_new_node(domain_, 1, 0, vel_subtype_labeled, "L");
  vel_node_set_number_of_states(node, 4);
  for (size_t i : {0, 2}) vel_node_set_state_label(node, i, "low");
  vel_node_set_state_label(node, 1, "high");
  EXPECT_EQ(_vel_node_get_state_index(node, "high"), 1);
  EXPECT_EQ(_vel_node_get_state_index(node, "low"), -1) << "not unique";
  EXPECT_EQ(_vel_node_get_state_index(node, "none"), -1);
  EXPECT_EQ(_vel_node_get_state_label(node, 4), nullptr);

  vel_node_t *interval = valued(vel_subtype_interval, {-inf, 2, 5});
  EXPECT_EQ(_vel_node_get_state_value(interval, 2), 5.0) << "bounds go up to the state count";
  _vel_error_code = 0;
  EXPECT_TRUE(std::isnan(_vel_node_get_state_value(interval, 3)));
  EXPECT_EQ(vel_error_code(), vel_error_usage);
}

TEST_F(HostOperationsTest, PrintSizeAndLogFlush) {
  EXPECT_STREQ(_vel_print_size(domain_, UINT64_MAX), "18446744073709551615");
  EXPECT_EQ(_vel_domain_flush_log_file(domain_), 0) << "no log file";
  // /dev/full takes buffered output and refuses it when flushed.
  FILE *full = std::fopen("/dev/full", "w");
  if (!full) GTEST_SKIP() << "no /dev/full";
  vel_domain_set_log_file(domain_, full);
  std::fputs("pending line\n", full);
  EXPECT_EQ(_vel_domain_flush_log_file(domain_), vel_error_io);
  EXPECT_EQ(vel_error_code(), vel_error_io);
  vel_domain_set_log_file(domain_, nullptr);
  std::fclose(full);
}

}  // namespace
