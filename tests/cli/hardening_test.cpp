// Files that once made the program loop, exhaust memory or overflow the
// stack: each must now end promptly with an answer or a clear refusal (the
// hostile-input suite runs more such files under time and memory limits).
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

}  // namespace
