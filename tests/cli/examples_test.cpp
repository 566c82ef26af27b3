// Every bundled example generates exactly its committed expected output:
// deterministic rows, Distribution and NoisyOR rows, rows averaged over the
// sample points of interval parents, and the parametric laws.
#include <gtest/gtest.h>

#include <filesystem>

#include "run_program.h"

namespace {

TEST(Examples, OutputEqualsTheCommittedExpectation) {
  const std::filesystem::path examples = std::filesystem::path(VEL_SOURCE_DIR) / "examples";
  int compared = 0;
  for (const auto &entry : std::filesystem::directory_iterator(examples)) {
    const std::filesystem::path model = entry.path();
    if (model.extension() != ".yaml") continue;
    std::filesystem::path expected = model;
    expected.replace_extension(".expected.txt");
    ASSERT_TRUE(std::filesystem::exists(expected)) << expected;
    const auto run = vel_test::run_vel({"generate", model.string(), "--no-log"});
    EXPECT_EQ(run.status, 0) << model << "\n" << run.err;
    EXPECT_EQ(run.out, vel_test::read_file(expected.string())) << model;
    ++compared;
  }
  EXPECT_GE(compared, 1);
}

}  // namespace
