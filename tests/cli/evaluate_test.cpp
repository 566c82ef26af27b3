// vel evaluate: function-node values in both modes, as text and as JSON.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run_program.h"

namespace {

using vel_test::data_file;
using vel_test::run_vel;

struct Case {
  const char *file;
  const char *node;
  const char *mode;
  const char *value;  // nullptr: the evaluation fails
  int code;
  const char *error_name;
  const char *message;
};

const char *const not_compiled = "a value from inference is needed but the domain is not compiled; use "
                                  "--propagate, or state results in an inference block";
const char *const invalid = "model without expressions, missing or unfitting expression, value "
                            "without a state, or operator not applicable to the node";

const Case cases[] = {
    {"pump.yaml", "Net", "inference", "2.5625", 0, nullptr, nullptr},
    {"pump.yaml", "Flow", "configured", "9", 0, nullptr, nullptr},
    {"failures.yaml", "ByValue", "inference", nullptr, 34, "vel_error_invalid_expression", invalid},
    {"failures.yaml", "Ratio", "configured", nullptr, 36, "vel_error_division_by_zero",
     "division by zero in a numeric expression"},
    {"failures.yaml", "Unset", "configured", nullptr, 34, "vel_error_invalid_expression", invalid},
    {"uncompiled.yaml", "Power", "inference", nullptr, 17, "vel_error_not_compiled", not_compiled},
    {"uncompiled.yaml", "Power", "configured", "200", 0, nullptr, nullptr},
    {"uncompiled.yaml", "Load", "configured", nullptr, 1, "vel_error_usage",
     "Load is not a real-valued function node"},
};

TEST(Evaluate, TextAndJsonInBothModes) {
  for (const Case &c : cases) {
    const std::string file = data_file(std::string("functions/") + c.file);
    const std::string label = file + " " + c.node + " " + c.mode;
    // Text runs leave inference, the default mode, unnamed.
    std::vector<std::string> text_arguments{"evaluate", file, "--node", c.node};
    if (std::string(c.mode) != "inference") text_arguments.insert(text_arguments.end(), {"--mode", c.mode});
    const auto text = run_vel(text_arguments);
    const auto json = run_vel({"evaluate", file, "--node", c.node, "--mode", c.mode, "--format", "json"});
    const std::string head = std::string("{\"node\": \"") + c.node + "\", \"mode\": \"" + c.mode + "\", ";
    if (c.value) {
      EXPECT_EQ(text.status, 0) << label;
      EXPECT_EQ(text.out, std::string(c.value) + "\n") << label;
      EXPECT_EQ(text.err + json.err, "") << label;
      EXPECT_EQ(json.status, 0) << label;
      EXPECT_EQ(json.out, head + "\"value\": " + c.value + ", \"error\": null}\n") << label;
      continue;
    }
    const std::string error = "error " + std::to_string(c.code) + " (" + c.error_name + "): ";
    EXPECT_EQ(text.status, 1) << label;
    EXPECT_EQ(text.out, "") << label;
    EXPECT_EQ(text.err, std::string("vel: ") + c.node + ": " + error + c.message + "\n") << label;
    EXPECT_EQ(json.status, 1) << label;
    EXPECT_EQ(json.out, head + "\"value\": null, \"error\": {\"code\": " + std::to_string(c.code) +
                            ", \"name\": \"" + c.error_name + "\", \"node\": \"" + c.node +
                            "\", \"message\": \"" + c.message + "\"}}\n")
        << label;
  }
}

TEST(Evaluate, UnknownNodeAndUnloadableFileAreUsageErrors) {
  const std::string file = data_file("functions/pump.yaml");
  const auto run = run_vel({"evaluate", file, "--node", "Nope", "--format", "json"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "vel: " + file + ": no node named 'Nope'\n");
  vel_test::TempDir directory;
  const std::string broken = directory.write("broken.yaml", "nodes: [");
  const auto load = run_vel({"evaluate", broken, "--node", "X", "--format", "json"});
  EXPECT_EQ(load.status, 2);
  const std::string message = broken + ":1:1: end of sequence flow not found";
  EXPECT_EQ(load.err, message + "\n");
  EXPECT_EQ(load.out, "{\"node\": \"X\", \"mode\": \"inference\", \"value\": null, \"error\": "
                      "{\"code\": null, \"name\": \"load_error\", \"node\": null, \"message\": \"" +
                          message + "\"}}\n");
}

}  // namespace
