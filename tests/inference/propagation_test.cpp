// Compilation and propagation through the public API: refusals, the
// junction-tree codes around evidence, retraction, impossible evidence, the
// most probable configuration, and tables changed after compilation.
#include "host/records.h"
#include "table_generator/generation_test_support.h"

namespace {

using Network = gentest::DomainBuilder;

const std::vector<double> not_a = {0, 1, 1, 0};  // a copy of the parent's negation

TEST(Compilation, RefusesNodesItCannotUseAndGivesDecisionsUniformPolicies) {
  struct Case {
    int category;
    std::size_t states;
    int subtype;  // vel_subtype_none: a stateless node
    int code;
    const char *message;
  } cases[] = {
      {vel_category_chance, 2, vel_subtype_labeled, vel_error_usage, "node X has neither a table nor a model"},
      {vel_category_function, 2, vel_subtype_labeled, vel_error_usage, "node X has neither a table nor a model"},
      {vel_category_utility, 0, vel_subtype_none, vel_error_usage, "node X has neither a table nor a model"},
      {vel_category_chance, 0, vel_subtype_labeled, vel_error_usage, "node X has no states"},
      {vel_category_decision, 3, vel_subtype_labeled, 0, ""},
  };
  for (const Case &c : cases) {
    Network n;
    vel_node_t *a = n.add("A", 2, {}, {0.5, 0.5});
    vel_node_t *x = n.add("X", c.states, {a}, {}, c.category, c.subtype);
    EXPECT_EQ(vel_domain_compile(n.domain()), c.code) << c.message;
    EXPECT_STREQ(vel_error_message(), c.message);
    EXPECT_EQ(vel_domain_get_failed_node(n.domain()), c.code ? x : nullptr);
    EXPECT_EQ(vel_domain_is_compiled(n.domain()), c.code == 0);
    if (c.code == 0) {
      EXPECT_EQ(Network::table(x), std::vector<double>(6, double{1.0f / 3}));
    }
  }
}

// The codes the table generator reads: pending evidence until propagated,
// the equilibrium of the last propagation, none after uncompiling.
TEST(Propagation, CodesEvidenceAndRetraction) {
  Network n;
  vel_node_t *a = n.add("A", 2, {}, {0.2, 0.8});
  vel_node_t *b = n.add("B", 2, {a}, {0.9, 0.1, 0.3, 0.7});
  vel_junction_tree_t *jt = vel_domain_get_junction_tree(n.domain());
  auto codes = [&] { return std::vector<int>{vel_domain_is_compiled(n.domain()), jt->equilibrium, jt->evidence_pending}; };
  ASSERT_EQ(vel_domain_compile(n.domain()), 0);
  EXPECT_EQ(codes(), (std::vector<int>{1, vel_equilibrium_sum, 0}));
  const std::vector<double> prior = Network::beliefs(a);

  ASSERT_EQ(vel_node_enter_evidence(b, 1), 0);
  EXPECT_EQ(codes(), (std::vector<int>{1, vel_equilibrium_sum, 1}));
  EXPECT_EQ(Network::beliefs(a), prior) << "results change only by propagation";
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_sum), 0);
  EXPECT_EQ(codes(), (std::vector<int>{1, vel_equilibrium_sum, 0}));
  EXPECT_EQ(b->evidence.state, 1);
  EXPECT_DOUBLE_EQ(vel_domain_get_probability_of_evidence(n.domain()), double{0.2f} * double{0.1f} + double{0.8f} * double{0.7f});

  ASSERT_EQ(vel_node_retract_evidence(b), 0);
  EXPECT_EQ(jt->evidence_pending, 1);
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_max), 0);
  EXPECT_EQ(codes(), (std::vector<int>{1, vel_equilibrium_max, 0}));
  EXPECT_EQ(b->evidence.state, -1);
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_sum), 0);
  EXPECT_EQ(Network::beliefs(a), prior);

  n.add("C", 2, {}, {0.5, 0.5});
  EXPECT_EQ(codes(), (std::vector<int>{0, vel_equilibrium_none, 0}));
  EXPECT_EQ(vel_domain_get_probability_of_evidence(n.domain()), -1.0);
  EXPECT_EQ(vel_error_code(), vel_error_not_compiled);
}

// Every max-marginal ties, yet only half the configurations are possible:
// B and C follow A's choice.
TEST(Propagation, MostProbableConfigurationBreaksTiesConsistently) {
  Network n;
  vel_node_t *a = n.add("A", 2, {}, {0.5, 0.5});
  vel_node_t *b = n.add("B", 2, {a}, not_a);
  vel_node_t *c = n.add("C", 2, {b}, {1, 0, 0, 1});
  ASSERT_EQ(vel_domain_compile(n.domain()), 0);
  EXPECT_EQ(vel_node_get_most_probable_state(a), -1);
  EXPECT_EQ(vel_error_code(), vel_error_not_propagated);
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_max), 0);
  EXPECT_EQ(Network::beliefs(b), (std::vector<double>{1, 1}));
  std::vector<int64_t> configuration;
  for (vel_node_t *node : {a, b, c}) configuration.push_back(vel_node_get_most_probable_state(node));
  EXPECT_EQ(configuration, (std::vector<int64_t>{0, 1, 1}));
  EXPECT_EQ(vel_domain_get_probability_of_configuration(n.domain()), 0.5);
}

// A model changed after compilation is generated again before propagating;
// a literal table is used as it now stands.
TEST(Propagation, UsesTablesChangedAfterCompilation) {
  Network n;
  vel_node_t *a = n.add("A", 2, {}, {0.5, 0.5});
  vel_node_t *b = n.add("B", 2, {a});
  Network::model(b, {}, {"Distribution(1, 3)"});
  ASSERT_EQ(vel_domain_compile(n.domain()), 0);
  EXPECT_EQ(Network::beliefs(b), (std::vector<double>{0.25, 0.75}));
  Network::model(b, {a}, {"Distribution(1, 1)", "Distribution(0, 1)"});
  const double table[] = {0.75, 0.25};
  ASSERT_EQ(vel_node_set_table_data(a, table, 2), 0);
  ASSERT_EQ(vel_domain_propagate(n.domain(), vel_equilibrium_sum), 0);
  EXPECT_EQ(Network::beliefs(b), (std::vector<double>{0.375, 0.625}));
}

}  // namespace
