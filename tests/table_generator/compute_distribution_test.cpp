// Rows of state probabilities: sampling of interval parents, deterministic
// values, the explicit distributions and aggregate, with their messages.
#include "case_file.h"
#include "generation_test_support.h"

namespace {

using gentest::kInf;

class ComputeDistributionTest : public gentest::GenerationTest {};

// An unbounded interval is evaluated once, just inside its finite end; a
// zero-width interval once at its bound.
TEST_F(ComputeDistributionTest, SamplesUnboundedAndEmptyIntervalsOnce) {
  struct Case { double lo, hi, point; } cases[] = {
      {0, kInf, 1.0},         {-kInf, -2, -2 * 1.001}, {-kInf, 0, -1.0},
      {5, kInf, 5 * 1.001},   {-5, kInf, -5 * 0.999},  {-kInf, 5, 5 * 0.999},
      {-kInf, kInf, 0.0},     {3, 3, 3.0},
  };
  for (const Case &c : cases) {
    std::string name = "B" + std::to_string(&c - cases);
    vel_node_t *b = interval(name.c_str(), {c.lo, c.hi});
    vel_node_t *x = labeled(("X" + name).c_str(), {"a", "b"});
    parents(x, {b});
    model(x, {}, {"\"a\""});
    EXPECT_EQ(vel_node_generate_table(x), 0) << name;
    EXPECT_EQ(b->value, c.point) << name;
  }
}

TEST_F(ComputeDistributionTest, DeterministicValuesAndExplicitDistributions) {
  for (const auto &c : vel_test::read_cases("table_generator/data/distribution_rows.tsv")) {
    SCOPED_TRACE(c["expression"]);
    renew();
    vel_node_t *x = c["node"] == "labeled"    ? labeled("X", {"a", "b", "a2", "a2"})
                    : c["node"] == "boolean"  ? boolean("X")
                    : c["node"] == "numbered" ? numbered("X", {1, 2, 4, 8})
                                              : interval("X", {0, 1, 5});
    model(x, {}, {c["expression"].c_str()});
    use_log();
    EXPECT_EQ(vel_node_generate_table(x), c.integer("code"));
    EXPECT_EQ(log(), "Using model for X to generate a conditional probability table\n" + c["message"] +
                         (c["message"].empty() ? "" : "\n"));
    if (c.integer("code") == 0) {
      std::vector<double> row;  // entries are single-precision
      for (double p : c.numbers("row")) row.push_back(static_cast<float>(p));
      EXPECT_EQ(table(x), row);
    }
  }
}

// aggregate(N, X) on an interval function node: N counts copies of X.
TEST_F(ComputeDistributionTest, AggregateRefusals) {
  vel_node_t *n = numbered("N", {0, 1, 2});
  vel_node_t *x = interval("X", {0, 1});
  vel_node_t *f = interval("F", {0, 0.5, 1, 1.5, 2});
  parents(f, {n, x});
  std::vector<double> out(3 * 4);
  // The row for the expression, straight from compute_distribution.
  auto row = [&](const char *text) {
    vel_expression_t *e = vel_parse_expression(text, f);
    EXPECT_NE(node_check_expression(f, e), 0);
    vel_node_t *nodes[] = {f, nullptr};
    int code = compute_distribution(e, nodes, out.data(), 4, 1);
    vel_expression_delete(e);
    return code;
  };
  use_log();
  EXPECT_EQ(row("aggregate(N, X)"), vel_error_invalid_expression);
  EXPECT_EQ(row("truncate(0, aggregate(N, X))"), vel_error_invalid_expression);
  f->category = vel_category_function;
  EXPECT_EQ(row("aggregate(X, X)"), vel_error_invalid_expression);
  EXPECT_EQ(row("aggregate(N, N)"), vel_error_invalid_expression);
  EXPECT_EQ(log(),
            "Aggregate distributions are only valid for interval discrete function nodes\n"
            "Truncation is not supported for the aggregate distribution\n"
            "Aggregate distribution: `X' must be a numbered node.\n"
            "Aggregate distribution: `N' must be an interval node.\n");

  struct Case { int compiled, equilibrium, mode, pending, code; } cases[] = {
      {0, vel_equilibrium_sum, vel_evidence_mode_normal, 0, vel_error_not_compiled},
      {1, vel_equilibrium_none, vel_evidence_mode_normal, 0, vel_error_not_propagated},
      {1, vel_equilibrium_sum, vel_evidence_mode_fast, 1, vel_error_computation},
      {1, vel_equilibrium_sum, vel_evidence_mode_normal, 1, 0},
  };
  vel_node_set_beliefs(n, std::vector<double>{0, 1, 0}.data(), 3);
  vel_node_set_beliefs(x, std::vector<double>{1}.data(), 1);
  for (const Case &c : cases) {
    vel_domain_set_compiled(domain(), c.compiled);
    vel_jt_set_state(vel_domain_get_junction_tree(domain()), c.equilibrium, c.mode, c.pending);
    EXPECT_EQ(row("aggregate(N, X)"), c.code) << &c - cases;
  }
  EXPECT_EQ(out, (std::vector<double>{0.5, 0.5, 0, 0, 0.5, 0.5, 0, 0, 0.5, 0.5, 0, 0}));
  vel_node_set_state_value(n, 0, -1);  // counts must be 0, 1, 2
  EXPECT_EQ(row("aggregate(N, X)"), vel_error_invalid_state_values);
}

}  // namespace
