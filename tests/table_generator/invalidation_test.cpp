// Invalidation of cached function-node values, the tables that depend on
// them, and the initialisation of function-value records.
#include <functional>

#include "function_node_support.h"

namespace {

class InvalidationTest : public gentest::FunctionNodeFixture {
 protected:
  static int outdated(const vel_node_t *node) { return node->model->tables_outdated; }
};

TEST_F(InvalidationTest, StopsAtNodesAlreadyInvalid) {
  vel_node_t *c = continuous("C", 1);
  vel_node_t *f1 = function_of("F1", {c}, "C + 1");
  vel_node_t *f2 = function_of("F2", {f1}, "F1 * 2");
  vel_node_t *t = numbered("T", {4, 5});
  parents(t, {f2});
  model(t, {}, {"F2"});
  compute(f2);
  t->model->tables_outdated = 0;

  _vel_invalidate_function_value(f1, vel_mode_inference);
  EXPECT_EQ(f1->function_status[0], -1);
  EXPECT_EQ(f2->function_status[0], -1);
  EXPECT_EQ(outdated(t), 1);
  EXPECT_EQ(f2->function_status[1], 0);

  // The chain is invalid already: a second walk ends at F1.
  t->model->tables_outdated = 0;
  _vel_invalidate_function_value(f1, vel_mode_inference);
  EXPECT_EQ(outdated(t), 0);

  // F1 valid again, F2 still invalid: the walk ends at F2.
  ASSERT_EQ(_vel_node_compute_function_value(f1, 0), 0);
  _vel_invalidate_function_value(f1, vel_mode_inference);
  EXPECT_EQ(f1->function_status[0], -1);
  EXPECT_EQ(outdated(t), 0);
}

TEST_F(InvalidationTest, FollowsOnlyChildrenWhoseModelsUseTheNode) {
  vel_node_t *c = continuous("C", 1);
  vel_node_t *l = labeled("L", {"a", "b"});
  vel_node_t *f = function_of("F", {c}, "C");
  vel_node_t *uses = function_of("Uses", {f}, "F + 1");
  vel_node_t *ignores = function_of("Ignores", {f, c}, "C + 1");
  vel_node_t *selects = real_function("Selects");  // L is a model node only
  parents(selects, {l});
  model(selects, {l}, {"1", "2"});
  vel_node_t *reads = numbered("Reads", {1, 2});
  vel_node_t *plain = numbered("Plain", {1, 2});
  parents(reads, {f});
  parents(plain, {f});
  model(reads, {}, {"F"});
  model(plain, {}, {"1"});
  ASSERT_EQ(vel_node_set_configured_state(l, 0), 0);
  for (vel_node_t *n : {uses, ignores}) compute(n);
  ASSERT_EQ(_vel_node_compute_function_value(selects, 1), 0);
  reads->model->tables_outdated = plain->model->tables_outdated = 0;

  _vel_invalidate_function_value(f, vel_mode_inference);
  EXPECT_EQ(uses->function_status[0], -1);
  EXPECT_EQ(ignores->function_status[0], 0);
  EXPECT_EQ(outdated(reads), 1);
  EXPECT_EQ(outdated(plain), 0);

  ASSERT_EQ(vel_node_set_configured_state(l, 1), 0);
  EXPECT_EQ(selects->function_status[1], -1);
  double v = 0;
  EXPECT_EQ(vel_node_compute_value(selects, 1, &v), 0);
  EXPECT_EQ(v, 2);
}

TEST_F(InvalidationTest, ModeOneNeverTouchesModels) {
  vel_node_t *c = continuous("C", 1);
  vel_node_t *f = function_of("F", {c}, "C");
  vel_node_t *t = numbered("T", {1, 2});
  vel_node_t *d = numbered("D", {1, 2}, vel_category_function);  // a discrete function node
  vel_node_t *o = numbered("O", {1, 2});                           // a chance node reading C
  parents(t, {f});
  parents(d, {c});
  parents(o, {c});
  model(t, {}, {"F"});
  model(d, {}, {"C"});
  model(o, {}, {"C"});
  compute(f);
  t->model->tables_outdated = d->model->tables_outdated = o->model->tables_outdated = 0;

  _vel_invalidate_function_value(f, vel_mode_configured);
  _vel_invalidate_function_children(c, vel_mode_configured);
  EXPECT_EQ(f->function_status[1], -1);
  EXPECT_EQ(f->function_status[0], 0);
  EXPECT_EQ(outdated(t), 0);
  EXPECT_EQ(outdated(d), 0);

  // Mode 0 through the parent: the function child is invalidated, the
  // discrete function child touched, T through F; the chance child is left
  // alone.
  _vel_invalidate_function_children(c, vel_mode_inference);
  EXPECT_EQ(f->function_status[0], -1);
  EXPECT_EQ(outdated(d), 1);
  EXPECT_EQ(outdated(t), 1);
  EXPECT_EQ(outdated(o), 0);
}

TEST_F(InvalidationTest, ReachesMirrors) {
  vel_node_t *c = continuous("C", 1);
  vel_node_t *f = function_of("F", {c}, "C");
  vel_node_t *g = function_of("G", {c}, "C * 3");
  vel_node_t *copy1 = function_of("Copy1", {}, "1");
  vel_node_t *copy2 = function_of("Copy2", {}, "2");
  vel_node_t *other = function_of("Other", {}, "3");
  for (vel_node_t *n : {f, g, copy1, copy2, other}) compute(n);
  vel_node_t *mirrored[] = {g, f, nullptr};
  vel_node_t *first[] = {other, copy1, nullptr};
  vel_node_t *second[] = {other, copy2, nullptr};
  vel_mirror_t records[] = {{first}, {second}};
  vel_mirror_t *mirrors[] = {&records[0], &records[1], nullptr};
  domain()->mirrored_nodes = mirrored;

  // Without a mirror list nothing beyond the node is reached.
  _vel_invalidate_function_value(f, vel_mode_configured);
  EXPECT_EQ(copy1->function_status[1], 0);

  domain()->mirror_list = mirrors;
  _vel_invalidate_function_value(f, vel_mode_inference);
  EXPECT_EQ(copy1->function_status[0], -1);
  EXPECT_EQ(copy2->function_status[0], -1);
  EXPECT_EQ(other->function_status[0], 0);
  EXPECT_EQ(copy1->function_status[1], 0);

  // G's mirrors are at index 0.
  for (vel_node_t *n : {copy1, copy2}) compute(n);
  _vel_invalidate_function_value(g, vel_mode_inference);
  EXPECT_EQ(other->function_status[0], -1);
  EXPECT_EQ(copy1->function_status[0], 0);
}

// A table reading a function parent follows that parent's inputs and model
// without being regenerated by hand.
TEST_F(InvalidationTest, TablesReadingFunctionParentsAreRegenerated) {
  vel_node_t *c = continuous("C", 0.5);
  vel_node_t *x = numbered("X", {1, 2});
  vel_node_t *f = function_of("F", {c, x}, "C + X");
  vel_node_t *t = numbered("T", {1.5, 2.5, 3.5});
  parents(t, {f});
  model(t, {}, {"F"});
  propagate(x, {1, 0});
  ASSERT_EQ(vel_node_generate_table(t), 0);
  EXPECT_EQ(table(t), (std::vector<double>{1, 0, 0}));

  struct Step { const char *what; std::function<void()> change; std::vector<double> expected; };
  const std::vector<Step> steps = {
      {"mean", [&] { vel_node_set_mean_and_variance(c, 1.5, 0); }, {0, 1, 0}},
      {"beliefs", [&] { vel_node_set_beliefs(x, std::vector<double>{0, 1}.data(), 2); }, {0, 0, 1}},
      {"evidence", [&] { vel_node_set_evidence(x, 0); }, {0, 1, 0}},
      {"model", [&] { model(f, {}, {"C"}); }, {1, 0, 0}},
  };
  for (const Step &step : steps) {
    ASSERT_EQ(vel_model_get_tables_outdated(t->model), 0) << step.what;
    step.change();
    EXPECT_EQ(vel_model_get_tables_outdated(t->model), 1) << step.what;
    ASSERT_EQ(vel_node_generate_table(t), 0) << step.what;
    EXPECT_EQ(table(t), step.expected) << step.what;
  }
}

class StatusInitialisationTest : public InvalidationTest {
 protected:
  // T reads F; Plain reads no function node.  Both models are outdated.
  void SetUp() override {
    f_ = real_function("F");
    t_ = numbered("T", {-3, -2.5});
    plain_ = numbered("Plain", {1, 2});
    parents(t_, {f_});
    model(t_, {}, {"F"});
    model(plain_, {}, {"1"});
  }
  void check_parents(bool on) { domain()->node_counters[1] = on ? 1 : 0; }

  vel_node_t *f_, *t_, *plain_;
};

TEST_F(StatusInitialisationTest, ClearsRecordsAndFlagsFailingParents) {
  struct Case { const char *expression; bool check; int outdated; } cases[] = {
      {nullptr, false, 0},  // parents not examined
      {nullptr, true, 1},   // F fails with 34
      {"-2.5", true, 0},    // a negative value with code 0 is a value
      {"1", true, 0},
  };
  for (const Case &c : cases) {
    if (c.expression) {
      model(f_, {}, {c.expression});
    } else {
      vel_node_new_model(f_, nullptr);
    }
    t_->model->function_value_use = 1;
    t_->model->tables_outdated = 1;
    plain_->model->tables_outdated = 1;
    check_parents(c.check);
    _vel_domain_initialize_function_status_codes(domain());
    EXPECT_EQ(vel_error_code(), 0);
    EXPECT_EQ(t_->model->function_value_use, 0);
    EXPECT_EQ(outdated(t_), c.outdated) << (c.expression ? c.expression : "none") << c.check;
    EXPECT_EQ(outdated(plain_), 1) << "a model without function values is untouched";
  }
}

TEST_F(StatusInitialisationTest, CollectionFromTheFirstIndex) {
  vel_domain_t *other = vel_domain_new();
  vel_node_t *g = vel_domain_new_node(other, vel_category_function, vel_kind_stateless,
                                      vel_subtype_none, "G");
  vel_node_t *s = vel_domain_new_node(other, vel_category_chance, vel_kind_discrete,
                                      vel_subtype_numbered, "S");
  vel_node_set_number_of_states(s, 1);
  vel_node_add_parent(s, g);
  vel_model_t *m = vel_node_new_model(s, nullptr);
  vel_model_set_expression(m, 0, vel_parse_expression("G", s));
  ASSERT_EQ(m->function_value_use, 1);
  vel_domain_t *domains[] = {domain(), other, nullptr};
  vel_collection_t collection{domains};

  _vel_cc_initialize_function_status_codes(&collection, 1);
  EXPECT_EQ(m->function_value_use, 0);
  EXPECT_EQ(t_->model->function_value_use, 1);
  _vel_cc_initialize_function_status_codes(&collection, 0);
  EXPECT_EQ(t_->model->function_value_use, 0);
  t_->model->function_value_use = 1;
  _vel_cc_initialize_function_status_codes(&collection, 7);  // past the end
  EXPECT_EQ(t_->model->function_value_use, 1);
  vel_domain_delete(other);
}

}  // namespace
