// What the loader builds from files it accepts.
#include <gtest/gtest.h>

#include <string>

#include "io/model_file.h"

namespace {

using vel::io::load_model_text;

vel_node_t *node(const vel::io::LoadedModel &model, const char *name) {
  vel_node_t *found = vel_domain_get_node_by_name(model.domain.get(), name);
  EXPECT_NE(found, nullptr) << name;
  return found;
}

const char *const weather = R"yaml(
domain: weather
samples_per_interval: 7
nodes:
  - name: Season
    type: labeled
    states: [winter, summer]
    table: [0.25, 0.75]
  - name: Temp
    type: interval
    states: [-inf, 0, 10, .inf]
    parents: [Season]
    model:
      nodes: [Season]
      expressions: ["Normal(0, 25)", null]
  - name: Frost
    type: boolean
    parents: [Temp]
    model:
      nodes: []
      samples_per_interval: 3
  - name: Level
    type: numbered
    states: [1, 2.5, -.inf, 1e400]
  - name: Cost
    category: utility
    parents: [Season]
    table: [-1.5, 2]
)yaml";

TEST(Loader, BuildsNodesInFileOrderWithTheirStates) {
  const auto model = load_model_text(weather, "weather.yaml");
  EXPECT_EQ(model.name, "weather");
  std::string order;
  for (vel_node_t *n = vel_domain_get_first_node(model.domain.get()); n; n = vel_node_get_next(n))
    order += std::string(vel_node_get_name(n)) + " ";
  EXPECT_EQ(order, "Season Temp Frost Level Cost ");

  vel_node_t *temp = node(model, "Temp");
  EXPECT_EQ(vel_node_get_subtype(temp), vel_subtype_interval);
  ASSERT_EQ(vel_node_get_number_of_states(temp), 3u);
  EXPECT_EQ(vel_node_get_state_value(temp, 0), -1.7976931348623157e+308);
  EXPECT_EQ(vel_node_get_state_value(temp, 3), 1.7976931348623157e+308);
  // Infinities elsewhere are loaded as written; generation reports them.
  EXPECT_EQ(vel_node_get_state_value(node(model, "Level"), 2), -1.7976931348623157e+308);
  EXPECT_EQ(vel_node_get_state_value(node(model, "Level"), 3), 1.7976931348623157e+308);
  EXPECT_EQ(vel_node_get_category(node(model, "Cost")), vel_category_utility);
  EXPECT_EQ(vel_node_get_kind(node(model, "Cost")), vel_kind_stateless);
}

TEST(Loader, ModelsKeepMissingExpressionsAndSamples) {
  const auto model = load_model_text(weather, "weather.yaml");
  vel_model_t *temp = vel_node_get_model(node(model, "Temp"));
  ASSERT_NE(temp, nullptr);
  EXPECT_EQ(vel_model_get_size(temp), 2u);
  EXPECT_NE(vel_model_get_expression(temp, 0), nullptr);
  EXPECT_EQ(vel_model_get_expression(temp, 1), nullptr);
  EXPECT_EQ(vel_model_get_samples_per_interval(temp), 7u);  // the file's default
  EXPECT_NE(vel_model_get_tables_outdated(temp), 0);

  vel_model_t *frost = vel_node_get_model(node(model, "Frost"));
  ASSERT_NE(frost, nullptr);
  EXPECT_EQ(vel_model_get_samples_per_interval(frost), 3u);
  EXPECT_EQ(vel_model_get_expression(frost, 0), nullptr);  // unspecified: no expressions
}

TEST(Loader, LiteralTablesInStorageOrder) {
  const auto model = load_model_text(weather, "weather.yaml");
  vel_table_t *cost = vel_node_get_table(node(model, "Cost"));
  ASSERT_EQ(vel_table_get_size(cost), 2u);
  EXPECT_EQ(vel_table_get_data(cost)[0], -1.5f);
  EXPECT_EQ(vel_table_get_data(cost)[1], 2.0f);
  vel_table_t *season = vel_node_get_table(node(model, "Season"));
  EXPECT_EQ(vel_table_get_data(season)[1], 0.75f);
}

TEST(Loader, DomainNameDefaultsToTheFileStem) {
  const auto model = load_model_text("nodes: []\n", "dir/plant.model.yaml");
  EXPECT_EQ(model.name, "plant.model");
}

TEST(Loader, JsonDocumentsAreModelFiles) {
  const auto model = load_model_text(
      R"({"domain": "j", "nodes": [{"name": "T", "type": "interval", "states": ["-inf", 0, "inf"]}]})", "j.json");
  vel_node_t *t = node(model, "T");
  EXPECT_EQ(vel_node_get_state_value(t, 0), -vel_infinity);
  EXPECT_EQ(vel_node_get_state_value(t, 2), vel_infinity);
}

TEST(Loader, InferenceBlockDefaultsToAPropagatedDomain) {
  EXPECT_EQ(vel_domain_is_compiled(load_model_text("nodes: []\n", "m.yaml").domain.get()), 0);
  EXPECT_NE(vel_domain_is_compiled(load_model_text("inference: {}\nnodes: []\n", "m.yaml").domain.get()), 0);
  EXPECT_EQ(vel_domain_is_compiled(
                load_model_text("inference: {compiled: false}\nnodes: []\n", "m.yaml").domain.get()),
            0);
}

TEST(Loader, ResultsOfInferenceAndConfiguredValues) {
  const auto model = load_model_text(R"yaml(
inference: {}
nodes:
  - {name: S, type: labeled, states: [a, b, c], beliefs: [0.25, 0.5, 0.25], evidence: b}
  - {name: L, type: continuous, mean: 2.5, variance: 0.25, configured: 3}
  - {name: I, type: interval, states: [-inf, 0, 10], configured: -3}
  - {name: N, type: numbered, states: [1, 2, 4], configured: 4}
  - {name: U, category: utility, expected_utility: -12.5, variance: 4}
)yaml",
                                     "m.yaml");
  EXPECT_EQ(vel_node_get_belief(node(model, "S"), 1), 0.5);
  EXPECT_EQ(vel_node_get_mean(node(model, "L")), 2.5);
  EXPECT_EQ(vel_node_get_expected_utility(node(model, "U"), 0), -12.5f);
  EXPECT_EQ(vel_node_get_variance_of_utility(node(model, "U")), 4.0f);
}

TEST(Loader, ParentsAndModelNodesMayFollowInTheFile) {
  const auto model = load_model_text(R"yaml(
nodes:
  - name: B
    type: boolean
    parents: [A]
    model: {nodes: [A], expressions: ["A == \"x\"", "false"]}
  - {name: A, type: labeled, states: [x, y]}
)yaml",
                                     "m.yaml");
  vel_node_t *const *parents = vel_node_get_parents(node(model, "B"));
  ASSERT_NE(parents[0], nullptr);
  EXPECT_STREQ(vel_node_get_name(parents[0]), "A");
  EXPECT_EQ(parents[1], nullptr);
}

}  // namespace
