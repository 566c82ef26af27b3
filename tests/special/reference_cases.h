// The mpmath reference tables under tests/special/data and the functions
// they check, shared by the reference tests and the accuracy report.
#pragma once

#include <string>
#include <vector>

namespace reference {

struct Row {
  int line;                    // in the CSV file, for messages
  std::vector<double> inputs;  // the function's arguments, selectors first
  double value;                // the mpmath reference
  double allowance;            // relative, added to the base tolerance
};

// One function checked against one table; evaluate returns NaN when the
// function reports failure.
struct Function {
  const char *table;
  double (*evaluate)(const std::vector<double> &inputs);
};

constexpr double base_tolerance = 1e-12;

// Every checked function, in the order of the report.
const std::vector<Function> &functions();

struct Table {
  std::vector<std::string> columns;  // names of the inputs
  std::vector<Row> rows;
};

// Rows of tests/special/data/<name>.csv whose reference lies in
// [1e-300, largest double] in magnitude.  Throws std::runtime_error when the
// file is missing or malformed.
Table read_table(const std::string &name);

// Relative error; infinite for a failed (NaN) result.
double relative_error(double got, double want);

// "x1=..., x2=..." for messages.
std::string describe(const Table &table, const Row &row);

}  // namespace reference
