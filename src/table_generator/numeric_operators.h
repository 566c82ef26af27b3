// The rules of the numeric operators, in one place: what each computes, its
// domain checks and the error code of a value outside the domain.  The
// scalar evaluator (eval_numeric.cpp) and the batch evaluator
// (batch_evaluation.cpp) both apply these, so a value is the same to the bit
// whichever computed it.  Each returns 0 with the result, or the error code
// (which the caller sets).  Every domain test is a test for the bad case, so
// a NaN passes it and flows on into the mathematics library.
#pragma once

#include <cmath>
#include <cstdint>

#include "vel/vel.h"

namespace numeric {

constexpr double inverse_ln2 = 1.4426950408889634;
constexpr double two_to_63 = 9223372036854775808.0;

// Operators of one argument: negate and the functions log ... ceil.
inline bool is_unary(uint32_t op) {
  return op == vel_op_negate || (op >= vel_op_log && op <= vel_op_ceil);
}

// Operators of two arguments: + - * / ^ and mod.
inline bool is_binary(uint32_t op) {
  return (op >= vel_op_add && op <= vel_op_power) || op == vel_op_mod;
}

// A negative base needs an integral exponent that fits a signed 64-bit
// integer.  The range test comes first: converting anything outside
// [-2^63, 2^63), or NaN, to an integer is undefined.  2^63 itself is refused
// here, as it would not survive the round trip through the integer anyway.
// A zero or NaN base gives 0 for a positive exponent; 0^0 is refused.
inline int power(double a, double b, double *r) {
  if (a > 0) {
    *r = std::pow(a, b);
    return 0;
  }
  if (a < 0) {
    if (!(b >= -two_to_63 && b < two_to_63)) return vel_error_invalid_argument;
    const int64_t n = static_cast<int64_t>(b);
    if (static_cast<double>(n) != b) return vel_error_invalid_argument;
    const double magnitude = std::pow(-a, b);
    *r = (n & 1) == 0 ? magnitude : -magnitude;
    return 0;
  }
  if (b > 0) {
    *r = 0.0;
    return 0;
  }
  return vel_error_invalid_argument;
}

// Floored modulo: the result takes the sign of the divisor.
inline int floored_mod(double a, double b, double *r) {
  if (b == 0) return vel_error_invalid_argument;
  double m = std::fmod(a, b);
  if (m != 0 && a * b < 0) m += b;
  *r = m;
  return 0;
}

template <uint32_t Op>
inline int unary(double x, double *r) {
  switch (Op) {
    case vel_op_log:
      if (x <= 0) return vel_error_invalid_argument;
      *r = std::log(x);
      return 0;
    case vel_op_log2:
      if (x <= 0) return vel_error_invalid_argument;
      *r = std::log(x) * inverse_ln2;
      return 0;
    case vel_op_log10:
      if (x <= 0) return vel_error_invalid_argument;
      *r = std::log10(x);
      return 0;
    case vel_op_sqrt:
      if (x < 0) return vel_error_invalid_argument;
      *r = std::sqrt(x);
      return 0;
    case vel_op_exp: *r = std::exp(x); return 0;
    case vel_op_sin: *r = std::sin(x); return 0;
    case vel_op_cos: *r = std::cos(x); return 0;
    case vel_op_tan: *r = std::tan(x); return 0;
    case vel_op_sinh: *r = std::sinh(x); return 0;
    case vel_op_cosh: *r = std::cosh(x); return 0;
    case vel_op_tanh: *r = std::tanh(x); return 0;
    case vel_op_abs: *r = std::fabs(x); return 0;
    case vel_op_floor: *r = std::floor(x); return 0;
    case vel_op_ceil: *r = std::ceil(x); return 0;
    default:  // negate: the sign bit flipped, so -0 results from 0
      *r = -x;
      return 0;
  }
}

// Whether the operator can refuse a value (and so needs its error checked).
constexpr bool may_fail(uint32_t op) {
  return op == vel_op_log || op == vel_op_log2 || op == vel_op_log10 || op == vel_op_sqrt ||
         op == vel_op_divide || op == vel_op_power || op == vel_op_mod;
}

// Whether the operator calls a library routine (exp, pow, ...): worth
// skipping on lanes whose value no branch takes.
constexpr bool calls_library(uint32_t op) {
  return (op >= vel_op_log && op <= vel_op_tanh) || op == vel_op_power ||
         op == vel_op_mod;
}

template <uint32_t Op>
inline int binary(double a, double b, double *r) {
  switch (Op) {
    case vel_op_add: *r = a + b; return 0;
    case vel_op_subtract: *r = a - b; return 0;
    case vel_op_multiply: *r = a * b; return 0;
    case vel_op_divide:
      if (b == 0) return vel_error_division_by_zero;
      *r = a / b;
      return 0;
    case vel_op_power: return power(a, b, r);
    default: return floored_mod(a, b, r);
  }
}

// min and max keep the running result unless the new value is strictly
// better, so a NaN already held is never replaced and a later NaN never wins.
inline double min_step(double held, double next) { return held > next ? next : held; }
inline double max_step(double held, double next) { return next > held ? next : held; }

// The comparisons, IEEE: false whenever a NaN is involved (!= true).
template <uint32_t Op>
inline bool compare(double a, double b) {
  switch (Op) {
    case vel_op_equals: return a == b;
    case vel_op_not_equals: return a != b;
    case vel_op_less_than: return a < b;
    case vel_op_greater_than: return a > b;
    case vel_op_less_or_equal: return a <= b;
    default: return a >= b;
  }
}

// Calls visit.template operator()<Op>() with the operator code as a constant,
// so that the rules above fold into the caller's loop.
template <typename Visit>
inline auto with_unary(uint32_t op, Visit &&visit) {
  switch (op) {
    case vel_op_log: return visit.template operator()<vel_op_log>();
    case vel_op_log2: return visit.template operator()<vel_op_log2>();
    case vel_op_log10: return visit.template operator()<vel_op_log10>();
    case vel_op_exp: return visit.template operator()<vel_op_exp>();
    case vel_op_sin: return visit.template operator()<vel_op_sin>();
    case vel_op_cos: return visit.template operator()<vel_op_cos>();
    case vel_op_tan: return visit.template operator()<vel_op_tan>();
    case vel_op_sinh: return visit.template operator()<vel_op_sinh>();
    case vel_op_cosh: return visit.template operator()<vel_op_cosh>();
    case vel_op_tanh: return visit.template operator()<vel_op_tanh>();
    case vel_op_sqrt: return visit.template operator()<vel_op_sqrt>();
    case vel_op_abs: return visit.template operator()<vel_op_abs>();
    case vel_op_floor: return visit.template operator()<vel_op_floor>();
    case vel_op_ceil: return visit.template operator()<vel_op_ceil>();
    default: return visit.template operator()<vel_op_negate>();
  }
}

template <typename Visit>
inline auto with_binary(uint32_t op, Visit &&visit) {
  switch (op) {
    case vel_op_add: return visit.template operator()<vel_op_add>();
    case vel_op_subtract: return visit.template operator()<vel_op_subtract>();
    case vel_op_multiply: return visit.template operator()<vel_op_multiply>();
    case vel_op_divide: return visit.template operator()<vel_op_divide>();
    case vel_op_power: return visit.template operator()<vel_op_power>();
    default: return visit.template operator()<vel_op_mod>();
  }
}

template <typename Visit>
inline auto with_comparison(uint32_t op, Visit &&visit) {
  switch (op) {
    case vel_op_equals: return visit.template operator()<vel_op_equals>();
    case vel_op_not_equals: return visit.template operator()<vel_op_not_equals>();
    case vel_op_less_than: return visit.template operator()<vel_op_less_than>();
    case vel_op_greater_than: return visit.template operator()<vel_op_greater_than>();
    case vel_op_less_or_equal: return visit.template operator()<vel_op_less_or_equal>();
    default: return visit.template operator()<vel_op_greater_or_equal>();
  }
}

}  // namespace numeric
