// Values that inference gives the parents of function nodes, and tables
// generated from inference results.
#include <functional>

#include "generation_test_support.h"

namespace {

class InferenceValuesTest : public gentest::GenerationTest {
 protected:
  void set_jt(int compiled, int equilibrium, int mode, int pending) {
    vel_domain_set_compiled(domain(), compiled);
    vel_jt_set_state(vel_domain_get_junction_tree(domain()), equilibrium, mode, pending);
  }
};

// Values from inference and quantiles need a compiled domain and a sum
// equilibrium, whose evidence is not pending in the fast evidence mode.
TEST_F(InferenceValuesTest, NeedsACompiledDomainWithASumEquilibrium) {
  vel_node_t *n = numbered("N", {1, 10});
  vel_node_set_beliefs(n, std::vector<double>{0.25, 0.75}.data(), 2);
  struct Case { int compiled, equilibrium, mode, pending, code; } cases[] = {
      {0, vel_equilibrium_sum, vel_evidence_mode_normal, 0, vel_error_not_compiled},
      {1, vel_equilibrium_none, vel_evidence_mode_normal, 0, vel_error_not_propagated},
      {1, vel_equilibrium_max, vel_evidence_mode_normal, 0, vel_error_computation},
      {1, vel_equilibrium_sum, vel_evidence_mode_fast, 1, vel_error_computation},
      {1, vel_equilibrium_sum, vel_evidence_mode_fast, 0, 0},
      {1, vel_equilibrium_sum, vel_evidence_mode_normal, 1, 0},
  };
  for (const Case &c : cases) {
    set_jt(c.compiled, c.equilibrium, c.mode, c.pending);
    EXPECT_EQ(compute_dcu_value(n), c.code) << &c - cases;
    EXPECT_EQ(_vel_error_code, c.code);
    vel_node_get_quantile(n, 0.5);
    EXPECT_EQ(vel_error_code(), c.code) << &c - cases;
  }
}

// A single state with positive belief gives its value; spread beliefs the
// expected state value; evidence counts only in the normal evidence mode.
TEST_F(InferenceValuesTest, StateAndValueOfANumberedNode) {
  vel_node_t *n = numbered("N", {1, 10});
  struct Case { std::vector<double> beliefs; int64_t evidence; int mode; int64_t state; double value; }
  cases[] = {
      {{0.25, 0.75}, -1, vel_evidence_mode_normal, -1, 0.25 * 1 + 0.75 * 10},
      {{0, 1}, -1, vel_evidence_mode_normal, 1, 10},
      {{0, 0}, -1, vel_evidence_mode_normal, -1, 0},
      {{0, 1}, 0, vel_evidence_mode_normal, 0, 1},
      {{0, 1}, 0, vel_evidence_mode_fast, 1, 10},
  };
  for (const Case &c : cases) {
    set_jt(1, vel_equilibrium_sum, c.mode, 0);
    vel_node_set_beliefs(n, c.beliefs.data(), 2);
    vel_node_set_evidence(n, c.evidence);
    EXPECT_EQ(compute_dcu_value(n), 0);
    EXPECT_EQ(n->state_index, c.state) << &c - cases;
    EXPECT_EQ(n->value, c.value) << &c - cases;
  }
}

// An interval node's state is usable; its value is not.
TEST_F(InferenceValuesTest, IntervalValueIsNeededOnlyThroughItsValue) {
  vel_node_t *x = interval("X", {0, 1, 2});
  vel_node_t *by_state = real_function("ByState");
  vel_node_t *by_value = real_function("ByValue");
  parents(by_state, {x});
  parents(by_value, {x});
  model(by_state, {}, {"state_index(X)"});
  model(by_value, {}, {"X + 1"});
  set_jt(1, vel_equilibrium_sum, vel_evidence_mode_normal, 0);
  vel_node_set_beliefs(x, std::vector<double>{0, 1}.data(), 2);
  by_state->mark = -1;
  EXPECT_EQ(compute_dcu_value(x), 0);
  EXPECT_EQ(x->state_index, 1);
  by_value->mark = -1;
  EXPECT_EQ(compute_dcu_value(x), vel_error_invalid_expression);
  by_state->mark = by_value->mark = 0;
}

// A discrete function node's parents are evaluated first; a failure names
// the parent and keeps its code.
TEST_F(InferenceValuesTest, FunctionNodeParentFailureStopsGeneration) {
  vel_node_t *p = labeled("P", {"a", "b"});
  vel_node_t *f = labeled("F", {"a", "b"}, vel_category_function);
  parents(f, {p});
  model(f, {}, {"\"a\""});
  use_log();
  EXPECT_EQ(vel_node_generate_table(f), vel_error_not_compiled);
  EXPECT_EQ(log(),
            "Using model for F to generate a conditional probability table\n"
            "Evaluation of parent P failed\n");
  EXPECT_EQ(f->mark, 0);
  propagate(p, {0, 1});
  EXPECT_EQ(vel_node_generate_table(f), 0);
  EXPECT_EQ(p->state_index, -1);  // the fill resets the parent's state
}

// A change of inference results marks the tables generated from them, and
// only those, outdated; regenerating uses the new results.
TEST_F(InferenceValuesTest, TablesReadingInferenceResultsBecomeOutdated) {
  vel_node_t *n = numbered("N", {0, 1, 2});
  vel_node_t *item = interval("I", {0, 1});
  vel_node_t *y = labeled("Y", {"a", "b"});
  vel_node_t *level = continuous("Level");
  vel_node_t *q = numbered("Q", {0, 1, 2});
  vel_node_t *f = interval("F", {0, 1, 2}, vel_category_function);
  vel_node_t *v = numbered("V", {0, 1});
  parents(q, {n});
  parents(f, {n, item});
  parents(v, {level});
  model(q, {}, {"quantile(N, 0.5)"});
  model(f, {}, {"aggregate(N, I)"});
  model(v, {}, {"variance(Level)"});
  propagate(n, {0.25, 0.5, 0.25});
  vel_node_set_beliefs(item, std::vector<double>{1}.data(), 1);
  ASSERT_EQ(vel_domain_generate_tables(domain()), 0);
  EXPECT_EQ(table(q), (std::vector<double>{0, 1, 0, 0, 1, 0, 0, 1, 0}));
  EXPECT_EQ(table(f), (std::vector<double>{0.875, 0.125, 0.875, 0.125, 0.875, 0.125}));

  const double one[] = {1, 0};
  struct Step { const char *what; std::function<void()> change; std::vector<int> outdated; };
  const Step steps[] = {
      {"beliefs of an unread node", [&] { vel_node_set_beliefs(y, one, 2); }, {0, 0, 0}},
      {"beliefs", [&] { vel_node_set_beliefs(n, std::vector<double>{3, 1, 0}.data(), 3); }, {1, 1, 0}},
      {"item beliefs", [&] { vel_node_set_beliefs(item, one, 1); }, {0, 1, 0}},
      {"evidence", [&] { vel_node_set_evidence(n, 0); }, {1, 1, 0}},
      {"mean and variance", [&] { vel_node_set_mean_and_variance(level, 2, 1); }, {0, 0, 1}},
      {"compiled flag", [&] { vel_domain_set_compiled(domain(), 1); }, {1, 1, 1}},
  };
  for (const Step &step : steps) {
    step.change();
    std::vector<int> outdated;
    for (vel_node_t *node : {q, f, v}) outdated.push_back(node->model->tables_outdated);
    EXPECT_EQ(outdated, step.outdated) << step.what;
    ASSERT_EQ(vel_domain_generate_tables(domain()), 0) << step.what;
  }
  EXPECT_EQ(table(q), (std::vector<double>{1, 0, 0, 1, 0, 0, 1, 0, 0}));
  EXPECT_EQ(table(f), (std::vector<double>{1, 0, 1, 0, 1, 0}));
}

}  // namespace
