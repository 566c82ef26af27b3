// Utility tables: the negative-entry rule and evaluation failures. (Sampled
// rows and their spread lines are in the golden records.)
#include "generation_test_support.h"

namespace {

class UtilityTableTest : public gentest::GenerationTest {
 protected:
  vel_node_t *utility_over(const std::vector<vel_node_t *> &ps, const char *expression,
                           size_t samples) {
    vel_node_t *u = utility("U");
    parents(u, ps);
    vel_model_set_samples_per_interval(model(u, {}, {expression}), samples);
    use_log();
    return u;
  }
  const std::string head = "Using model for U to generate a utility table\n";
};

// The line of a failed evaluation has no newline; earlier entries stay.
TEST_F(UtilityTableTest, EvaluationFailureLeavesAnOpenLine) {
  vel_node_t *a = labeled("A", {"a0", "a1"});
  vel_node_t *b = interval("B", {0, 5, 10});
  vel_node_t *u = utility_over({a, b}, "1 / (B - 7.5)", 1);
  std::vector<double> before(4, 9.0);
  vel_node_set_table_data(u, before.data(), before.size());
  EXPECT_EQ(vel_node_generate_table(u), vel_error_division_by_zero);
  EXPECT_EQ(log(), head + "(0,1): evaluation failed");
  EXPECT_EQ(table(u), (std::vector<double>{-0.2f, 9, 9, 9}));
  EXPECT_EQ(a->state_index, -1);
  EXPECT_EQ(b->state_index, -1);
}

// The entry is written before the negative-entry rule fails the table.
TEST_F(UtilityTableTest, NegativeEntriesOnlyInUtilityTables) {
  vel_node_t *u = utility_over({}, "-1", 1);
  EXPECT_EQ(vel_node_generate_table(u), 0);
  const double five = 5;
  vel_node_set_table_data(u, &five, 1);
  vel_model_set_tables_outdated(vel_node_get_model(u), 1);
  vel_node_get_table(u)->is_utility_table = 0;
  EXPECT_EQ(vel_node_generate_table(u), vel_error_negative_entry);
  EXPECT_EQ(log(), head + head + "(): -1 (min=-1, max=-1)\n");
  EXPECT_EQ(table(u), (std::vector<double>{-1}));
}

}  // namespace
