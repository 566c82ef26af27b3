// The public check that runs the pre-generation checks without generating.
#include <tuple>

#include "generation_test_support.h"

namespace {

using gentest::kInf;
using Report = std::tuple<int, std::string, size_t>;

void collect(void *context, int kind, vel_node_t *node, size_t index) {
  static_cast<std::vector<Report> *>(context)->emplace_back(kind, vel_node_get_name(node), index);
}

class CheckModelTest : public gentest::GenerationTest {
 protected:
  int check(vel_node_t *node) {
    reports.clear();
    return vel_node_check_model(node, collect, &reports);
  }
  std::vector<Report> reports;
};

// Every problem is reported; the code is the one generation would stop with.
TEST_F(CheckModelTest, ReportsEveryProblemWithoutTouchingTableOrLog) {
  vel_node_t *p = interval("P", {-kInf, -kInf, 5, 6});
  vel_node_t *x = numbered("X", {3, 1});
  parents(x, {p});
  vel_model_t *m = model(x, {p}, {nullptr, "1", "\"a\""});
  use_log();
  EXPECT_EQ(check(nullptr), vel_error_usage);
  EXPECT_EQ(check(p), vel_error_usage);  // no model
  EXPECT_EQ(check(x), vel_error_invalid_state_values);
  EXPECT_EQ(reports, (std::vector<Report>{{vel_check_state_values, "X", 1},
                                          {vel_check_state_values, "P", 2},
                                          {vel_check_missing_expression, "X", 0},
                                          {vel_check_invalid_expression, "X", 2}}));
  EXPECT_EQ(log(), "");
  EXPECT_NE(vel_model_get_tables_outdated(m), 0);
  EXPECT_EQ(vel_node_check_model(x, nullptr, nullptr), vel_error_invalid_state_values);

  vel_node_set_state_value(x, 0, 0);
  vel_node_set_state_value(p, 1, 0);
  EXPECT_EQ(check(x), vel_error_invalid_expression);
  EXPECT_EQ(reports.size(), 2u);
  vel_model_set_expression(m, 0, vel_parse_expression("P", x));
  vel_model_set_expression(m, 2, vel_parse_expression("Distribution(1, 1)", x));
  EXPECT_EQ(check(x), 0);
  EXPECT_TRUE(reports.empty());
  EXPECT_EQ(vel_error_code(), 0);
}

}  // namespace
