#include "host/operators.h"

#include "common/error.h"
#include "vel/vel.h"

namespace vel::host {
namespace {

constexpr uint32_t num = vel_type_number;
constexpr uint32_t boolean = vel_type_boolean;
constexpr uint32_t dist = vel_type_distribution;
constexpr int many = -1;

// Beta takes 2 or 4 arguments (never 3); arity_fits knows that exception.
constexpr OperatorInfo operators[] = {
    {vel_op_Normal, "Normal", 2, 2, false, 0, false, dist, true, "a mean and a variance"},
    {vel_op_LogNormal, "LogNormal", 2, 3, false, 0, false, dist, true,
     "the mean and variance of the logarithm and an optional location"},
    {vel_op_Beta, "Beta", 2, 4, false, 0, false, dist, true,
     "shapes alpha and beta, and optionally the bounds a and b"},
    {vel_op_Gamma, "Gamma", 2, 3, false, 0, false, dist, true,
     "shape, scale and an optional location"},
    {vel_op_Exponential, "Exponential", 1, 2, false, 0, false, dist, true,
     "a scale (the mean) and an optional location"},
    {vel_op_Weibull, "Weibull", 2, 3, false, 0, false, dist, true,
     "shape, scale and an optional location"},
    {vel_op_Uniform, "Uniform", 2, 2, false, 0, false, dist, true, "the bounds a and b"},
    {vel_op_Triangular, "Triangular", 3, 3, false, 0, false, dist, true,
     "the minimum a, the mode m and the maximum b"},
    {vel_op_PERT, "PERT", 3, 4, false, 0, false, dist, true,
     "the minimum a, the mode m, the maximum b and an optional shape lambda"},
    {vel_op_Binomial, "Binomial", 2, 2, false, 0, false, dist, true,
     "the number of trials and the probability of success"},
    {vel_op_Poisson, "Poisson", 1, 1, false, 0, false, dist, true, "a mean"},
    {vel_op_NegativeBinomial, "NegativeBinomial", 2, 2, false, 0, false, dist, true,
     "the number of successes r and the probability of success p"},
    {vel_op_Geometric, "Geometric", 1, 1, false, 0, false, dist, true,
     "the probability of success p"},
    {vel_op_Distribution, "Distribution", 1, many, false, 0, false, dist, true,
     "one weight per state of the node"},
    {vel_op_NoisyOR, "NoisyOR", 2, many, true, 0, false, dist, true,
     "pairs of a condition and the probability that it fails to cause true"},
    {vel_op_truncate, "truncate", 2, 3, false, 0, false, dist, true,
     "a lower bound, a distribution and an optional upper bound, or a distribution and an "
     "upper bound"},
    {vel_op_aggregate, "aggregate", 2, 2, false, 0x3, false, dist, true,
     "a count node and an item node"},
    {vel_op_probability, "probability", 1, 1, false, 0, true, num, true, "one condition on a node"},
    {vel_op_variance, "variance", 1, 1, false, 0x1, false, num, true, "a node"},
    {vel_op_quantile, "quantile", 2, 2, false, 0x1, false, num, true, "a node and a probability"},
    {vel_op_min, "min", 1, many, false, 0, false, num, true, "one or more numbers"},
    {vel_op_max, "max", 1, many, false, 0, false, num, true, "one or more numbers"},
    {vel_op_log, "log", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_log2, "log2", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_log10, "log10", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_exp, "exp", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_sin, "sin", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_cos, "cos", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_tan, "tan", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_sinh, "sinh", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_cosh, "cosh", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_tanh, "tanh", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_sqrt, "sqrt", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_abs, "abs", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_floor, "floor", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_ceil, "ceil", 1, 1, false, 0, false, num, true, "a number"},
    {vel_op_mod, "mod", 2, 2, false, 0, false, num, true, "a number and a divisor"},
    {vel_op_if, "if", 3, 3, false, 0, false, 0, true,
     "a condition, a value if true and a value if false"},
    {vel_op_and, "and", 0, many, false, 0, false, boolean, true, "any number of conditions"},
    {vel_op_or, "or", 0, many, false, 0, false, boolean, true, "any number of conditions"},
    {vel_op_not, "not", 1, 1, false, 0, false, boolean, true, "a condition"},
    {vel_op_add, "+", 2, 2, false, 0, false, num, false, nullptr},
    {vel_op_subtract, "-", 2, 2, false, 0, false, num, false, nullptr},
    {vel_op_multiply, "*", 2, 2, false, 0, false, num, false, nullptr},
    {vel_op_divide, "/", 2, 2, false, 0, false, num, false, nullptr},
    {vel_op_power, "^", 2, 2, false, 0, false, num, false, nullptr},
    {vel_op_negate, "-", 1, 1, false, 0, false, num, false, nullptr},
    {vel_op_state_index_of, "state_index", 1, 1, false, 0x1, false, num, true, "a node"},
    {vel_op_equals, "==", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_less_than, "<", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_greater_than, ">", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_not_equals, "!=", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_less_or_equal, "<=", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_greater_or_equal, ">=", 2, 2, false, 0, false, boolean, false, nullptr},
    {vel_op_number, "number", 0, 0, false, 0, false, num, false, nullptr},
    {vel_op_label, "label", 0, 0, false, 0, false, vel_type_label, false, nullptr},
    {vel_op_node, "node", 0, 0, false, 0, false, 0, false, nullptr},
    {vel_op_truth, "truth", 0, 0, false, 0, false, boolean, false, nullptr},
};

}  // namespace

const OperatorInfo *find_operator(int code) {
  for (const OperatorInfo &info : operators)
    if (info.code == code) return &info;
  return nullptr;
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
