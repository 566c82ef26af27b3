// Files that once made the program loop, exhaust memory or overflow the
// stack: each must now end promptly with an answer or a clear refusal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "run_program.h"

namespace {

using testing::HasSubstr;
using vel_test::run_vel;
using vel_test::run_vel_within;

constexpr std::size_t quarter_gigabyte = 256u << 20;

// A labeled node with `count` states s0, s1, ...
std::string states(int count) {
  std::string list;
  for (int i = 0; i < count; ++i) list += (i ? ", s" : "s") + std::to_string(i);
  return "[" + list + "]";
}

TEST(Hardening, StrayCommaEndsAtOnce) {
#ifdef VEL_SANITIZED
  GTEST_SKIP() << "the address sanitizer reserves more address space than the limit";
#endif
  vel_test::TempDir directory;
  const std::string file = directory.write("comma.yaml", ",");
  const auto run = run_vel_within(quarter_gigabyte, {"check", file});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, file + ":1:1: unexpected text where a YAML document should start\n");
}

// A chain of 200,000 function nodes, each one more than the one before.
TEST(Hardening, LongChainOfFunctionNodesInAFile) {
  constexpr int length = 200000;
  std::string text = "inference: {}\nnodes:\n  - {name: L, type: continuous, mean: 1, variance: 0, configured: 2}\n"
                     "  - {name: F0, category: function, type: real, parents: [L], model: {nodes: [], expressions: [L]}}\n";
  for (int i = 1; i < length; ++i) {
    const std::string previous = "F" + std::to_string(i - 1);
    text += "  - {name: F" + std::to_string(i) + ", category: function, type: real, parents: [" + previous +
            "], model: {nodes: [], expressions: [" + previous + " + 1]}}\n";
  }
  vel_test::TempDir directory;
  const std::string file = directory.write("chain.yaml", text);
  const std::string last = "F" + std::to_string(length - 1);
  // The shortest text that reads back to the value.
  EXPECT_EQ(run_vel({"evaluate", file, "--node", last}).out, "2e+05\n");
  EXPECT_EQ(run_vel({"evaluate", file, "--node", last, "--mode", "configured"}).out,
            std::to_string(length + 1) + "\n");
}

// 100,000 nodes written children first, so that every parent comes later.
TEST(Hardening, ManyNodesWithParentsFurtherDown) {
  constexpr int count = 100000;
  std::string text = "nodes:\n";
  for (int i = 0; i < count; ++i) {
    text += "  - {name: N" + std::to_string(i) + ", type: boolean";
    text += i + 1 < count ? ", parents: [N" + std::to_string(i + 1) + "]}\n" : "}\n";
  }
  text += "  - {name: N" + std::to_string(count / 2) + ", type: boolean}\n";
  vel_test::TempDir directory;
  const std::string file = directory.write("nodes.yaml", text);
  const auto run = run_vel({"check", file});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, file + ":100002:12: duplicate node name 'N50000'\n");
}

// Tables far beyond memory are refused before anything is allocated: a short
// literal table of 2e8 entries, a model's table of 1e10.
TEST(Hardening, HugeTablesAreRefusedWithinAQuarterGigabyte) {
#ifdef VEL_SANITIZED
  GTEST_SKIP() << "the address sanitizer reserves more address space than the limit";
#endif
  std::string parents, declarations;
  for (int i = 0; i < 10; ++i) {
    declarations += "  - {name: P" + std::to_string(i) + ", type: labeled, states: " + states(10) + "}\n";
    if (i < 8) parents += (i ? ", P" : "P") + std::to_string(i);
  }
  vel_test::TempDir directory;
  const std::string literal = directory.write(
      "literal.yaml", "nodes:\n" + declarations + "  - {name: X, type: boolean, parents: [" + parents +
                          "], table: [0.5, 0.5]}\n");
  const auto loaded = run_vel_within(quarter_gigabyte, {"check", literal});
  EXPECT_EQ(loaded.status, 2);
  EXPECT_EQ(loaded.err, literal + ":12:73: the table of 'X' needs 200000000 entries; found 2\n");

  const std::string modelled = directory.write(
      "model.yaml", "nodes:\n" + declarations + "  - {name: X, type: boolean, parents: [" + parents +
                        ", P8, P9], model: {nodes: [], expressions: [true]}}\n");
  const auto generated = run_vel_within(quarter_gigabyte, {"generate", modelled, "--no-log"});
  EXPECT_EQ(generated.status, 1);
  EXPECT_EQ(generated.err, "vel: X: error 5 (vel_error_too_large): the table of X would have 20000000000 "
                           "entries, more than the limit of 2^32\n");
  EXPECT_THAT(run_vel_within(quarter_gigabyte, {"check", modelled}).err,
              HasSubstr("node X: error: the table would have 20000000000 entries (80000000000 bytes)"));
}

TEST(Hardening, SamplesPerIntervalHaveAnUpperBound) {
  vel_test::TempDir directory;
  const std::string file =
      directory.write("samples.yaml", "samples_per_interval: 18446744073709551615\nnodes: []\n");
  EXPECT_EQ(run_vel({"check", file}).err,
            file + ":1:23: samples_per_interval must be an integer from 1 to 1000000\n");
}

}  // namespace
