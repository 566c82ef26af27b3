#include "host/operators.h"

#include <algorithm>
#include <array>

#include "common/error.h"
#include "vel/vel.h"

namespace vel::host {
namespace {

constexpr uint32_t num = vel_type_number;
constexpr uint32_t boolean = vel_type_boolean;
constexpr uint32_t dist = vel_type_distribution;
constexpr int many = -1;

// A call written name(arguments); `nodes` has bit i set where argument i
// must be a node reference.
constexpr OperatorInfo call(const char *name, int min, int max, uint32_t result, const char *parameters,
                            uint32_t nodes = 0) {
  return {0, name, min, max, false, nodes, false, result, true, parameters};
}
constexpr OperatorInfo of_a_number(const char *name) { return call(name, 1, 1, num, "a number"); }
// An infix operator, or a leaf (no arguments, no text of its own).
constexpr OperatorInfo symbol(const char *name, int arity, uint32_t result) {
  return {0, name, arity, arity, false, 0, false, result, false, nullptr};
}

// One row per operator code, in the order of the codes (vel_op_Normal to
// vel_op_truth, which have no gap); the codes are filled in from the order.
// Beta takes 2 or 4 arguments (never 3); arity_fits knows that exception.
constexpr auto operators = [] {
  std::array<OperatorInfo, vel_op_truth - vel_op_Normal + 1> rows = {{
      call("Normal", 2, 2, dist, "a mean and a variance"),
      call("LogNormal", 2, 3, dist, "the mean and variance of the logarithm and an optional location"),
      call("Beta", 2, 4, dist, "shapes alpha and beta, and optionally the bounds a and b"),
      call("Gamma", 2, 3, dist, "shape, scale and an optional location"),
      call("Exponential", 1, 2, dist, "a scale (the mean) and an optional location"),
      call("Weibull", 2, 3, dist, "shape, scale and an optional location"),
      call("Uniform", 2, 2, dist, "the bounds a and b"),
      call("Triangular", 3, 3, dist, "the minimum a, the mode m and the maximum b"),
      call("PERT", 3, 4, dist, "the minimum a, the mode m, the maximum b and an optional shape lambda"),
      call("Binomial", 2, 2, dist, "the number of trials and the probability of success"),
      call("Poisson", 1, 1, dist, "a mean"),
      call("NegativeBinomial", 2, 2, dist, "the number of successes r and the probability of success p"),
      call("Geometric", 1, 1, dist, "the probability of success p"),
      call("Distribution", 1, many, dist, "one weight per state of the node"),
      {0, "NoisyOR", 2, many, true, 0, false, dist, true,
       "pairs of a condition and the probability that it fails to cause true"},
      call("truncate", 2, 3, dist,
           "a lower bound, a distribution and an optional upper bound, or a distribution and an upper bound"),
      call("aggregate", 2, 2, dist, "a count node and an item node", 0x3),
      {0, "probability", 1, 1, false, 0, true, num, true, "one condition on a node"},
      call("variance", 1, 1, num, "a node", 0x1),
      call("quantile", 2, 2, num, "a node and a probability", 0x1),
      call("min", 1, many, num, "one or more numbers"),
      call("max", 1, many, num, "one or more numbers"),
      of_a_number("log"), of_a_number("log2"), of_a_number("log10"), of_a_number("exp"),
      of_a_number("sin"), of_a_number("cos"), of_a_number("tan"), of_a_number("sinh"),
      of_a_number("cosh"), of_a_number("tanh"), of_a_number("sqrt"), of_a_number("abs"),
      of_a_number("floor"), of_a_number("ceil"),
      call("mod", 2, 2, num, "a number and a divisor"),
      call("if", 3, 3, 0, "a condition, a value if true and a value if false"),
      call("and", 0, many, boolean, "any number of conditions"),
      call("or", 0, many, boolean, "any number of conditions"),
      call("not", 1, 1, boolean, "a condition"),
      symbol("+", 2, num), symbol("-", 2, num), symbol("*", 2, num), symbol("/", 2, num),
      symbol("^", 2, num), symbol("-", 1, num),
      call("state_index", 1, 1, num, "a node", 0x1),
      symbol("==", 2, boolean), symbol("<", 2, boolean), symbol(">", 2, boolean),
      symbol("!=", 2, boolean), symbol("<=", 2, boolean), symbol(">=", 2, boolean),
      symbol("number", 0, num), symbol("label", 0, vel_type_label), symbol("node", 0, 0),
      symbol("truth", 0, boolean),
  }};
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].code = vel_op_Normal + static_cast<int>(i);
  return rows;
}();
// A missing row would leave the last codes without a name.
static_assert(std::all_of(operators.begin(), operators.end(), [](const OperatorInfo &info) { return info.name; }));

}  // namespace

const OperatorInfo *find_operator(int code) {
  if (code < vel_op_Normal || code > vel_op_truth) return nullptr;
  return &operators[static_cast<std::size_t>(code - vel_op_Normal)];
}

const OperatorInfo *find_call(std::string_view name) {
  for (const OperatorInfo &info : operators)
    if (info.is_call && name == info.name) return &info;
  return nullptr;
}

bool arity_fits(const OperatorInfo &info, int count) {
  if (count < info.min_arguments) return false;
  if (info.max_arguments != many && count > info.max_arguments) return false;
  if (info.even_count && count % 2 != 0) return false;
  if (info.code == vel_op_Beta && count == 3) return false;
  return true;
}

const char *arity_text(const OperatorInfo &info) {
  if (info.even_count) return "an even number of arguments, 2 or more";
  if (info.code == vel_op_Beta) return "2 or 4 arguments";
  if (info.max_arguments == many)
    return info.min_arguments == 0 ? "0 or more arguments" : "1 or more arguments";
  static const char *const exact[] = {"0 arguments", "1 argument", "2 arguments",
                                      "3 arguments", "4 arguments"};
  if (info.min_arguments == info.max_arguments) return exact[info.min_arguments];
  if (info.min_arguments == 1) return "1 or 2 arguments";
  if (info.min_arguments == 2) return "2 or 3 arguments";
  return "3 or 4 arguments";
}

std::string arity_message(const OperatorInfo &info, std::size_t count) {
  if (!info.parameters)
    return std::string("operator ") + info.name + " takes " + arity_text(info) + ", got " +
           std::to_string(count);
  return std::string(info.name) + " takes " + info.parameters + " (" + arity_text(info) +
         "), got " + std::to_string(count);
}

}  // namespace vel::host

extern "C" const char *vel_operator_name(int code) {
  const vel::host::OperatorInfo *info = vel::host::find_operator(code);
  _vel_error_code = info ? 0 : vel_error_usage;
  return info ? info->name : nullptr;
}
