#include "reference_cases.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "special/special.h"

namespace reference {
namespace {

constexpr double failed = std::numeric_limits<double>::quiet_NaN();

using Inputs = std::vector<double>;

double gamma_ratio_tail(const Inputs &in) {
  double p, q;
  if (gamma_ratio(&p, &q, in[1], in[2]) != 0) return failed;
  return in[0] == 0 ? p : q;
}

double beta_ratio_tail(const Inputs &in) {
  double w, w1;
  if (beta_ratio(&w, &w1, in[1], in[2], in[3], in[4]) != 0) return failed;
  return in[0] == 0 ? w : w1;
}

// A negative interval probability signals failure.
double checked(double probability) { return probability < 0.0 ? failed : probability; }

std::string path_of(const std::string &table) {
  return std::string(VEL_SOURCE_DIR) + "/tests/special/data/" + table + ".csv";
}

std::vector<std::string> split(const std::string &line) {
  std::vector<std::string> fields;
  std::stringstream stream(line);
  std::string field;
  while (std::getline(stream, field, ',')) fields.push_back(field);
  return fields;
}

double parse(const std::string &text, const std::string &table, int line) {
  char *end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0')
    throw std::runtime_error(table + ".csv line " + std::to_string(line) + ": bad number '" + text + "'");
  return value;
}

}  // namespace

const std::vector<Function> &functions() {
  static const std::vector<Function> all = {
      {"calerf", [](const Inputs &in) { return calerf(static_cast<uint32_t>(in[0]), in[1]); }},
      {"erf1", [](const Inputs &in) { return erf1(in[0]); }},
      {"erfc1", [](const Inputs &in) { return erfc1(static_cast<int>(in[0]), in[1]); }},
      {"Gamma", [](const Inputs &in) { return Gamma(in[0]); }},
      {"gamma_ratio", gamma_ratio_tail},
      {"beta_ratio", beta_ratio_tail},
      {"Gauss_cdf", [](const Inputs &in) { return checked(_vel_Gauss_cdf(in[0], in[1], in[2], in[3])); }},
      {"normal_c", [](const Inputs &in) { return checked(_vel_normal_c(in[0])); }},
      {"LogNormal_cdf", [](const Inputs &in) { return checked(LogNormal_cdf(in[0], in[1], in[2], in[3])); }},
      {"Beta_cdf",
       [](const Inputs &in) { return checked(Beta_cdf(in[0], in[1], in[2], in[3], in[4], in[5])); }},
      {"Gamma_cdf", [](const Inputs &in) { return checked(Gamma_cdf(in[0], in[1], in[2], in[3])); }},
      {"chi_square_c",
       [](const Inputs &in) { return checked(_vel_chi_square_c(in[0], static_cast<uint64_t>(in[1]))); }},
      {"F_distribution_c",
       [](const Inputs &in) {
         return checked(_vel_F_distribution_c(in[0], static_cast<uint64_t>(in[1]), in[2]));
       }},
      {"Weibull_cdf", [](const Inputs &in) { return checked(Weibull_cdf(in[0], in[1], in[2], in[3])); }},
      {"Exponential_cdf", [](const Inputs &in) { return checked(Exponential_cdf(in[0], in[1], in[2])); }},
      {"Uniform_cdf", [](const Inputs &in) { return checked(Uniform_cdf(in[0], in[1], in[2], in[3])); }},
      {"Triangular_cdf",
       [](const Inputs &in) { return checked(Triangular_cdf(in[0], in[1], in[2], in[3], in[4])); }},
      {"Binomial_cdf",
       [](const Inputs &in) { return checked(_vel_Binomial_cdf(in[0], in[1], in[2], in[3], in[4])); }},
      {"Poisson_cdf", [](const Inputs &in) { return checked(_vel_Poisson_cdf(in[0], in[1], in[2])); }},
      {"NegativeBinomial_cdf",
       [](const Inputs &in) { return checked(NegativeBinomial_cdf(in[0], in[1], in[2], in[3], in[4])); }},
      {"Geometric_cdf", [](const Inputs &in) { return checked(Geometric_cdf(in[0], in[1], in[2], in[3])); }},
  };
  return all;
}

Table read_table(const std::string &table) {
  std::ifstream file(path_of(table));
  if (!file) throw std::runtime_error("cannot open " + path_of(table));
  Table result;
  std::vector<std::string> header;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> fields = split(line);
    if (header.empty()) {
      header = fields;
      if (header.size() < 3) throw std::runtime_error(table + ".csv: header too short");
      continue;
    }
    if (fields.size() != header.size())
      throw std::runtime_error(table + ".csv line " + std::to_string(number) + ": wrong field count");
    Row row{number, {}, 0.0, 0.0};
    for (size_t i = 0; i + 2 < fields.size(); ++i) row.inputs.push_back(parse(fields[i], table, number));
    row.value = parse(fields[fields.size() - 2], table, number);
    row.allowance = parse(fields.back(), table, number);
    const double magnitude = std::fabs(row.value);
    if (magnitude >= 1e-300 && magnitude <= DBL_MAX) result.rows.push_back(row);
  }
  if (header.empty()) throw std::runtime_error(table + ".csv: no header");
  header.resize(header.size() - 2);
  result.columns = header;
  return result;
}

double relative_error(double got, double want) {
  if (std::isnan(got)) return std::numeric_limits<double>::infinity();
  return std::fabs(got - want) / std::fabs(want);
}

std::string describe(const Table &table, const Row &row) {
  const std::vector<std::string> &names = table.columns;
  std::ostringstream text;
  text.precision(17);
  for (size_t i = 0; i < row.inputs.size(); ++i)
    text << (i ? ", " : "") << (i < names.size() ? names[i] : "?") << "=" << row.inputs[i];
  return text.str();
}

}  // namespace reference
