// The generation driver: which nodes get tables, step order, messages, codes,
// what a failure leaves of the table, expression selection, and the working
// data.
#include "generation_test_support.h"
#include "host/allocation.h"

namespace {

using gentest::GenerationTest;

class DriverTest : public GenerationTest {};

TEST_F(DriverTest, RefusesNodesWithoutTablesFromModels) {
  vel_node_t *plain = labeled("Plain", {"a", "b"});
  vel_node_t *f = real_function("F");
  model(f, {}, {"1"});
  EXPECT_EQ(vel_node_generate_table(nullptr), vel_error_usage);
  EXPECT_EQ(vel_node_generate_table(plain), vel_error_usage);
  EXPECT_EQ(vel_node_generate_table(f), vel_error_usage);
  EXPECT_EQ(vel_domain_generate_tables(nullptr), vel_error_usage);
  // The only model is a real-valued function node's: the domain walk skips it.
  EXPECT_EQ(vel_domain_generate_tables(domain()), 0);
  EXPECT_EQ(vel_class_generate_tables(domain()), 0);
}

// An up-to-date model ends the call before anything else, even when it has
// no expressions; an unspecified one is reported; failed writes give 2.
TEST_F(DriverTest, UpToDateUnspecifiedAndUnwritable) {
  vel_node_t *x = labeled("X", {"a", "b"});
  vel_model_t *m = vel_node_new_model(x, nullptr);
  vel_node_t *y = labeled("Y", {"a", "b"});
  model(y, {}, {"\"a\""});
  EXPECT_EQ(vel_node_generate_table(x), vel_error_invalid_expression);
  use_log();
  EXPECT_EQ(vel_node_generate_table(x), vel_error_invalid_expression);
  EXPECT_EQ(log(), "Model for X is unspecified\n");
  vel_model_set_tables_outdated(m, 0);
  _vel_error_code = 99;
  EXPECT_EQ(vel_node_generate_table(x), 0);
  EXPECT_EQ(vel_error_code(), 0);
  EXPECT_EQ(log(), "Model for X is unspecified\n");

  vel_model_set_tables_outdated(m, 1);
  use_failing_log();
  EXPECT_EQ(vel_node_generate_table(x), vel_error_io);
  EXPECT_EQ(vel_node_generate_table(y), vel_error_io);
}

TEST_F(DriverTest, ReportsEveryBadExpressionBeforeFailing) {
  vel_node_t *p = labeled("P", {"p0", "p1", "p2"});
  vel_node_t *x = labeled("X", {"a", "b"});
  parents(x, {p});
  vel_model_t *m = model(x, {p}, {nullptr, "\"a\"", "1 + 2"});
  std::vector<double> before{0.5, 0.5, 0.25, 0.75, 1, 0};
  vel_node_set_table_data(x, before.data(), before.size());
  use_log();
  EXPECT_EQ(vel_node_generate_table(x), vel_error_invalid_expression);
  EXPECT_EQ(log(),
            "Using model for X to generate a conditional probability table\n"
            "No expression at index 0\n"
            "Invalid expression at index 2\n");
  EXPECT_EQ(table(x), before);
  EXPECT_NE(vel_model_get_tables_outdated(m), 0);
}

// A row that fails in the fill ends it: the rows before it are written.
TEST_F(DriverTest, FailedRowStopsTheFillAndKeepsEarlierRows) {
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

// A failure ends the walk: earlier nodes keep their new tables, the failing
// one keeps its old table and its outdated flag.
TEST_F(DriverTest, DomainWalkStopsAtTheFirstFailure) {
  vel_node_t *a = labeled("A", {"a", "b"});
  vel_model_t *ma = model(a, {}, {"\"b\""});
  vel_node_t *b = labeled("B", {"a", "b"});
  vel_model_t *mb = model(b, {}, {"\"c\""});
  vel_node_t *c = labeled("C", {"a", "b"});
  vel_model_t *mc = model(c, {}, {"\"a\""});
  EXPECT_EQ(vel_domain_generate_tables(domain()), vel_error_invalid_expression);
  EXPECT_EQ(vel_model_get_tables_outdated(ma), 0);
  EXPECT_EQ(table(a), (std::vector<double>{0, 1}));
  EXPECT_NE(vel_model_get_tables_outdated(mb), 0);
  EXPECT_NE(vel_model_get_tables_outdated(mc), 0);
  EXPECT_EQ(vel_class_generate_tables(domain()), vel_error_invalid_expression);
  EXPECT_EQ(_vel_jt_generate_tables(vel_domain_get_junction_tree(domain())),
            vel_error_invalid_expression);
  vel_model_set_expression(mb, 0, vel_parse_expression("\"a\"", b));
  EXPECT_EQ(_vel_jt_generate_tables(vel_domain_get_junction_tree(domain())), 0);
  EXPECT_EQ(vel_model_get_tables_outdated(mc), 0);
}

// Rows run over the table's nodes, the first slowest; the expression is the
// row-major index of the model nodes' states, in the model's order.
TEST_F(DriverTest, SelectsExpressionsThroughStrides) {
  vel_node_t *a = numbered("A", {0, 1});
  vel_node_t *b = labeled("B", {"b0", "b1", "b2"});
  vel_node_t *shared = numbered("Shared", {0, 1, 2, 3, 4, 5});
  parents(shared, {a, b});
  model(shared, {b}, {"A", "A + 2", "A + 4"});  // A is no model node: stride 0
  vel_node_t *reordered = numbered("Reordered", {0, 1, 2, 3, 4, 5});
  parents(reordered, {a, b});
  model(reordered, {b, a}, {"0", "1", "2", "3", "4", "5"});
  EXPECT_EQ(vel_domain_generate_tables(domain()), 0);
  for (vel_node_t *node : {shared, reordered}) {
    std::vector<double> expected(36, 0.0);
    const int states[] = {0, 2, 4, 1, 3, 5};
    for (size_t row = 0; row < 6; ++row) expected[row * 6 + states[row]] = 1.0;
    EXPECT_EQ(table(node), expected) << vel_node_get_name(node);
  }
  EXPECT_EQ(a->state_index, -1);
  EXPECT_EQ(b->state_index, -1);
}

// The control data and (for a node with states) the work buffer are the
// only allocations; whichever fails, nothing is written and nothing leaks.
TEST_F(DriverTest, WorkingDataThatCannotBeHad) {
  vel_node_t *x = labeled("X", {"a", "b"});
  vel_model_t *m = model(x, {}, {"\"b\""});
  vel_node_t *u = utility("U");
  model(u, {}, {"1"});
  vel_node_get_table(x);
  struct Case { vel_node_t *node; long successes, calls; int code; } cases[] = {
      {x, 0, 1, vel_error_out_of_memory},  // control data
      {x, 1, 2, vel_error_out_of_memory},  // work buffer: control data released
      {u, 0, 1, vel_error_out_of_memory},
      {u, 1, 1, 0},  // a utility table needs no work buffer
  };
  for (const Case &c : cases) {
    vel::host::fail_allocations_after(c.successes);
    long calls = vel::host::allocation_count();
    EXPECT_EQ(vel_node_generate_table(c.node), c.code) << &c - cases;
    EXPECT_EQ(vel::host::allocation_count() - calls, c.calls) << &c - cases;
  }
  vel::host::fail_allocations_after(-1);
  EXPECT_EQ(table(x), (std::vector<double>{0, 0}));
  EXPECT_NE(vel_model_get_tables_outdated(m), 0);
}

}  // namespace
