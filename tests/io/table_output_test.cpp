// Tables out: the exact text and CSV layouts, and JSON documents that read
// back to the same floats.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "io/model_file.h"
#include "io/table_output.h"

namespace {

using vel::io::load_model_text;

const char *const plant = R"(
domain: plant
nodes:
  - {name: Season, type: labeled, states: [winter, "wet, \"cold\""], table: [0.1, 0.9]}
  - name: Temp
    type: interval
    states: [-inf, 0, 10.5]
    parents: [Season]
    table: [0.5, 0.5, 0.33333334, -0]
  - {name: Frost, type: boolean, table: [1, 0]}
  - name: Cost
    category: utility
    parents: [Season, Frost]
    table: [-40, 1e-05, 2.5, 100000000]
)";

vel_node_t *node(const vel::io::LoadedModel &model, const char *name) {
  return vel_domain_get_node_by_name(model.domain.get(), name);
}

TEST(TableOutput, ShortestTextReadsBackToTheSameFloat) {
  const struct {
    float value;
    const char *text;
  } cases[] = {{0.1f, "0.1"},           {-0.0f, "-0"},     {1e-5f, "1e-05"},
               {1.0f / 3, "0.33333334"}, {16777216.f, "16777216"},
               {std::numeric_limits<float>::infinity(), "inf"}, {-std::numeric_limits<float>::infinity(), "-inf"},
               {std::nanf(""), "nan"}};
  for (const auto &c : cases) EXPECT_EQ(vel::io::shortest_text(c.value), c.text);
  EXPECT_EQ(vel::io::json_number(std::nanf("")), "\"nan\"");
  EXPECT_EQ(vel::io::json_number(-std::numeric_limits<double>::infinity()), "\"-inf\"");
  EXPECT_EQ(vel::io::json_number(0.1), "0.1");
}

TEST(TableOutput, TextHasParentStatesAndNodeStatesAsHeadings) {
  const auto model = load_model_text(plant, "plant.yaml");
  std::ostringstream out;
  vel::io::write_table_text(out, node(model, "Temp"));
  vel::io::write_table_text(out, node(model, "Cost"));
  vel::io::write_table_text(out, node(model, "Frost"));
  EXPECT_EQ(out.str(),
            "Temp: conditional probability table\n"
            "Season      |   [-inf;0)  [0;10.5)\n"
            "------------+---------------------\n"
            "winter      |        0.5       0.5\n"
            "wet, \"cold\" | 0.33333334        -0\n"
            "Cost: utility table\n"
            "Season       Frost | utility\n"
            "-------------------+--------\n"
            "winter       false |     -40\n"
            "winter       true  |   1e-05\n"
            "wet, \"cold\"  false |     2.5\n"
            "wet, \"cold\"  true  |   1e+08\n"
            "Frost: conditional probability table\n"
            "false  true\n"
            "-----------\n"
            "    1     0\n");
}

TEST(TableOutput, CsvQuotesFieldsAsRfc4180) {
  const auto model = load_model_text(plant, "plant.yaml");
  std::ostringstream out;
  vel::io::write_table_csv(out, node(model, "Temp"));
  vel::io::write_table_csv(out, node(model, "Cost"));
  EXPECT_EQ(out.str(),
            "# Temp (conditional probability)\n"
            "Season,[-inf;0),[0;10.5)\n"
            "winter,0.5,0.5\n"
            "\"wet, \"\"cold\"\"\",0.33333334,-0\n"
            "# Cost (utility)\n"
            "Season,Frost,utility\n"
            "winter,false,-40\n"
            "winter,true,1e-05\n"
            "\"wet, \"\"cold\"\"\",false,2.5\n"
            "\"wet, \"\"cold\"\"\",true,1e+08\n");
}

TEST(TableOutput, JsonDocumentReadsBackToTheTables) {
  const auto model = load_model_text(plant, "plant.yaml");
  std::ostringstream out;
  const vel::io::GenerationError error{34, "Temp"};
  vel::io::write_json_document(out, model.name, {node(model, "Season"), node(model, "Cost")}, &error);
  const nlohmann::json document = nlohmann::json::parse(out.str());
  EXPECT_EQ(document["domain"], "plant");
  ASSERT_EQ(document["tables"].size(), 2u);
  const nlohmann::json &cost = document["tables"][1];
  EXPECT_EQ(cost["node"], "Cost");
  EXPECT_EQ(cost["table"], "utility");
  EXPECT_EQ(cost["nodes"], nlohmann::json({"Season", "Frost"}));
  const float *data = vel_table_get_data(vel_node_get_table(node(model, "Cost")));
  ASSERT_EQ(cost["data"].size(), 4u);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(static_cast<float>(cost["data"][i].get<double>()), data[i]) << i;
  EXPECT_EQ(document["error"], nlohmann::json::parse(R"({"code": 34, "name": "vel_error_invalid_expression", "node": "Temp"})"));
  // Entries are written as the shortest text of the float, not of its double.
  EXPECT_NE(out.str().find("\"data\": [0.1, 0.9]"), std::string::npos) << out.str();
}

TEST(TableOutput, JsonNegativeZeroAndEmptyRun) {
  const auto model = load_model_text(plant, "plant.yaml");
  std::ostringstream out;
  vel::io::write_json_document(out, "plant", {node(model, "Temp")}, nullptr);
  EXPECT_NE(out.str().find("0.33333334, -0]"), std::string::npos) << out.str();
  std::ostringstream empty;
  vel::io::write_json_document(empty, "plant", {}, nullptr);
  EXPECT_EQ(empty.str(), "{\n  \"domain\": \"plant\",\n  \"tables\": [],\n  \"error\": null\n}\n");
}

}  // namespace
