// Accuracy report: worst and median relative error of each function over its
// reference table.  Informational; it asserts nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "reference_cases.h"

namespace {

TEST(AccuracyReport, PrintsWorstAndMedian) {
  std::printf("%-22s %6s %12s %12s  %s\n", "function", "rows", "median", "worst", "worst at");
  for (const reference::Function &function : reference::functions()) {
    reference::Table table;
    try {
      table = reference::read_table(function.table);
    } catch (const std::exception &error) {
      std::printf("%-22s %s\n", function.table, error.what());
      continue;
    }
    if (table.rows.empty()) continue;
    std::vector<double> errors;
    const reference::Row *worst_row = &table.rows.front();
    double worst = -1.0;
    for (const reference::Row &row : table.rows) {
      const double error = reference::relative_error(function.evaluate(row.inputs), row.value);
      errors.push_back(error);
      if (error > worst) {
        worst = error;
        worst_row = &row;
      }
    }
    std::nth_element(errors.begin(), errors.begin() + errors.size() / 2, errors.end());
    std::printf("%-22s %6zu %12.3g %12.3g  %s\n", function.table, table.rows.size(), errors[errors.size() / 2],
                worst, reference::describe(table, *worst_row).c_str());
  }
}

}  // namespace
