// Values of real-valued function nodes: both modes, caching, status codes,
// value sources, and function parents read by table generation.
#include "function_node_support.h"
#include "host/read_count_internal.h"

namespace {

class FunctionNodeTest : public gentest::FunctionNodeFixture {
 protected:
  static uint64_t reads() { return vel::host::value_read_count(); }
  void expect_marks_cleared() {
    for (vel_node_t *n = domain()->first_node; n != nullptr; n = n->next) EXPECT_EQ(n->mark, 0) << n->name;
  }
};

TEST_F(FunctionNodeTest, EachModeReadsItsOwnInputsAndKeepsItsOwnCache) {
  vel_node_t *x = numbered("X", {1, 10});
  vel_node_t *c = continuous("C", 2.5, 0.25);
  vel_node_t *u = utility("U");
  vel_node_t *f = function_of("F", {x, c, u}, "X + C + U");
  propagate(x, {0, 1});
  ASSERT_EQ(vel_node_set_expected_utility(u, -4, 1), 0);
  ASSERT_EQ(vel_node_set_configured_state(x, 0), 0);
  ASSERT_EQ(vel_node_set_configured_value(c, 3), 0);
  ASSERT_EQ(vel_node_set_configured_value(u, 7), 0);

  EXPECT_EQ(value(f, vel_mode_inference), 10 + 2.5 - 4);
  EXPECT_EQ(value(f, vel_mode_configured), 1 + 3 + 7);
  EXPECT_EQ(vel_node_get_value(f), 8.5);

  // New beliefs: the expected state value in mode 0; mode 1 stays cached.
  ASSERT_EQ(vel_node_set_beliefs(x, std::vector<double>{0.5, 0.5}.data(), 2), 0);
  EXPECT_EQ(f->function_status[vel_mode_inference], -1);
  EXPECT_EQ(f->function_status[vel_mode_configured], 0);
  EXPECT_EQ(value(f, vel_mode_inference), 5.5 + 2.5 - 4);
  EXPECT_EQ(value(f, vel_mode_configured), 11);
  expect_marks_cleared();
}

// A computes variance(C) + C: two reads each time it is computed.  Every
// link caches its value; the shared ancestor is computed once.
TEST_F(FunctionNodeTest, DiamondComputesTheSharedAncestorOnce) {
  vel_node_t *c = continuous("C", 2.5, 0.25);
  vel_node_t *a = function_of("A", {c}, "variance(C) + C");
  vel_node_t *b = function_of("B", {a}, "A + 1");
  vel_node_t *d = function_of("D", {a}, "A * 2");
  vel_node_t *top = function_of("Top", {b, d}, "B + D");

  uint64_t before = reads();
  EXPECT_EQ(vel_node_get_value(top), 3.75 + 5.5);
  EXPECT_EQ(reads() - before, 2u);
  expect_marks_cleared();

  before = reads();
  EXPECT_EQ(vel_node_get_value(top), 9.25);
  EXPECT_EQ(vel_node_get_value(b), 3.75);
  EXPECT_EQ(reads() - before, 0u) << "a cached value needs no computation";

  ASSERT_EQ(vel_node_set_mean_and_variance(c, 1, 0), 0);
  for (vel_node_t *n : {a, b, d, top}) EXPECT_EQ(n->function_status[0], -1) << n->name;
  before = reads();
  EXPECT_EQ(vel_node_get_value(top), 2 + 2);
  EXPECT_EQ(reads() - before, 2u);
  expect_marks_cleared();
}

TEST_F(FunctionNodeTest, CachedErrorStandsUntilInvalidated) {
  vel_node_t *x = numbered("X", {1, 10});
  vel_node_t *f = function_of("F", {x}, "X + 1");
  ASSERT_EQ(vel_node_set_beliefs(x, std::vector<double>{0, 1}.data(), 2), 0);
  EXPECT_EQ(code(f, vel_mode_inference), vel_error_not_compiled);
  EXPECT_EQ(f->function_status[0], vel_error_not_compiled);
  // Changing the records behind the host's back leaves the cached error.
  domain()->is_compiled = 1;
  domain()->junction_tree->equilibrium = vel_equilibrium_sum;
  EXPECT_EQ(code(f, vel_mode_inference), vel_error_not_compiled);
  EXPECT_EQ(vel_error_code(), vel_error_not_compiled);
  ASSERT_EQ(vel_domain_set_compiled(domain(), 1), 0);
  EXPECT_EQ(value(f, vel_mode_inference), 11);
}

TEST_F(FunctionNodeTest, StatusPerExpressionAndMode) {
  vel_node_t *l = labeled("L", {"a", "b"});
  vel_node_t *i = interval("I", {0, 1, 2});
  vel_node_t *n = numbered("N", {1, 3});
  vel_node_t *c = continuous("C", 2, 4);
  propagate(l, {0, 1});
  ASSERT_EQ(vel_node_set_beliefs(i, std::vector<double>{1, 0}.data(), 2), 0);
  ASSERT_EQ(vel_node_set_beliefs(n, std::vector<double>{0.5, 0.5}.data(), 2), 0);
  ASSERT_EQ(vel_node_set_configured_state(l, 1), 0);
  ASSERT_EQ(vel_node_set_configured_state(i, 0), 0);
  ASSERT_EQ(vel_node_set_configured_state(n, 1), 0);
  ASSERT_EQ(vel_node_set_configured_value(c, 5), 0);
  struct Case { const char *text; int mode; int status; double value; } cases[] = {
      // From configuration an interval node fails even where only its state is read.
      {"I + 1", 1, vel_error_invalid_expression, 0},
      {"state_index(I)", 1, vel_error_invalid_expression, 0},
      {"I + 1", 0, vel_error_invalid_expression, 0},
      {"state_index(I)", 0, 0, 0},
      {"variance(L)", 1, vel_error_invalid_expression, 0},
      {"variance(L)", 0, vel_error_invalid_expression, 0},
      {"variance(N)", 0, 0, 1},
      {"variance(C)", 0, 0, 4},
      {"if(L == \"b\", N, C)", 1, 0, 3},
      {"1 / (N - 3)", 1, vel_error_division_by_zero, 0},
  };
  for (const Case &k : cases) {
    const std::string name = "F" + std::to_string(&k - cases);
    vel_node_t *f = function_of(name.c_str(), {l, i, n, c}, k.text);
    double v = NAN;
    EXPECT_EQ(vel_node_compute_value(f, k.mode, &v), k.status) << k.text << " mode " << k.mode;
    EXPECT_EQ(vel_error_code(), k.status) << k.text;
    EXPECT_EQ(f->function_status[k.mode], k.status) << k.text;
    EXPECT_EQ(f->function_status[1 - k.mode], -1) << k.text;
    if (k.status == 0) {
      EXPECT_EQ(v, k.value) << k.text << " mode " << k.mode;
    }
  }
  expect_marks_cleared();
}

// No model, no expressions, a missing expression, a model node without a
// configured state, and what is computed from them: 34, cached per mode.
TEST_F(FunctionNodeTest, ModelsThatSelectNoNumericExpression) {
  vel_node_t *l = labeled("L", {"a", "b"});
  vel_node_t *unset = labeled("Unset", {"a", "b"});
  ASSERT_EQ(vel_node_set_configured_state(l, 0), 0);
  vel_node_t *no_model = real_function("NoModel");
  vel_node_t *unspecified = real_function("Unspecified");
  vel_node_new_model(unspecified, nullptr);
  vel_node_t *missing = real_function("Missing");
  parents(missing, {l});
  model(missing, {l}, {nullptr, "1"});
  vel_node_t *unselected = real_function("Unselected");
  parents(unselected, {unset});
  model(unselected, {unset}, {"1", "2"});
  vel_node_t *above = function_of("Above", {missing}, "Missing + 1");
  for (vel_node_t *f : {no_model, unspecified, missing, unselected, above}) {
    EXPECT_EQ(code(f, vel_mode_configured), vel_error_invalid_expression) << f->name;
    EXPECT_EQ(f->function_status[1], vel_error_invalid_expression) << f->name;
  }
  ASSERT_EQ(vel_node_set_configured_state(unset, 1), 0);
  EXPECT_EQ(value(unselected, vel_mode_configured), 2);
  expect_marks_cleared();
}

TEST_F(FunctionNodeTest, UsageFailureSurfacesAsComputationErrorAtTheEntryOnly) {
  vel_node_t *u = utility("U");
  vel_node_t *f = function_of("F", {u}, "U + 1");
  // No builder call makes a stateless decision node; the edited record
  // reaches the host's refusal of a node without an expected utility.
  u->category = vel_category_decision;
  EXPECT_EQ(evaluate_function_node(f, vel_mode_inference), vel_error_usage);
  EXPECT_EQ(f->function_status[0], vel_error_usage);
  EXPECT_EQ(_vel_node_compute_function_value(f, vel_mode_inference), vel_error_computation);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
  EXPECT_EQ(vel_node_get_value(f), -1.0);
  EXPECT_EQ(vel_error_code(), vel_error_computation);
  u->category = vel_category_utility;
}

TEST_F(FunctionNodeTest, SourceDomainBlocksLinksAndValueSources) {
  vel_node_t *x = numbered("X", {1, 10});
  vel_node_t *f = function_of("F", {x}, "X + 1");
  vel_node_t *g = real_function("G");
  vel_node_t *y = numbered("Y", {0, 0});
  vel_node_t *h = function_of("H", {y}, "Y * 2 + state_index(Y)");
  ASSERT_EQ(vel_node_set_configured_state(x, 1), 0);
  g->value_source = f;
  y->value_source = x;

  // Without a source domain the value sources are not followed.
  EXPECT_EQ(code(g, vel_mode_configured), vel_error_invalid_expression);
  EXPECT_EQ(code(h, vel_mode_configured), vel_error_computation);
  _vel_invalidate_function_value(g, vel_mode_configured);
  _vel_invalidate_function_value(h, vel_mode_configured);

  int source = 0;
  domain()->source_domain = &source;
  EXPECT_EQ(value(g, vel_mode_configured), 11);
  EXPECT_EQ(value(h, vel_mode_configured), 10 * 2 + 1);
  EXPECT_EQ(y->state_index, 1);

  vel_node_t *blocked[] = {x, nullptr};
  domain()->blocked_nodes = blocked;
  for (vel_node_t *n : {f, g}) _vel_invalidate_function_value(n, vel_mode_configured);
  EXPECT_EQ(code(g, vel_mode_configured), vel_error_computation);
  EXPECT_EQ(f->function_status[1], vel_error_computation);
  EXPECT_EQ(g->function_status[1], vel_error_computation);
  domain()->blocked_nodes = nullptr;

  // A blocked or linked node itself fails without caching a status.
  vel_node_t *self[] = {f, nullptr};
  domain()->blocked_nodes = self;
  _vel_invalidate_function_value(f, vel_mode_configured);
  EXPECT_EQ(code(f, vel_mode_configured), vel_error_computation);
  EXPECT_EQ(f->function_status[1], -1);
  domain()->blocked_nodes = nullptr;
  EXPECT_EQ(value(f, vel_mode_configured), 11);
  expect_marks_cleared();
}

// A real-valued function parent's value below zero is an ordinary value
// unless the error code says otherwise.
TEST_F(FunctionNodeTest, GenerationReadsFunctionParents) {
  vel_node_t *c = continuous("C", 2.5, 0.25);
  vel_node_t *f = function_of("F", {c}, "C - 5");
  vel_node_t *t = numbered("T", {-2.5, 0, 1});
  parents(t, {f});
  model(t, {}, {"F"});
  use_log();
  EXPECT_EQ(vel_node_generate_table(t), 0);
  EXPECT_EQ(table(t), (std::vector<double>{1, 0, 0}));

  vel_node_t *broken = real_function("Broken");
  vel_node_new_model(broken, nullptr);
  vel_node_t *s = numbered("S", {-1, 0});
  parents(s, {broken});
  model(s, {}, {"Broken"});
  EXPECT_EQ(vel_node_generate_table(s), vel_error_invalid_expression);
  EXPECT_EQ(vel_error_code(), vel_error_invalid_expression);
  EXPECT_EQ(log(),
            "Using model for T to generate a conditional probability table\n"
            "Using model for S to generate a conditional probability table\n"
            "Evaluation of function node Broken failed\n");
}

}  // namespace
