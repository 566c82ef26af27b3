// Argument errors, help and version, and vel check.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

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

// Each mistake at the item of the file it concerns, with the generator's own
// reason for what generation would refuse.
TEST(Check, FindsWhatGenerationWouldRefuseAndLikelyMistakes) {
  const std::string file = data_file("mistakes.yaml");
  // mistakes.findings: what vel check reports, one finding a line, each
  // after the file name.
  std::string expected;
  std::istringstream findings(vel_test::read_file(data_file("mistakes.findings")));
  for (std::string finding; std::getline(findings, finding);) expected += file + ":" + finding + "\n";
  for (const bool strict : {false, true}) {
    const auto run = strict ? run_vel({"check", file, "--strict"}) : run_vel({"check", file});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, expected);
  }

  vel_test::TempDir directory;
  // Off by 0.003: beyond rounding, though close to 1.
  const std::string warned =
      directory.write("warned.yaml", "nodes:\n  - {name: A, type: boolean, table: [0.5, 0.503]}\n");
  const std::string note = warned + ":2:30: node A: warning: the table sums to 1.003, not 1\n";
  EXPECT_EQ(run_vel({"check", warned}).status, 0);
  EXPECT_EQ(run_vel({"check", warned}).err, note);
  EXPECT_EQ(run_vel({"check", warned, "--strict"}).status, 1);

  // A parent's bad state values, at the parent's states; a table too large
  // to try.
  const std::string states = directory.write("states.yaml", R"(
nodes:
  - {name: Dose, type: numbered, states: [1, 3, 2]}
  - {name: Effect, type: boolean, parents: [Dose], model: {nodes: [], expressions: ["Dose > 2"]}}
  - {name: Rash, type: boolean, parents: [Dose, Effect], model: {nodes: [], expressions: ["Effect"]}}
)");
  const auto bad = run_vel({"check", states, "--max-entries", "10"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err, states + ":3:34: node Dose: error: The state values of node Dose do not form an "
                              "increasing sequence.\n" +
                         states + ":5:58: node Rash: error: the table would have 12 entries (48 bytes), "
                                  "more than --max-entries 10; not generated\n");
  EXPECT_EQ(run_vel({"check", data_file("failing_utility.yaml")}).err,
            data_file("failing_utility.yaml") +
                ":10:27: node Payoff: error: division by zero in a numeric expression\n");
}

}  // namespace
