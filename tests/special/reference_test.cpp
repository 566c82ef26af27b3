// Every special function and interval probability against the mpmath
// reference tables: relative error within 1e-12 plus the row's allowance.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "reference_cases.h"

namespace {

class ReferenceTable : public ::testing::TestWithParam<reference::Function> {};

TEST_P(ReferenceTable, WithinToleranceOnEveryRow) {
  const reference::Function &function = GetParam();
  const reference::Table table = reference::read_table(function.table);
  ASSERT_FALSE(table.rows.empty());

  struct Miss {
    double excess;  // error over tolerance
    std::string text;
  };
  std::vector<Miss> misses;
  for (const reference::Row &row : table.rows) {
    const double got = function.evaluate(row.inputs);
    const double error = reference::relative_error(got, row.value);
    const double tolerance = reference::base_tolerance + row.allowance;
    if (error <= tolerance) continue;
    std::ostringstream text;
    text.precision(17);
    text << "line " << row.line << ": " << reference::describe(table, row) << " got " << got << " want "
         << row.value << " (relative error " << error << ", tolerance " << tolerance << ")";
    misses.push_back({error / tolerance, text.str()});
  }
  std::sort(misses.begin(), misses.end(), [](const Miss &a, const Miss &b) { return a.excess > b.excess; });
  std::ostringstream worst;
  for (size_t i = 0; i < misses.size() && i < 8; ++i) worst << "\n  " << misses[i].text;
  EXPECT_TRUE(misses.empty()) << misses.size() << " of " << table.rows.size() << " rows of " << function.table
                              << " out of tolerance; the worst:" << worst.str();
}

INSTANTIATE_TEST_SUITE_P(SpecialFunctions, ReferenceTable, ::testing::ValuesIn(reference::functions()),
                         [](const ::testing::TestParamInfo<reference::Function> &info) {
                           return std::string(info.param.table);
                         });

}  // namespace
