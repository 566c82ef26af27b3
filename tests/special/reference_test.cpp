// Every special function and interval probability against the mpmath tables
// under tests/special/data (written by scripts/reference/special_functions.py):
// relative error within a tolerance per function plus the row's allowance,
// and the worst and median error per function held to stored ceilings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "case_file.h"
#include "special/special.h"

using namespace vel::special;

namespace {

using Inputs = std::vector<double>;

struct Row {
  int line;       // in the CSV file, for messages
  Inputs inputs;  // the function's arguments, selectors first
  double value;   // the mpmath reference
  double allowance;          // from the condition of the exact function
  double formula_allowance;  // from the terms the prescribed formula subtracts
};

struct Table {
  std::vector<std::string> columns;  // names of the inputs
  std::vector<Row> rows;
};

// One function and its table; evaluate gives NaN when the function fails.
// A row passes within the function's tolerance, the level its rounding
// reaches, plus the row's allowance: 8 u times the condition number of the
// exact function in its inputs, which the table's generator computes.  Where
// the formula an interval function must follow subtracts close terms (a
// Weibull interval is the difference of two exponentials however close they
// are), a row may lose more; it must stay within the formula's own allowance,
// and the number of such rows is held to the count recorded here.  The worst
// error over the table must stay below its ceiling, so that a change which
// loses accuracy anywhere is seen.
struct Function {
  const char *table;
  double tolerance;
  double worst_ceiling;
  double (*evaluate)(const Inputs &in);
  int formula_losses = 0;  // rows beyond the exact function's allowance
};

constexpr double failed = std::numeric_limits<double>::quiet_NaN();
constexpr double median_ceiling = 2e-15;

// A negative interval probability signals failure.
double checked(double probability) { return probability < 0.0 ? failed : probability; }

const Function functions[] = {
    {"calerf", 1e-15, 1e-15, [](const Inputs &in) { return calerf(static_cast<uint32_t>(in[0]), in[1]); }},
    {"erf1", 5e-16, 1.5e-15, [](const Inputs &in) { return erf1(in[0]); }},
    {"erfc1", 4e-15, 3e-14, [](const Inputs &in) { return erfc1(static_cast<int>(in[0]), in[1]); }},
    {"Gamma", 1e-14, 1e-14, [](const Inputs &in) { return Gamma(in[0]); }},
    {"gamma_ratio", 3e-13, 1e-12,
     [](const Inputs &in) {
       double p, q;
       if (gamma_ratio(&p, &q, in[1], in[2]) != 0) return failed;
       return in[0] == 0 ? p : q;
     }},
    {"beta_ratio", 1e-14, 2e-12,
     [](const Inputs &in) {
       double w, w1;
       if (beta_ratio(&w, &w1, in[1], in[2], in[3], in[4]) != 0) return failed;
       return in[0] == 0 ? w : w1;
     }},
    {"Gauss_cdf", 4e-16, 2e-8, [](const Inputs &in) { return checked(_vel_Gauss_cdf(in[0], in[1], in[2], in[3])); }},
    {"normal_c", 4e-16, 2e-13, [](const Inputs &in) { return checked(_vel_normal_c(in[0])); }},
    {"LogNormal_cdf", 4e-16, 5e-14, [](const Inputs &in) { return checked(LogNormal_cdf(in[0], in[1], in[2], in[3])); }},
    {"Beta_cdf", 4e-16, 2e-12, [](const Inputs &in) { return checked(Beta_cdf(in[0], in[1], in[2], in[3], in[4], in[5])); }},
    {"Gamma_cdf", 2e-14, 3e-13, [](const Inputs &in) { return checked(Gamma_cdf(in[0], in[1], in[2], in[3])); }, 1},
    {"chi_square_c", 4e-15, 4e-14,
     [](const Inputs &in) { return checked(_vel_chi_square_c(in[0], static_cast<uint64_t>(in[1]))); }},
    // t / (t + d2) near 1 for a large x: the formula's argument, not the function, loses.
    {"F_distribution_c", 1e-14, 4e-12,
     [](const Inputs &in) { return checked(_vel_F_distribution_c(in[0], static_cast<uint64_t>(in[1]), in[2])); }, 4},
    // Near 0 the two exponentials are both close to 1: a probability of 1e-15
    // comes out of 1 - exp(-1e-15) with an error of 8e-4.
    {"Weibull_cdf", 4e-16, 1e-3, [](const Inputs &in) { return checked(Weibull_cdf(in[0], in[1], in[2], in[3])); }, 5},
    {"Exponential_cdf", 4e-16, 1e-10, [](const Inputs &in) { return checked(Exponential_cdf(in[0], in[1], in[2])); }, 2},
    {"Uniform_cdf", 4e-16, 4e-16, [](const Inputs &in) { return checked(Uniform_cdf(in[0], in[1], in[2], in[3])); }},
    {"Triangular_cdf", 4e-16, 4e-16, [](const Inputs &in) { return checked(Triangular_cdf(in[0], in[1], in[2], in[3], in[4])); }},
    {"Binomial_cdf", 1e-14, 2e-13, [](const Inputs &in) { return checked(_vel_Binomial_cdf(in[0], in[1], in[2], in[3], in[4])); }},
    {"Poisson_cdf", 1e-14, 2e-13, [](const Inputs &in) { return checked(_vel_Poisson_cdf(in[0], in[1], in[2])); }},
    {"NegativeBinomial_cdf", 1e-14, 2e-14,
     [](const Inputs &in) { return checked(NegativeBinomial_cdf(in[0], in[1], in[2], in[3], in[4])); }},
    {"Geometric_cdf", 1e-14, 1e-13, [](const Inputs &in) { return checked(Geometric_cdf(in[0], in[1], in[2], in[3])); }},
};

// The rows whose reference lies in [1e-300, largest double] in magnitude;
// an unreadable number fails the calling test.
Table read_table(const std::string &name) {
  Table table;
  for (const vel_test::Case &c : vel_test::read_cases("special/data/" + name + ".csv", ',')) {
    const std::vector<std::string> &names = c.names();
    const std::size_t inputs = std::find(names.begin(), names.end(), "reference") - names.begin();
    if (table.columns.empty()) table.columns.assign(names.begin(), names.begin() + inputs);
    std::vector<double> numbers;
    for (const std::string &field : c.fields()) {
      char *end = nullptr;
      numbers.push_back(std::strtod(field.c_str(), &end));
      EXPECT_TRUE(!field.empty() && *end == '\0') << name << ".csv line " << c.line() << ": " << field;
    }
    const double allowance = numbers[inputs + 1];
    const Row row{c.line(), Inputs(numbers.begin(), numbers.begin() + inputs), numbers[inputs], allowance,
                  numbers.size() > inputs + 2 ? numbers[inputs + 2] : allowance};
    const double magnitude = std::fabs(row.value);
    if (magnitude >= 1e-300 && magnitude <= DBL_MAX) table.rows.push_back(row);
  }
  return table;
}

// Relative error; infinite for a failed (NaN) result.
double relative_error(double got, double want) {
  return std::isnan(got) ? std::numeric_limits<double>::infinity() : std::fabs(got - want) / std::fabs(want);
}

std::string describe(const Table &table, const Row &row) {
  std::ostringstream text;
  text.precision(17);
  for (size_t i = 0; i < row.inputs.size(); ++i)
    text << (i ? ", " : "") << (i < table.columns.size() ? table.columns[i] : "?") << "=" << row.inputs[i];
  return text.str();
}

class ReferenceTable : public ::testing::TestWithParam<Function> {};

TEST_P(ReferenceTable, WithinToleranceOnEveryRow) {
  const Function &function = GetParam();
  const Table table = read_table(function.table);
  ASSERT_FALSE(table.rows.empty());
  int misses = 0, formula_losses = 0;
  for (const Row &row : table.rows) {
    const double got = function.evaluate(row.inputs);
    const double error = relative_error(got, row.value);
    if (error <= function.tolerance + row.allowance) continue;
    if (error <= function.tolerance + row.formula_allowance) {
      std::printf("%s.csv line %d: %s: relative error %.3g, within the formula's allowance\n", function.table,
                  row.line, describe(table, row).c_str(), error);
      ++formula_losses;
      continue;
    }
    // The first few misses are enough to see the pattern.
    if (++misses <= 8) {
      ADD_FAILURE() << function.table << ".csv line " << row.line << ": " << describe(table, row) << " got "
                    << got << " want " << row.value << " (relative error " << error << ")";
    }
  }
  EXPECT_EQ(misses, 0) << "rows of " << function.table << " out of tolerance";
  EXPECT_LE(formula_losses, function.formula_losses) << "rows of " << function.table << " that lose more than "
                                                      << "the exact function's condition allows";
}

INSTANTIATE_TEST_SUITE_P(SpecialFunctions, ReferenceTable, ::testing::ValuesIn(functions),
                         [](const ::testing::TestParamInfo<Function> &info) { return std::string(info.param.table); });

// Prints the worst and median error per function and holds them to their
// ceilings.
TEST(AccuracyReport, WorstAndMedianWithinCeilings) {
  std::printf("%-22s %6s %12s %12s  %s\n", "function", "rows", "median", "worst", "worst at");
  for (const Function &function : functions) {
    const Table table = read_table(function.table);
    if (table.rows.empty()) continue;
    std::vector<double> errors;
    const Row *worst = &table.rows.front();
    double worst_error = -1.0;
    for (const Row &row : table.rows) {
      errors.push_back(relative_error(function.evaluate(row.inputs), row.value));
      if (errors.back() > worst_error) {
        worst_error = errors.back();
        worst = &row;
      }
    }
    std::nth_element(errors.begin(), errors.begin() + errors.size() / 2, errors.end());
    const double median = errors[errors.size() / 2];
    std::printf("%-22s %6zu %12.3g %12.3g  %s\n", function.table, table.rows.size(), median, worst_error,
                describe(table, *worst).c_str());
    EXPECT_LE(worst_error, function.worst_ceiling) << function.table << " at " << describe(table, *worst);
    EXPECT_LE(median, median_ceiling) << function.table;
  }
}

}  // namespace
