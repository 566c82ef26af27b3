// Faults of the parametric distributions through the vel program: the log
// line each one writes (or none) and the error code it ends with (beside
// those the golden records hold).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "case_file.h"
#include "run_program.h"

namespace {

using testing::StartsWith;

std::string model_of(const vel_test::Case &fault) {
  std::string text = "domain: faults\nnodes:\n  - name: X\n    type: " + fault["type"] + "\n";
  if (!fault["states"].empty()) text += "    states: " + fault["states"] + "\n";
  return text + "    model:\n      nodes: []\n      expressions: [\"" + fault["expression"] + "\"]\n";
}

TEST(DistributionMessages, LogLineAndErrorCode) {
  const vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  for (const auto &fault : vel_test::read_cases("cli/data/distribution_faults.tsv")) {
    SCOPED_TRACE(fault["expression"]);
    const std::string file = directory.write("model.yaml", model_of(fault));
    const auto run = vel_test::run_vel({"generate", file, "--log", log, "--format", "none"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("vel: X: error " + fault["code"] + " ("));
    const std::string message = fault["message"].empty() ? "" : fault["message"] + "\n";
    EXPECT_EQ(vel_test::read_file(log),
              "Using model for X to generate a conditional probability table\n" + message);
  }
}

}  // namespace
