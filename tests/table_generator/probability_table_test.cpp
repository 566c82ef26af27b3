// Probability tables: a failed row stops the fill. (Rows over interval
// parents and their spread lines are in the golden records.)
#include "generation_test_support.h"

namespace {

class ProbabilityTableTest : public gentest::GenerationTest {};

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
