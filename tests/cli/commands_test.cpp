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

// Each mistake at the item of the file it concerns, with the generator's own
// reason for what generation would refuse.
TEST(Check, FindsWhatGenerationWouldRefuseAndLikelyMistakes) {
  const std::string file = data_file("mistakes.yaml");
  const std::vector<std::string> findings = {
      "3:54: node Wear: warning: the table sums to 0.9, not 1",
      "4:33: node Soil: warning: duplicate state label \"dry\" (states 0 and 2)",
      "4:59: node Soil: warning: the table has a negative entry (-0.3)",
      "11:21: node Leak: warning: Wear has no state labeled \"hihg\"",
      "12:85: node Weights: error: Negative value in Distribution expression (state 1)",
      "13:83: node Arity: error: The number of arguments of a Distribution expression must match the "
      "number of states",
      "14:100: node Noisy: error: A NoisyOR distribution can only be applied to boolean nodes",
      "15:87: node Count: error: The Normal distribution can only be applied to interval nodes",
      "16:89: node Level: error: Truncation is not supported for the Poisson distribution",
      "17:93: node Spread: error: Variance for a Normal distribution must be positive (observed: -1)",
      "18:100: node Trials: error: the node's states do not cover a distribution's support, or do not "
      "suit a discrete distribution",
      "24:21: node Typed: error: No expression at index 0",
      "24:27: node Typed: error: Invalid expression at index 1: argument 1 of Normal must be a number, "
      "but `\"a\"' is a label",
  };
  std::string expected;
  for (const std::string &finding : findings) expected += file + ":" + finding + "\n";
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
