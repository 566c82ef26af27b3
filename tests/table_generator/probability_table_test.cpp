// Probability tables: rows over interval parents, their diagnostics, and the
// rows of a node without parents.
#include "generation_test_support.h"

namespace {

class ProbabilityTableTest : public gentest::GenerationTest {};

// A spread over the sample points is reported for each state and accepted;
// the table receives the mean.
TEST_F(ProbabilityTableTest, ReportsRowsThatVaryOverIntervalParents) {
  vel_node_t *a = labeled("A", {"a0", "a1"});
  vel_node_t *b = interval("B", {0, 1, 2, 4});
  vel_node_t *x = labeled("X", {"x0", "x1", "x2"});
  parents(x, {a, b});
  vel_model_t *m = model(x, {a},
                         {"if(B >= 2, Distribution(0.5, 0.2 * B - 0.4, 0.9 - 0.2 * B), \"x0\")",
                          "\"x0\""});
  vel_model_set_samples_per_interval(m, 2);
  use_log();
  EXPECT_EQ(vel_node_generate_table(x), 0);
  EXPECT_EQ(log(),
            "Using model for X to generate a conditional probability table\n"
            "(0,2,1): 0.2 (min=0.1, max=0.3)\n"
            "(0,2,2): 0.3 (min=0.2, max=0.4)\n");
  std::vector<double> entries = table(x);
  ASSERT_EQ(entries.size(), 18u);
  EXPECT_EQ(entries[6], 0.5);
  EXPECT_NEAR(entries[7], 0.2, 1e-7);
  EXPECT_NEAR(entries[8], 0.3, 1e-7);
  EXPECT_EQ(a->state_index, -1);
  EXPECT_EQ(b->state_index, -1);
}

TEST_F(ProbabilityTableTest, FailedRowStopsTheFillAndKeepsEarlierRows) {
  vel_node_t *p = numbered("P", {0, 1, 2});
  vel_node_t *x = numbered("X", {0, 1});
  parents(x, {p});
  vel_model_t *m = model(x, {}, {"P"});
  std::vector<double> before(6, 0.5);
  vel_node_set_table_data(x, before.data(), before.size());
  use_log();
  EXPECT_EQ(vel_node_generate_table(x), vel_error_invalid_expression);
  EXPECT_EQ(log(),
            "Using model for X to generate a conditional probability table\n"
            "Node X does not have a state with value 2\n");
  EXPECT_EQ(table(x), (std::vector<double>{1, 0, 0, 1, 0.5, 0.5}));
  EXPECT_NE(vel_model_get_tables_outdated(m), 0);
  EXPECT_EQ(p->state_index, -1);
}

}  // namespace
