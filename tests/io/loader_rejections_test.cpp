// Every rejection of the model-file loader, with its exact message.
#include <gtest/gtest.h>

#include <string>

#include "io/model_file.h"

namespace {

struct Rejection {
  std::string what;
  std::string text;
  std::string message;
};

// One node that most cases extend.
const std::string base = "nodes:\n  - name: A\n    type: labeled\n    states: [a0, a1]\n";

const Rejection rejections[] = {
    {"malformed YAML", "nodes: [1, 2\n", "model.yaml:2:1: end of sequence flow not found"},
    {"not a mapping", "- 1\n", "model.yaml:1:1: a model file must be a mapping with a 'nodes' list"},
    {"second document", "nodes: []\n---\nnodes: []\n", "model.yaml:3:1: a model file holds one YAML document"},
    {"unknown top-level key", "domain: d\nnode: []\n", "model.yaml:2:1: unknown key 'node'"},
    {"duplicate key", "domain: d\ndomain: e\nnodes: []\n", "model.yaml:2:1: duplicate key 'domain'"},
    {"missing nodes", "domain: d\n", "model.yaml:1:1: missing key 'nodes'"},
    {"nodes not a list", "nodes: 3\n", "model.yaml:1:8: 'nodes' must be a list"},
    {"node not a mapping", "nodes: [A]\n", "model.yaml:1:9: a node must be a mapping"},
    {"unknown node key", "nodes:\n  - {name: A, type: boolean, colour: red}\n",
     "model.yaml:2:30: unknown key 'colour'"},
    {"missing name", "nodes:\n  - type: boolean\n", "model.yaml:2:5: missing key 'name'"},
    {"invalid name", "nodes:\n  - {name: 2x, type: boolean}\n", "model.yaml:2:12: invalid node name '2x'"},
    {"name true", "nodes:\n  - {name: 'true', type: boolean}\n", "model.yaml:2:12: invalid node name 'true'"},
    {"duplicate name", base + "  - {name: A, type: boolean}\n", "model.yaml:5:12: duplicate node name 'A'"},
    {"unknown category", "nodes:\n  - {name: A, category: random, type: boolean}\n",
     "model.yaml:2:25: unknown category 'random'"},
    {"unknown type", "nodes:\n  - {name: A, type: integer}\n", "model.yaml:2:21: unknown type 'integer'"},
    {"missing type", "nodes:\n  - {name: A}\n", "model.yaml:2:5: node 'A' needs a 'type'"},
    {"utility of another type", "nodes:\n  - {name: U, category: utility, type: labeled}\n",
     "model.yaml:2:40: a utility node has type 'real'"},
    {"real chance node", "nodes:\n  - {name: R, type: real}\n",
     "model.yaml:2:21: type 'real' is for utility and function nodes only"},
    {"continuous decision", "nodes:\n  - {name: C, category: decision, type: continuous}\n",
     "model.yaml:2:41: type 'continuous' is for chance nodes only"},
    {"labeled without states", "nodes:\n  - {name: A, type: labeled}\n", "model.yaml:2:5: node 'A' needs 'states'"},
    {"boolean with states", "nodes:\n  - {name: A, type: boolean, states: [x, y]}\n",
     "model.yaml:2:30: node 'A' takes no 'states'"},
    {"empty states", "nodes:\n  - {name: A, type: labeled, states: []}\n",
     "model.yaml:2:38: 'states' must not be empty"},
    {"labels for a numbered node", "nodes:\n  - {name: N, type: numbered, states: [1, two]}\n",
     "model.yaml:2:43: a state value must be a number"},
    {"one bound", "nodes:\n  - {name: I, type: interval, states: [0]}\n",
     "model.yaml:2:39: an interval node needs at least two bounds"},
    {"NaN bound", "nodes:\n  - {name: I, type: interval, states: [0, .nan]}\n",
     "model.yaml:2:43: a state value must not be NaN"},
    {"unknown parent", base + "  - {name: B, type: boolean, parents: [A, C]}\n", "model.yaml:5:43: unknown parent 'C'"},
    {"self parent", base + "  - {name: B, type: boolean, parents: [B]}\n",
     "model.yaml:5:40: node 'B' cannot be its own parent"},
    {"duplicate parent", base + "  - {name: B, type: boolean, parents: [A, A]}\n",
     "model.yaml:5:43: duplicate parent 'A'"},
    {"continuous parent of a chance node",
     "nodes:\n  - {name: C, type: continuous}\n  - {name: B, type: boolean, parents: [C]}\n",
     "model.yaml:3:40: continuous parent 'C' of 'B': only function nodes may have continuous parents"},
    {"cycle",
     "nodes:\n  - {name: A, type: boolean, parents: [C]}\n  - {name: B, type: boolean, parents: [A]}\n"
     "  - {name: C, type: boolean, parents: [B]}\n",
     "model.yaml:4:40: parent 'B' of 'C' closes a directed cycle"},
    {"model and table", base + "    table: [0.5, 0.5]\n    model: {nodes: []}\n",
     "model.yaml:5:5: node 'A' has both a model and a table"},
    {"model without nodes", base + "    model: {expressions: []}\n", "model.yaml:5:12: missing key 'nodes'"},
    {"model node not a parent", base + "  - name: B\n    type: boolean\n    model: {nodes: [A]}\n",
     "model.yaml:7:21: model node 'A' is not a discrete parent of 'B'"},
    {"model node twice", base + "  - name: B\n    type: boolean\n    parents: [A]\n    model: {nodes: [A, A]}\n",
     "model.yaml:8:24: duplicate model node 'A'"},
    {"continuous model node",
     "nodes:\n  - {name: C, type: continuous}\n  - name: F\n    category: function\n    type: real\n"
     "    parents: [C]\n    model: {nodes: [C]}\n",
     "model.yaml:7:21: model node 'C' is not a discrete parent of 'F'"},
    {"model on a continuous node", "nodes:\n  - {name: C, type: continuous, model: {nodes: []}}\n",
     "model.yaml:2:33: continuous node 'C' takes no model"},
    {"too few expressions",
     base + "  - name: B\n    type: boolean\n    parents: [A]\n    model:\n      nodes: [A]\n"
          "      expressions: [\"true\"]\n",
     "model.yaml:10:7: 'expressions' of 'B' needs 2 entries, one per configuration of the model nodes; found 1"},
    {"expression syntax error",
     base + "  - name: B\n    type: boolean\n    model:\n      nodes: []\n      expressions: [\"Normal(0, 1\"]\n",
     "model.yaml:9:21: node B, expression 0: expected ',' or ')' after argument 2 of Normal at character 12"},
    {"expression not a string", base + "    model: {nodes: [], expressions: [[1]]}\n",
     "model.yaml:5:38: an expression must be a string or null"},
    {"samples below 1", base + "    model: {nodes: [], samples_per_interval: 0}\n",
     "model.yaml:5:46: samples_per_interval must be an integer of at least 1"},
    {"file samples not an integer", "samples_per_interval: 2.5\nnodes: []\n",
     "model.yaml:1:23: samples_per_interval must be an integer of at least 1"},
    {"table of the wrong length", base + "    table: [1]\n", "model.yaml:5:5: the table of 'A' needs 2 entries; found 1"},
    {"table entry not a number", base + "    table: [0.5, x]\n", "model.yaml:5:18: a table entry must be a number"},
    {"table entry beyond float", base + "    table: [0.5, 1e300]\n",
     "model.yaml:5:18: a table entry must be a finite number in single-precision range"},
    {"table on a continuous node", "nodes:\n  - {name: C, type: continuous, table: [1]}\n",
     "model.yaml:2:33: continuous node 'C' takes no table"},
    {"beliefs of the wrong length", base + "    beliefs: [1]\n",
     "model.yaml:5:5: 'beliefs' of 'A' needs 2 entries, one per state; found 1"},
    {"negative belief", base + "    beliefs: [1, -0.5]\n", "model.yaml:5:18: a belief must be a non-negative number"},
    {"belief beyond float", base + "    beliefs: [1, 1e39]\n",
     "model.yaml:5:18: a belief must be a number in single-precision range"},
    {"negative variance", "nodes:\n  - {name: C, type: continuous, mean: 1, variance: -1}\n",
     "model.yaml:2:52: 'variance' must not be negative"},
    {"expected utility beyond float", "nodes:\n  - {name: U, category: utility, expected_utility: 1e39}\n",
     "model.yaml:2:52: 'expected_utility' must be a number in single-precision range"},
    {"evidence naming no state", base + "    evidence: a2\n", "model.yaml:5:15: 'evidence' 'a2' names no state of 'A'"},
    {"configured outside every interval", "nodes:\n  - {name: I, type: interval, states: [0, 1, 2], configured: 2}\n",
     "model.yaml:2:62: 'configured' '2' names no state of 'I'"},
    {"configured number not a number", "nodes:\n  - {name: C, type: continuous, configured: high}\n",
     "model.yaml:2:45: 'configured' must be a number"},
    {"beliefs of a continuous node", "nodes:\n  - {name: C, type: continuous, beliefs: [1]}\n",
     "model.yaml:2:33: 'beliefs' applies to discrete nodes only"},
    {"mean of a discrete node", base + "    mean: 1\n", "model.yaml:5:5: 'mean' applies to continuous nodes only"},
    {"unknown equilibrium", "inference: {equilibrium: partial}\nnodes: []\n",
     "model.yaml:1:26: unknown equilibrium 'partial'"},
    {"compiled not a truth value", "inference: {compiled: 1}\nnodes: []\n",
     "model.yaml:1:23: 'compiled' must be true or false"},
};

void PrintTo(const Rejection &rejection, std::ostream *out) { *out << rejection.what; }

class LoaderRejection : public testing::TestWithParam<Rejection> {};

TEST_P(LoaderRejection, ReportsFileLineAndColumn) {
  const Rejection &rejection = GetParam();
  try {
    vel::io::load_model_text(rejection.text, "model.yaml");
    FAIL() << "loaded: " << rejection.what;
  } catch (const vel::io::LoadError &error) {
    EXPECT_EQ(error.what(), rejection.message) << rejection.what;
  }
}

INSTANTIATE_TEST_SUITE_P(AllRejections, LoaderRejection, testing::ValuesIn(rejections));

TEST(LoaderFile, UnreadableFileNamesTheReason) {
  const std::string path = "/nonexistent/model.yaml";
  try {
    vel::io::load_model_file(path);
    FAIL();
  } catch (const vel::io::LoadError &error) {
    EXPECT_EQ(std::string(error.what()), path + ": No such file or directory");
  }
  try {
    vel::io::load_model_file("/tmp");
    FAIL();
  } catch (const vel::io::LoadError &error) {
    EXPECT_EQ(std::string(error.what()), "/tmp: Is a directory");
  }
}

}  // namespace
