// Files that once made the program loop, exhaust memory or overflow the
// stack: each must now end promptly with an answer or a clear refusal (the
// hostile-input suite runs more such files under time and memory limits).
#include <gtest/gtest.h>

#include <string>

#include "run_program.h"

namespace {

using vel_test::run_vel;

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

}  // namespace
