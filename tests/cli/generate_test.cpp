// vel generate: tables written to files, the log views and statistics (the
// transcript generate holds selection, formats and statuses).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run_program.h"

namespace {

using testing::MatchesRegex;
using vel_test::data_file;
using vel_test::run_vel;

TEST(Generate, CsvFilesPerTableInADirectory) {
  vel_test::TempDir directory;
  const std::string out = directory.path() + "/tables/new";
  const auto run = run_vel({"generate", data_file("two_failures.yaml"), "--node", "Rain", "--format", "csv",
                            "--output-dir", out, "--no-log"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(vel_test::read_file(out + "/Rain.csv"), "Cloudy,false,true\nfalse,0.9,0.1\ntrue,0.3,0.7\n");
}

// With --log FILE the log goes to the file as --log - shows it on standard
// error, and only the failure stays on standard error; the default view is
// the full one up to its twentieth line (the transcript log holds it). An
// open line ends the file without a newline.
TEST(Generate, LogFileHoldsWhatTheFullViewShows) {
  vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  for (const char *name : {"wet.yaml", "failing_utility.yaml", "many_log_lines.yaml"}) {
    const std::string file = data_file(name);
    const auto to_file = run_vel({"generate", file, "--format", "none", "--log", log});
    const auto full = run_vel({"generate", file, "--format", "none", "--log", "-"});
    const auto quiet = run_vel({"generate", file, "--format", "none", "--no-log"});
    const auto shown = run_vel({"generate", file, "--format", "none"});
    std::size_t cut = 0;
    for (int line = 0; line < 20 && full.err.find('\n', cut) != std::string::npos; ++line)
      cut = full.err.find('\n', cut) + 1;
    EXPECT_EQ(shown.err.substr(0, cut), full.err.substr(0, cut)) << name;
    EXPECT_EQ(to_file.status, quiet.status) << name;
    EXPECT_EQ(to_file.err, quiet.err) << name;
    const std::string written = vel_test::read_file(log);
    ASSERT_FALSE(written.empty()) << name;
    EXPECT_EQ(written.back() == '\n', std::string(name) != "failing_utility.yaml") << name;
    EXPECT_EQ(full.err, written + (written.back() == '\n' ? "" : "\n") + quiet.err) << name;
  }
}

TEST(Generate, StatsReportEntriesAndTime) {
  const auto run = run_vel(
      {"generate", data_file("two_failures.yaml"), "--node", "Rain", "--stats", "--no-log", "--format", "none"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, MatchesRegex("Rain: 4 entries, [0-9]+\\.[0-9]{3} ms\n"));
}

}  // namespace
