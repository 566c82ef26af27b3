// The host's verdict on state values turned into messages and codes.
#include "generation_test_support.h"

namespace {

using gentest::kInf;

class StateValueChecksTest : public gentest::GenerationTest {};

TEST_F(StateValueChecksTest, VerdictsBecomeMessages) {
  struct Case { vel_node_t *node; int code; const char *message; } cases[] = {
      {numbered("N1", {1, 3, 2}), 40, "The state values of node N1 do not form an increasing sequence.\n"},
      {interval("I1", {-kInf, -kInf, 5}), 40, "The state values of node I1 use infinite values incorrectly.\n"},
      {numbered("N2", {1, 2, 3}), 0, ""},
      {labeled("L", {"b", "a"}), 0, ""},
      {utility("U"), 0, ""},
  };
  vel_node_t *n = cases[0].node;
  EXPECT_EQ(_vel_check_state_values(n), vel_error_invalid_state_values) << "no log";
  use_log();
  for (const Case &c : cases) {
    std::string before = log();
    _vel_error_code = 99;  // untouched on success
    EXPECT_EQ(_vel_check_state_values(c.node), c.code) << vel_node_get_name(c.node);
    EXPECT_EQ(_vel_error_code, c.code == 0 ? 99 : c.code);
    EXPECT_EQ(log().substr(before.size()), c.message);
  }
  use_failing_log();
  EXPECT_EQ(_vel_check_state_values(n), vel_error_io);
}

// Through the driver: a parent's bad values stop generation before any
// expression is checked.
TEST_F(StateValueChecksTest, ParentValuesStopGeneration) {
  vel_node_t *p = numbered("P", {5, 5});
  vel_node_t *x = labeled("X", {"a"});
  parents(x, {p});
  model(x, {}, {nullptr});
  use_log();
  EXPECT_EQ(vel_node_generate_table(x), vel_error_invalid_state_values);
  EXPECT_EQ(log(),
            "Using model for X to generate a conditional probability table\n"
            "The state values of node P do not form an increasing sequence.\n");
}

}  // namespace
