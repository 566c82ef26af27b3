// The parametric distributions through the vel program: the tables generated
// from the model files under tests/cli/data/distributions, against the values
// that scripts/reference/distribution_tables.py computed for them with mpmath;
// and the faults, each with the log line it writes (or none) and the error
// code it ends with (beside those the golden records hold).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "case_file.h"
#include "run_program.h"

namespace {

using Tables = std::map<std::string, std::vector<double>>;  // node -> entries

// expected.csv: file,node,entry,value with the entries of each table in order.
std::map<std::string, Tables> read_expected() {
  std::map<std::string, Tables> expected;
  for (const auto &c : vel_test::read_cases("cli/data/distributions/expected.csv", ','))
    expected[c["file"]][c["node"]].push_back(c.number("value"));
  return expected;
}

Tables generate(const std::string &file) {
  const auto run = vel_test::run_vel(
      {"generate", vel_test::data_file("distributions/" + file), "--format", "json", "--no-log"});
  EXPECT_EQ(run.status, 0) << file << "\n" << run.err;
  Tables tables;
  if (run.status != 0) return tables;
  const nlohmann::json document = nlohmann::json::parse(run.out);
  for (const auto &table : document["tables"]) {
    std::vector<double> &data = tables[table["node"].get<std::string>()];
    for (const auto &entry : table["data"]) {
      data.push_back(entry.is_number() ? entry.get<double>() : std::nan(""));
    }
  }
  return tables;
}

// Entries are single-precision: a little over one float ulp, or an absolute
// 1e-12 for masses that a float cannot hold in full.
bool close(double got, double want) {
  const double error = std::fabs(got - want);
  return error <= 1e-12 || error <= 2e-7 * std::fabs(want);
}

class DistributionTables : public testing::TestWithParam<std::string> {};

TEST_P(DistributionTables, EqualTheMpmathReference) {
  const std::string file = GetParam();
  const Tables expected = read_expected()[file];
  ASSERT_FALSE(expected.empty()) << file;
  const Tables got = generate(file);
  ASSERT_EQ(got.size(), expected.size()) << file;
  for (const auto &[node, want] : expected) {
    SCOPED_TRACE(file + " node " + node);
    ASSERT_EQ(got.count(node), 1u);
    const std::vector<double> &entries = got.at(node);
    ASSERT_EQ(entries.size(), want.size());
    for (size_t i = 0; i < want.size(); ++i) {
      EXPECT_TRUE(close(entries[i], want[i]))
          << "entry " << i << ": got " << entries[i] << ", reference " << want[i];
    }
  }
}

// continuous: every continuous law, truncated, untruncated and nested, on
// states with infinite first and last bounds; discrete: the counting laws on
// numbered and interval nodes, zero-width states among them; parents: rows
// averaged over the sample points of interval parents.
INSTANTIATE_TEST_SUITE_P(Files, DistributionTables,
                         testing::Values("continuous.yaml", "discrete.yaml", "parents.yaml"),
                         [](const testing::TestParamInfo<std::string> &info) {
                           return info.param.substr(0, info.param.find('.'));
                         });

std::string model_of(const vel_test::Case &fault) {
  std::string text = "domain: faults\nnodes:\n  - name: X\n    type: " + fault["type"] + "\n";
  if (!fault["states"].empty()) text += "    states: " + fault["states"] + "\n";
  return text + "    model:\n      nodes: []\n      expressions: [\"" + fault["expression"] + "\"]\n";
}

TEST(DistributionFaults, LogLineAndErrorCode) {
  const vel_test::TempDir directory;
  const std::string log = directory.path() + "/log.txt";
  for (const auto &fault : vel_test::read_cases("cli/data/distribution_faults.tsv")) {
    SCOPED_TRACE(fault["expression"]);
    const std::string file = directory.write("model.yaml", model_of(fault));
    const auto run = vel_test::run_vel({"generate", file, "--log", log, "--format", "none"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, testing::StartsWith("vel: X: error " + fault["code"] + " ("));
    const std::string message = fault["message"].empty() ? "" : fault["message"] + "\n";
    EXPECT_EQ(vel_test::read_file(log),
              "Using model for X to generate a conditional probability table\n" + message);
  }
}

}  // namespace
