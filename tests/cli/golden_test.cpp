// Regression records of the program, not independent reference values: its
// output on every model under tests/golden/models equals the goldens byte for
// byte (the JSON document and the complete log file with a log, the JSON
// document without one, and both exit statuses; scripts/record_goldens.sh
// records them), and every bundled example generates exactly its committed
// expected output.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "run_program.h"

namespace {

namespace fs = std::filesystem;

const fs::path golden_root = fs::path(VEL_SOURCE_DIR) / "tests" / "golden";

std::vector<std::string> golden_models() {
  std::vector<std::string> names;
  for (const auto &entry : fs::directory_iterator(golden_root / "models")) {
    if (entry.path().extension() == ".yaml") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string expected(const std::string &name, const std::string &suffix) {
  const fs::path path = golden_root / "expected" / (name + suffix);
  EXPECT_TRUE(fs::exists(path)) << path << ": record it with scripts/record_goldens.sh " << name;
  return vel_test::read_file(path.string());
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, OutputEqualsTheRecord) {
  const std::string name = GetParam();
  const std::string model = (golden_root / "models" / (name + ".yaml")).string();
  const vel_test::TempDir directory;
  const std::string log = directory.path() + "/log";

  const auto with_log = vel_test::run_vel({"generate", model, "--format", "json", "--log", log});
  const auto without_log = vel_test::run_vel({"generate", model, "--format", "json", "--no-log"});
  EXPECT_EQ("log: " + std::to_string(with_log.status) + "\nno-log: " +
                std::to_string(without_log.status) + "\n",
            expected(name, ".status"))
      << with_log.err;
  EXPECT_EQ(with_log.out, expected(name, ".json"));
  EXPECT_EQ(vel_test::read_file(log), expected(name, ".log"));
  EXPECT_EQ(without_log.out, expected(name, ".nolog.json"));
}

INSTANTIATE_TEST_SUITE_P(Models, Golden, testing::ValuesIn(golden_models()),
                         [](const testing::TestParamInfo<std::string> &info) { return info.param; });

TEST(Examples, OutputEqualsTheCommittedExpectation) {
  int compared = 0;
  for (const auto &entry : fs::directory_iterator(fs::path(VEL_SOURCE_DIR) / "examples")) {
    const fs::path model = entry.path();
    if (model.extension() != ".yaml") continue;
    fs::path expected = model;
    expected.replace_extension(".expected.txt");
    ASSERT_TRUE(fs::exists(expected)) << expected;
    const auto run = vel_test::run_vel({"generate", model.string(), "--no-log"});
    EXPECT_EQ(run.status, 0) << model << "\n" << run.err;
    EXPECT_EQ(run.out, vel_test::read_file(expected.string())) << model;
    ++compared;
  }
  EXPECT_GE(compared, 1);
}

}  // namespace
