// Every rejection of the model-file loader, with its exact message.
#include <gtest/gtest.h>

#include <string>

#include "io/model_file.h"

namespace {

struct Rejection {
  std::string text;
  std::string message;
};

// One node that most cases extend.
const std::string base = "nodes:\n  - name: A\n    type: labeled\n    states: [a0, a1]\n";

const Rejection rejections[] = {
    {"nodes: [1, 2\n", "model.yaml:2:1: end of sequence flow not found"},
    {",", "model.yaml:1:1: unexpected text where a YAML document should start"},
    {"- 1\n", "model.yaml:1:1: a model file must be a mapping with a 'nodes' list"},
    {"nodes: []\n---\nnodes: []\n", "model.yaml:3:1: a model file holds one YAML document"},
    {"domain: d\nnode: []\n", "model.yaml:2:1: unknown key 'node'"},
    {"domain: d\ndomain: e\nnodes: []\n", "model.yaml:2:1: duplicate key 'domain'"},
    {"domain: d\n", "model.yaml:1:1: missing key 'nodes'"},
    {"nodes: 3\n", "model.yaml:1:8: 'nodes' must be a list"},
    {"nodes: [A]\n", "model.yaml:1:9: a node must be a mapping"},
    {"nodes:\n  - {name: A, type: boolean, colour: red}\n", "model.yaml:2:30: unknown key 'colour'"},
    {"nodes:\n  - type: boolean\n", "model.yaml:2:5: missing key 'name'"},
    {"nodes:\n  - {name: 'true', type: boolean}\n", "model.yaml:2:12: invalid node name 'true'"},
    {base + "  - {name: A, type: boolean}\n", "model.yaml:5:12: duplicate node name 'A'"},
    {"nodes:\n  - {name: A, category: random, type: boolean}\n", "model.yaml:2:25: unknown category 'random'"},
    {"nodes:\n  - {name: A, type: integer}\n", "model.yaml:2:21: unknown type 'integer'"},
    {"nodes:\n  - {name: A}\n", "model.yaml:2:5: node 'A' needs a 'type'"},
    {"nodes:\n  - {name: U, category: utility, type: labeled}\n",
     "model.yaml:2:40: a utility node has type 'real'"},
    {"nodes:\n  - {name: R, type: real}\n", "model.yaml:2:21: type 'real' is for utility and function nodes only"},
    {"nodes:\n  - {name: C, category: decision, type: continuous}\n",
     "model.yaml:2:41: type 'continuous' is for chance nodes only"},
    {"nodes:\n  - {name: A, type: labeled}\n", "model.yaml:2:5: node 'A' needs 'states'"},
    {"nodes:\n  - {name: A, type: boolean, states: [x, y]}\n", "model.yaml:2:30: node 'A' takes no 'states'"},
    {"nodes:\n  - {name: A, type: labeled, states: []}\n", "model.yaml:2:38: 'states' must not be empty"},
    {"nodes:\n  - {name: N, type: numbered, states: [1, two]}\n",
     "model.yaml:2:43: a state value must be a number"},
    {"nodes:\n  - {name: I, type: interval, states: [0]}\n",
     "model.yaml:2:39: an interval node needs at least two bounds"},
    {"nodes:\n  - {name: I, type: interval, states: [0, .nan]}\n",
     "model.yaml:2:43: a state value must not be NaN"},
    {base + "  - {name: B, type: boolean, parents: [A, C]}\n", "model.yaml:5:43: unknown parent 'C'"},
    {base + "  - {name: B, type: boolean, parents: [B]}\n", "model.yaml:5:40: node 'B' cannot be its own parent"},
    {base + "  - {name: B, type: boolean, parents: [A, A]}\n", "model.yaml:5:43: duplicate parent 'A'"},
    {"nodes:\n  - {name: C, type: continuous}\n  - {name: B, type: boolean, parents: [C]}\n",
     "model.yaml:3:40: continuous parent 'C' of 'B': only function nodes may have continuous parents"},
    {"nodes:\n  - {name: A, type: boolean, parents: [C]}\n  - {name: B, type: boolean, parents: [A]}\n"
     "  - {name: C, type: boolean, parents: [B]}\n",
     "model.yaml:4:40: parent 'B' of 'C' closes a directed cycle"},
    {base + "    table: [0.5, 0.5]\n    model: {nodes: []}\n",
     "model.yaml:5:5: node 'A' has both a model and a table"},
    {base + "    model: {expressions: []}\n", "model.yaml:5:12: missing key 'nodes'"},
    {base + "  - name: B\n    type: boolean\n    model: {nodes: [A]}\n",
     "model.yaml:7:21: model node 'A' is not a discrete parent of 'B'"},
    {base + "  - name: B\n    type: boolean\n    parents: [A]\n    model: {nodes: [A, A]}\n",
     "model.yaml:8:24: duplicate model node 'A'"},
    {"nodes:\n  - {name: C, type: continuous}\n  - name: F\n    category: function\n    type: real\n"
     "    parents: [C]\n    model: {nodes: [C]}\n",
     "model.yaml:7:21: model node 'C' is not a discrete parent of 'F'"},
    {"nodes:\n  - {name: C, type: continuous, model: {nodes: []}}\n",
     "model.yaml:2:33: continuous node 'C' takes no model"},
    {base + "  - name: B\n    type: boolean\n    parents: [A]\n    model:\n      nodes: [A]\n"
            "      expressions: [\"true\"]\n",
     "model.yaml:10:7: 'expressions' of 'B' needs 2 entries, one per configuration of the model nodes; found 1"},
    {base + "  - name: B\n    type: boolean\n    model:\n      nodes: []\n      expressions: [\"Normal(0, 1\"]\n",
     "model.yaml:9:21: node B, expression 0: expected ',' or ')' after argument 2 of Normal at character 12"},
    {base + "    model: {nodes: [], expressions: [[1]]}\n",
     "model.yaml:5:38: an expression must be a string or null"},
    {base + "    model: {nodes: [], samples_per_interval: 0}\n",
     "model.yaml:5:46: samples_per_interval must be an integer from 1 to 1000000"},
    {"samples_per_interval: 18446744073709551615\nnodes: []\n",
     "model.yaml:1:23: samples_per_interval must be an integer from 1 to 1000000"},
    {base + "    table: [1]\n", "model.yaml:5:5: the table of 'A' needs 2 entries; found 1"},
    {base + "    table: [0.5, x]\n", "model.yaml:5:18: a table entry must be a number"},
    {base + "    table: [0.5, 1e300]\n",
     "model.yaml:5:18: a table entry must be a finite number in single-precision range"},
    {"nodes:\n  - {name: C, type: continuous, table: [1]}\n",
     "model.yaml:2:33: continuous node 'C' takes no table"},
    {base + "    beliefs: [1]\n", "model.yaml:5:5: 'beliefs' of 'A' needs 2 entries, one per state; found 1"},
    {base + "    beliefs: [1, -0.5]\n", "model.yaml:5:18: a belief must be a non-negative number"},
    {base + "    beliefs: [1, 1e39]\n", "model.yaml:5:18: a belief must be a number in single-precision range"},
    {"nodes:\n  - {name: C, type: continuous, mean: 1, variance: -1}\n",
     "model.yaml:2:52: 'variance' must not be negative"},
    {"nodes:\n  - {name: U, category: utility, expected_utility: 1e39}\n",
     "model.yaml:2:52: 'expected_utility' must be a number in single-precision range"},
    {base + "    evidence: a2\n", "model.yaml:5:15: 'evidence' 'a2' names no state of 'A'"},
    {base + "    evidence: {likelihood: [1]}\n",
     "model.yaml:5:16: 'likelihood' of 'A' needs 2 entries, one per state; found 1"},
    {base + "    evidence: {likelihood: [0.5, -1]}\n", "model.yaml:5:34: a likelihood must be a finite, non-negative number"},
    {base + "    evidence: {likelihood: [0, 0]}\n", "model.yaml:5:16: 'likelihood' of 'A' needs a positive entry"},
    {"inference: {}\n" + base + "    evidence: {likelihood: [1, 1]}\n",
     "model.yaml:6:15: with an 'inference' block, 'evidence' is the propagated evidence state, not a likelihood"},
    {"nodes:\n  - {name: I, type: interval, states: [0, 1, 2], configured: 2}\n",
     "model.yaml:2:62: 'configured' '2' names no state of 'I'"},
    {"nodes:\n  - {name: C, type: continuous, configured: high}\n",
     "model.yaml:2:45: 'configured' must be a number"},
    {base + "    mean: 1\n", "model.yaml:5:5: 'mean' applies to continuous nodes only"},
    {"inference: {equilibrium: partial}\nnodes: []\n", "model.yaml:1:26: unknown equilibrium 'partial'"},
    {"inference: {compiled: 1}\nnodes: []\n", "model.yaml:1:23: 'compiled' must be true or false"},
};

void PrintTo(const Rejection &rejection, std::ostream *out) { *out << rejection.message; }

class LoaderRejection : public testing::TestWithParam<Rejection> {};

TEST_P(LoaderRejection, ReportsFileLineAndColumn) {
  const Rejection &rejection = GetParam();
  try {
    vel::io::load_model_text(rejection.text, "model.yaml");
    FAIL() << "loaded: " << rejection.text;
  } catch (const vel::io::LoadError &error) {
    EXPECT_EQ(error.what(), rejection.message);
  }
}

INSTANTIATE_TEST_SUITE_P(AllRejections, LoaderRejection, testing::ValuesIn(rejections));

}  // namespace
