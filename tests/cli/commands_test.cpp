// Argument errors, help and version, and vel check.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run_program.h"

namespace {

using testing::HasSubstr;
using vel_test::data_file;
using vel_test::run_vel;

TEST(Arguments, EveryArgumentErrorExitsWithTwoAndLeavesStdoutEmpty) {
  const std::string file = data_file("two_failures.yaml");
  const std::vector<std::vector<std::string>> cases = {
      {},
      {"frobnicate"},
      {"generate"},
      {"generate", file, "extra"},
      {"generate", file, "--format", "xml"},
      {"generate", file, "--log", "x.log", "--no-log"},
      {"generate", file, "--node"},
      {"generate", file, "--colour"},
      {"evaluate", file},
      {"evaluate", file, "--node", "Volume", "--mode", "guess"},
  };
  for (const auto &arguments : cases) {
    const auto run = run_vel(arguments);
    EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(run.out, "") << testing::PrintToString(arguments);
    EXPECT_NE(run.err, "") << testing::PrintToString(arguments);
  }
}

TEST(Arguments, HelpAndVersion) {
  const auto help = run_vel({"generate", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("--no-log"));
  const auto version = run_vel({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, "vel 0.1.0\n");
}

TEST(Check, ReportsEveryProblemWithoutGenerating) {
  const std::string file = data_file("two_failures.yaml");
  const auto run = run_vel({"check", file});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, file + ": node Umbrella: expression at index 1 does not fit the node\n" + file +
                         ": node Wet: expression at index 2 is missing\n");
  const auto clean = run_vel({"check", data_file("failing_utility.yaml")});
  EXPECT_EQ(clean.status, 0);
  EXPECT_EQ(clean.err, "");

  // A parent's bad state values, reported once for its two children.
  vel_test::TempDir directory;
  const std::string states = directory.write("states.yaml", R"(
nodes:
  - {name: Dose, type: numbered, states: [1, 3, 2]}
  - {name: Effect, type: boolean, parents: [Dose], model: {nodes: [], expressions: ["Dose > 2"]}}
  - {name: Rash, type: boolean, parents: [Dose], model: {nodes: [], expressions: ["Dose > 1"]}}
)");
  const auto bad = run_vel({"check", states});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err, states + ": The state values of node Dose do not form an increasing sequence.\n");
}

}  // namespace
