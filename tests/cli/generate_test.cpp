// vel generate: selection, output formats, the log views and exit statuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(Generate, SelectionOutputAndStatus) {
  const std::string rainy = data_file("two_failures.yaml"), tank = data_file("function_node.yaml");
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string out;
    std::string err_start;
  } cases[] = {
      // Every node with a model in file order up to the failure; tables
      // generated before it stay in the document.
      {{rainy, "--format", "json"}, 1,
       "{\n"
       "  \"domain\": \"rainy\",\n"
       "  \"tables\": [\n"
       "    {\"node\": \"Rain\", \"table\": \"conditional probability\",\n"
       "     \"nodes\": [\"Cloudy\", \"Rain\"],\n"
       "     \"data\": [0.9, 0.1, 0.3, 0.7]}\n"
       "  ],\n"
       "  \"error\": {\"code\": 34, \"name\": \"vel_error_invalid_expression\", \"node\": \"Umbrella\"}\n"
       "}\n",
       "vel: Umbrella: error 34 (vel_error_invalid_expression): "},
      // Named nodes in the order given, each once; a node without a model is
      // the library's usage error.
      {{rainy, "--node", "Rain", "--node", "Rain", "--node", "Cloudy", "--format", "csv"}, 1,
       "# Rain (conditional probability)\nCloudy,false,true\nfalse,0.9,0.1\ntrue,0.3,0.7\n",
       "vel: Cloudy: error 1 (vel_error_usage): "},
      {{tank, "--node", "Volume"}, 1, "", "vel: Volume: error 1 (vel_error_usage): "},
      {{tank, "--format", "json"}, 0, "{\n  \"domain\": \"tank\",\n  \"tables\": [],\n  \"error\": null\n}\n", ""},
      // Usage errors before anything is generated.
      {{rainy, "--node", "Rain", "--node", "Nope", "--log", "-"}, 2, "",
       "vel: " + rainy + ": no node named 'Nope'\n"},
      {{rainy, "--log", ""}, 2, "", "vel: cannot open log file '': No such file or directory\n"},
      {{"/nonexistent/m.yaml", "--format", "json"}, 2, "", "/nonexistent/m.yaml: No such file or directory\n"},
  };
  for (const auto &c : cases) {
    std::vector<std::string> arguments{"generate"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    if (c.status != 2) arguments.push_back("--no-log");
    const auto run = run_vel(arguments);
    const std::string label = testing::PrintToString(c.arguments);
    EXPECT_EQ(run.status, c.status) << label;
    EXPECT_EQ(run.out, c.out) << label;
    // Usage errors are the whole of standard error; library failures start it.
    EXPECT_EQ(c.status == 2 ? run.err : run.err.substr(0, c.err_start.size()), c.err_start) << label;
  }
}

TEST(Generate, LogFileKeepsTheOpenLineAndTheViewEndsIt) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  const std::string file = data_file("failing_utility.yaml");
  const std::string open_log = "Using model for Payoff to generate a utility table\n(1): evaluation failed";
  const std::string failure = "vel: Payoff: error 36 (vel_error_division_by_zero): ";

  const auto to_file = run_vel({"generate", file, "--log", log});
  EXPECT_EQ(to_file.status, 1);
  EXPECT_EQ(vel_test::read_file(log), open_log);
  EXPECT_THAT(to_file.err, StartsWith(failure));
  for (const auto &arguments : {std::vector<std::string>{"generate", file},
                                std::vector<std::string>{"generate", file, "--log", "-"}}) {
    const auto view = run_vel(arguments);
    EXPECT_EQ(view.status, 1);
    EXPECT_THAT(view.err, StartsWith(open_log + "\n" + failure));
  }
  const auto quiet = run_vel({"generate", file, "--no-log"});
  EXPECT_EQ(quiet.status, 1);
  EXPECT_THAT(quiet.err, StartsWith(failure));
  EXPECT_EQ(lines_of(quiet.err).size(), 1u);
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
