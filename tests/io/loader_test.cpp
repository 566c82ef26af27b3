// What the loader builds from files it accepts, and the inference block read
// back through the library.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "case_file.h"
#include "io/model_file.h"
#include "loaded_model_access.h"

namespace {

using vel::io::load_model_text;

using vel_test::node;

TEST(Loader, NodesModelsAndStatesAsWritten) {
  const auto model = load_model_text(vel_test::test_file_text("io/data/weather.yaml"), "weather.yaml");
  EXPECT_EQ(model.name, "weather");
  // Infinities where the generator refuses them are loaded as written.
  EXPECT_EQ(vel_node_get_state_value(node(model, "Level"), 1), -1.7976931348623157e+308);
  EXPECT_EQ(vel_node_get_state_value(node(model, "Level"), 2), 1.7976931348623157e+308);
  // Parents and model nodes may be declared later in the file.
  vel_node_t *temp = node(model, "Temp");
  EXPECT_EQ(vel_node_get_parents(temp)[0], node(model, "Season"));

  vel_model_t *temp_model = vel_node_get_model(temp);
  ASSERT_EQ(vel_model_get_size(temp_model), 2u);
  EXPECT_NE(vel_model_get_expression(temp_model, 0), nullptr);
  EXPECT_EQ(vel_model_get_expression(temp_model, 1), nullptr);
  EXPECT_EQ(vel_model_get_samples_per_interval(temp_model), 7u);
  EXPECT_NE(vel_model_get_tables_outdated(temp_model), 0);
  vel_model_t *frost_model = vel_node_get_model(node(model, "Frost"));
  EXPECT_EQ(vel_model_get_samples_per_interval(frost_model), 3u);
  EXPECT_EQ(vel_model_get_expression(frost_model, 0), nullptr);

  EXPECT_EQ(vel_node_get_expected_utility(node(model, "Cost"), 0), -12.5f);
  EXPECT_EQ(vel_node_get_variance_of_utility(node(model, "Cost")), 4.0f);
}

// Without an inference block evidence waits to be entered; with one it is
// the stated evidence state as well.
TEST(Loader, EvidenceToEnterOrStated) {
  const std::string nodes = R"yaml(
nodes:
  - {name: A, type: labeled, states: [a, b], evidence: b}
  - {name: N, type: numbered, states: [1, 2, 4], evidence: {likelihood: [0.5, 0, 2]}}
)yaml";
  for (const bool stated : {false, true}) {
    const auto model = load_model_text(stated ? "inference: {}\n" + nodes.substr(0, nodes.find("  - {name: N")) : nodes, "m.yaml");
    EXPECT_EQ(model.inference_block, stated);
    ASSERT_EQ(model.evidence.size(), stated ? 1u : 2u);
    EXPECT_EQ(model.evidence[0].node, node(model, "A"));
    EXPECT_EQ(model.evidence[0].state, 1);
    if (!stated) {
      EXPECT_EQ(model.evidence[1].likelihood, (std::vector<double>{0.5, 0, 2}));
    }
  }
}

// Chance reads S's beliefs through probability, Observed takes E's state from
// its evidence (normal mode) or its beliefs (fast mode), and Total aggregates
// Item over Count's beliefs: no item half the time, so [0;1) gets
// 0.5 + 0.5 * 0.25.
const std::string inference_nodes = vel_test::test_file_text("io/data/inference_readers.yaml");

TEST(Loader, InferenceBlockDecidesWhichResultsCanBeRead) {
  const struct {
    const char *block;
    int code;
    double observed;
  } cases[] = {
      {"", vel_error_not_compiled, 0},
      {"inference: {compiled: false}\n", vel_error_not_compiled, 0},
      {"inference: {}\n", 0, 1},
      {"inference: {equilibrium: none}\n", vel_error_not_propagated, 0},
      {"inference: {equilibrium: max}\n", vel_error_computation, 0},
      {"inference: {evidence_mode: fast}\n", 0, 2},
      {"inference: {evidence_mode: fast, evidence_pending: true}\n", vel_error_computation, 0},
      {"inference: {evidence_pending: true}\n", 0, 1},
  };
  for (const auto &c : cases) {
    const auto model = load_model_text(std::string(c.block) + inference_nodes, "m.yaml");
    double chance = -1, observed = -1;
    EXPECT_EQ(vel_node_compute_value(node(model, "Chance"), vel_mode_inference, &chance), c.code) << c.block;
    EXPECT_EQ(vel_node_compute_value(node(model, "Observed"), vel_mode_inference, &observed), c.code) << c.block;
    EXPECT_EQ(vel_node_generate_table(node(model, "Total")), c.code) << c.block;
    if (c.code != 0) continue;
    EXPECT_EQ(chance, 0.25) << c.block;
    EXPECT_EQ(observed, c.observed) << c.block;
    const float *total = vel_table_get_data(vel_node_get_table(node(model, "Total")));
    for (int row = 0; row < 4; ++row) {
      EXPECT_EQ(total[2 * row], 0.625f) << c.block;
      EXPECT_EQ(total[2 * row + 1], 0.375f) << c.block;
    }
  }
}

}  // namespace
