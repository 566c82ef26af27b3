// vel generate: selection, output formats, the log views and exit statuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "run_program.h"

namespace {

using testing::MatchesRegex;
using testing::StartsWith;
using vel_test::data_file;
using vel_test::run_vel;

std::vector<std::string> lines_of(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST(Generate, JsonHoldsTheTablesBeforeTheFailureAndTheError) {
  const auto run = run_vel({"generate", data_file("two_failures.yaml"), "--format", "json", "--no-log"});
  EXPECT_EQ(run.status, 1);
  const nlohmann::json document = nlohmann::json::parse(run.out);
  EXPECT_EQ(document["domain"], "rainy");
  ASSERT_EQ(document["tables"].size(), 1u);
  EXPECT_EQ(document["tables"][0]["node"], "Rain");
  EXPECT_EQ(document["tables"][0]["table"], "conditional probability");
  EXPECT_EQ(document["tables"][0]["nodes"], nlohmann::json({"Cloudy", "Rain"}));
  EXPECT_EQ(document["tables"][0]["data"], nlohmann::json::parse("[0.9, 0.1, 0.3, 0.7]"));
  EXPECT_EQ(document["error"],
            nlohmann::json::parse(R"({"code": 34, "name": "vel_error_invalid_expression", "node": "Umbrella"})"));
  EXPECT_THAT(run.err, StartsWith("vel: Umbrella: error 34 (vel_error_invalid_expression): "));
}

TEST(Generate, CsvOfNamedNodesInTheOrderGivenEachOnce) {
  const auto run = run_vel({"generate", data_file("two_failures.yaml"), "--node", "Rain", "--node", "Cloudy",
                            "--node", "Rain", "--format", "csv", "--no-log"});
  // Cloudy has a literal table and no model: the library refuses it (usage).
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "# Rain (conditional probability)\nCloudy,false,true\nfalse,0.9,0.1\ntrue,0.3,0.7\n");
  EXPECT_THAT(run.err, StartsWith("vel: Cloudy: error 1 (vel_error_usage): "));

  const auto twice = run_vel({"generate", data_file("two_failures.yaml"), "--node", "Rain", "--node", "Rain",
                              "--format", "json", "--no-log"});
  EXPECT_EQ(twice.status, 0);
  EXPECT_EQ(nlohmann::json::parse(twice.out)["tables"].size(), 1u);
}

TEST(Generate, UnknownNodeIsAUsageErrorBeforeAnythingIsGenerated) {
  const std::string file = data_file("two_failures.yaml");
  const auto run = run_vel({"generate", file, "--node", "Rain", "--node", "Nope", "--log", "-"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "vel: " + file + ": no node named 'Nope'\n");
  // An empty log path is a path that cannot be opened, not the default view.
  const auto empty_log = run_vel({"generate", file, "--log", ""});
  EXPECT_EQ(empty_log.status, 2);
  EXPECT_EQ(empty_log.out, "");
  EXPECT_EQ(empty_log.err, "vel: cannot open log file '': No such file or directory\n");
}

TEST(Generate, RealValuedFunctionNodeHasNoTable) {
  const auto run = run_vel({"generate", data_file("function_node.yaml"), "--node", "Volume", "--no-log"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, StartsWith("vel: Volume: error 1 (vel_error_usage): "));
  // Without --node the function node is not selected at all.
  const auto all = run_vel({"generate", data_file("function_node.yaml"), "--format", "json", "--no-log"});
  EXPECT_EQ(all.status, 0);
  EXPECT_EQ(nlohmann::json::parse(all.out)["tables"].size(), 0u);
}

TEST(Generate, LogFileKeepsTheOpenLineAndTheViewEndsIt) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = data_file("failing_utility.yaml");
  const std::string open_log = "Using model for Payoff to generate a utility table\n(1): evaluation failed";

  const auto to_file = run_vel({"generate", file, "--log", log});
  EXPECT_EQ(to_file.status, 1);
  EXPECT_EQ(vel_test::read_file(log), open_log);
  EXPECT_THAT(to_file.err, StartsWith("vel: Payoff: error 36 (vel_error_division_by_zero): "));

  for (const auto &arguments : {std::vector<std::string>{"generate", file},
                                std::vector<std::string>{"generate", file, "--log", "-"}}) {
    const auto view = run_vel(arguments);
    EXPECT_EQ(view.status, 1);
    EXPECT_THAT(view.err, StartsWith(open_log + "\nvel: Payoff: error 36 (vel_error_division_by_zero): "));
  }

  const auto quiet = run_vel({"generate", file, "--no-log"});
  EXPECT_EQ(quiet.status, 1);
  EXPECT_THAT(quiet.err, StartsWith("vel: Payoff: error 36"));
  EXPECT_EQ(lines_of(quiet.err).size(), 1u);
}

TEST(Generate, DefaultViewShowsTwentyLinesAndCountsTheRest) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = data_file("many_log_lines.yaml");
  const auto full = run_vel({"generate", file, "--log", log, "--format", "none"});
  ASSERT_EQ(full.status, 0);
  EXPECT_EQ(full.err, "");
  const std::vector<std::string> all = lines_of(vel_test::read_file(log));
  ASSERT_EQ(all.size(), 61u);
  EXPECT_EQ(all[0], "Using model for Wet to generate a conditional probability table");
  EXPECT_EQ(all[1], "(0,0): 0.0166667 (min=0.000666667, max=0.0326667)");

  const auto view = run_vel({"generate", file, "--format", "none"});
  EXPECT_EQ(view.status, 0);
  const std::vector<std::string> shown = lines_of(view.err);
  ASSERT_EQ(shown.size(), 21u);
  EXPECT_EQ(std::vector<std::string>(shown.begin(), shown.begin() + 20),
            std::vector<std::string>(all.begin(), all.begin() + 20));
  EXPECT_EQ(shown[20], "\xE2\x80\xA6 41 more log lines; use --log FILE to keep them all");

  const auto everything = run_vel({"generate", file, "--format", "none", "--log", "-"});
  EXPECT_EQ(lines_of(everything.err), all);
}

TEST(Generate, StatsReportEntriesAndTime) {
  const auto run = run_vel(
      {"generate", data_file("two_failures.yaml"), "--node", "Rain", "--stats", "--no-log", "--format", "none"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, MatchesRegex("Rain: 4 entries, [0-9]+\\.[0-9]{3} ms\n"));
}

TEST(Generate, FileThatCannotBeLoaded) {
  vel_test::TempDir directory;
  const std::string file = directory.write("bad.yaml", "nodes: [1, 2\n");
  const auto run = run_vel({"generate", file, "--format", "json"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, file + ":2:1: end of sequence flow not found\n");
  const auto missing = run_vel({"generate", directory.path() + "/none.yaml"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.err, directory.path() + "/none.yaml: No such file or directory\n");
}

}  // namespace
