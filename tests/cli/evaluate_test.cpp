// vel evaluate: function-node values in both modes, as text and as JSON.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run_program.h"

namespace {

using testing::StartsWith;
using vel_test::data_file;
using vel_test::run_vel;

struct Case {
  const char *file;
  const char *node;
  const char *mode;
  const char *value;  // nullptr: the evaluation fails
  int code;
  const char *error_name;
};

std::vector<std::string> arguments(const Case &c, const char *format) {
  return {"evaluate", data_file(std::string("functions/") + c.file), "--node", c.node,
          "--mode", c.mode, "--format", format};
}

std::string json(const Case &c) {
  const std::string head = std::string("{\"node\": \"") + c.node + "\", \"mode\": \"" + c.mode + "\", ";
  if (c.value) return head + "\"value\": " + c.value + ", \"error\": null}\n";
  return head + "\"value\": null, \"error\": {\"code\": " + std::to_string(c.code) + ", \"name\": \"" +
         c.error_name + "\", \"node\": \"" + c.node + "\"}}\n";
}

const Case cases[] = {
    {"pump.yaml", "Net", "inference", "2.5625", 0, nullptr},
    {"pump.yaml", "Margin", "inference", "-7.4375", 0, nullptr},
    {"pump.yaml", "Flow", "configured", "9", 0, nullptr},
    {"pump.yaml", "Net", "configured", "7.5", 0, nullptr},
    {"failures.yaml", "ByValue", "inference", nullptr, 34, "vel_error_invalid_expression"},
    {"failures.yaml", "ByState", "inference", "0", 0, nullptr},
    {"failures.yaml", "ByState", "configured", nullptr, 34, "vel_error_invalid_expression"},
    {"failures.yaml", "Ratio", "configured", nullptr, 36, "vel_error_division_by_zero"},
    {"failures.yaml", "Unset", "configured", nullptr, 34, "vel_error_invalid_expression"},
    {"uncompiled.yaml", "Power", "inference", nullptr, 17, "vel_error_not_compiled"},
    {"uncompiled.yaml", "Power", "configured", "200", 0, nullptr},
    {"uncompiled.yaml", "Load", "configured", nullptr, 1, "vel_error_usage"},
};

TEST(EvaluateFunctions, TextOutput) {
  for (const Case &c : cases) {
    const auto run = run_vel(arguments(c, "text"));
    const std::string label = std::string(c.file) + " " + c.node + " " + c.mode;
    if (c.value) {
      EXPECT_EQ(run.status, 0) << label;
      EXPECT_EQ(run.out, std::string(c.value) + "\n") << label;
      EXPECT_EQ(run.err, "") << label;
    } else {
      EXPECT_EQ(run.status, 1) << label;
      EXPECT_EQ(run.out, "") << label;
      EXPECT_THAT(run.err, StartsWith(std::string("vel: ") + c.node + ": error " +
                                      std::to_string(c.code) + " (" + c.error_name + "): "))
          << label;
    }
  }
}

TEST(EvaluateFunctions, JsonOutput) {
  for (const Case &c : cases) {
    const auto run = run_vel(arguments(c, "json"));
    const std::string label = std::string(c.file) + " " + c.node + " " + c.mode;
    EXPECT_EQ(run.status, c.value ? 0 : 1) << label;
    EXPECT_EQ(run.out, json(c)) << label;
  }
}

TEST(EvaluateFunctions, InferenceIsTheDefaultMode) {
  const auto run = run_vel({"evaluate", data_file("functions/pump.yaml"), "--node", "Net"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "2.5625\n");
}

}  // namespace
