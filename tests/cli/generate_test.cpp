// vel generate: tables written to files, the log views and statistics (the
// transcript generate.t holds selection, formats and statuses).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "run_program.h"

namespace {

using testing::MatchesRegex;
using vel_test::data_file;
using vel_test::run_vel;

std::vector<std::string> lines_of(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST(Generate, HelpNamesItsOptions) {
  const auto help = run_vel({"generate", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, testing::HasSubstr("--no-log"));
}

TEST(Generate, CsvFilesPerTableInADirectory) {
  vel_test::TempDir directory;
  const std::string out = directory.path() + "/tables/new";
  const auto run = run_vel({"generate", data_file("two_failures.yaml"), "--node", "Rain", "--format", "csv",
                            "--output-dir", out, "--no-log"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(vel_test::read_file(out + "/Rain.csv"), "Cloudy,false,true\nfalse,0.9,0.1\ntrue,0.3,0.7\n");
}

// The failure's explanation is the same whatever the log shows: with a log
// file, in the default view, on standard error, and without a log.
TEST(Generate, FailureSaysWhyWhateverTheLog) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = directory.write("wet.yaml", R"yaml(
nodes:
  - {name: Hours, type: interval, states: [0, 10, 20, 30]}
  - {name: Wet, type: labeled, states: [dry, wet], parents: [Hours],
     model: {nodes: [], samples_per_interval: 30,
             expressions: ["if(Hours > 25, \"dyr\", Distribution(Hours / 30, 1 - Hours / 30))"]}}
)yaml");
  const std::string failure =
      "vel: Wet: error 34 (vel_error_invalid_expression): Node Wet does not have a (unique) state labeled `dyr'\n";
  for (const auto &arguments :
       {std::vector<std::string>{"--log", log}, std::vector<std::string>{}, std::vector<std::string>{"--log", "-"},
        std::vector<std::string>{"--no-log"}}) {
    std::vector<std::string> all{"generate", file, "--format", "none"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const auto run = run_vel(all);
    EXPECT_EQ(run.status, 1);
    ASSERT_GE(run.err.size(), failure.size());
    EXPECT_EQ(run.err.substr(run.err.size() - failure.size()), failure) << testing::PrintToString(arguments);
  }
  // Every row diagnostic before the failure is in the log, none in the message.
  EXPECT_EQ(lines_of(vel_test::read_file(log)).size(), 1u + 2 * 2 + 1);
}

// A list of nulls is a model with missing expressions, not an unspecified one.
TEST(Generate, AllNullExpressionsAreMissing) {
  vel_test::TempDir directory;
  const std::string file = directory.write("null.yaml", R"(
nodes:
  - {name: C, type: numbered, states: [1, 2], model: {nodes: [], expressions: [null]}}
)");
  EXPECT_EQ(run_vel({"generate", file, "--no-log"}).err,
            "vel: C: error 34 (vel_error_invalid_expression): No expression at index 0\n");
}

TEST(Generate, LogFileKeepsTheOpenLineAndTheViewEndsIt) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = data_file("failing_utility.yaml");
  const std::string open_log = "Using model for Payoff to generate a utility table\n(1): evaluation failed";
  // Only the open evaluation line was written: the code's description says why.
  const std::string failure =
      "vel: Payoff: error 36 (vel_error_division_by_zero): division by zero in a numeric expression\n";

  const auto to_file = run_vel({"generate", file, "--log", log});
  EXPECT_EQ(to_file.status, 1);
  EXPECT_EQ(vel_test::read_file(log), open_log);
  EXPECT_EQ(to_file.err, failure);
  for (const auto &arguments : {std::vector<std::string>{"generate", file},
                                std::vector<std::string>{"generate", file, "--log", "-"}}) {
    const auto view = run_vel(arguments);
    EXPECT_EQ(view.status, 1);
    EXPECT_EQ(view.err, open_log + "\n" + failure);
  }
  const auto quiet = run_vel({"generate", file, "--no-log"});
  EXPECT_EQ(quiet.status, 1);
  EXPECT_EQ(quiet.err, failure);
}

TEST(Generate, DefaultViewShowsTwentyLinesAndCountsTheRest) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = data_file("many_log_lines.yaml");
  const auto full = run_vel({"generate", file, "--log", log, "--format", "none"});
  ASSERT_EQ(full.status, 0);
  EXPECT_EQ(full.out + full.err, "");
  const std::vector<std::string> all = lines_of(vel_test::read_file(log));
  ASSERT_EQ(all.size(), 61u);
  // Rows averaged over the sample points of the interval parent.
  EXPECT_EQ(all[1], "(0,0): 0.0166667 (min=0.000666667, max=0.0326667)");

  const std::vector<std::string> shown = lines_of(run_vel({"generate", file, "--format", "none"}).err);
  ASSERT_EQ(shown.size(), 21u);
  EXPECT_EQ(std::vector<std::string>(shown.begin(), shown.begin() + 20),
            std::vector<std::string>(all.begin(), all.begin() + 20));
  EXPECT_EQ(shown[20], "\xE2\x80\xA6 41 more log lines; use --log FILE to keep them all");
  EXPECT_EQ(lines_of(run_vel({"generate", file, "--format", "none", "--log", "-"}).err), all);
}

TEST(Generate, StatsReportEntriesAndTime) {
  const auto run = run_vel(
      {"generate", data_file("two_failures.yaml"), "--node", "Rain", "--stats", "--no-log", "--format", "none"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, MatchesRegex("Rain: 4 entries, [0-9]+\\.[0-9]{3} ms\n"));
}

}  // namespace
