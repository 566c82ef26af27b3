// Parameters of the continuous distributions: evaluation in argument order,
// defaults of the optional ones, and the checks with their messages.
#include <cfloat>

#include "common/error.h"
#include "table_generator/continuous_law.h"
#include "table_generator/report_fault.h"
#include "table_generator/table_generator.h"

namespace {

// Evaluates argument i, or gives `fallback` when the call left it out.
int optional_argument(const builder_arguments_t &d, int i, double fallback, double *value) {
  if (!has_argument(d, static_cast<size_t>(i))) {
    *value = fallback;
    return 0;
  }
  return argument_number(d, static_cast<size_t>(i), value);
}

// Evaluates arguments first .. first + count - 1 into values.
int arguments(const builder_arguments_t &d, int first, int count, double *values) {
  for (int i = 0; i < count; ++i) {
    if (int code = argument_number(d, static_cast<size_t>(first + i), &values[i])) return code;
  }
  return 0;
}

// The families with support [c, +inf): two checked parameters (one for
// Exponential), then the location c, 0 when left out.
int located(const builder_arguments_t &distribution, continuous_law_t *law, int count) {
  law->support_hi = DBL_MAX;
  if (int code = optional_argument(distribution, count, 0.0, &law->location)) return code;
  law->support_lo = law->location;
  return 0;
}

// The families whose parameters must be positive: `count` of them, those
// from `first_checked` on checked, the message naming the checked ones;
// then the location, for the families with support [c, +inf), or the whole
// line.
int read_positive(const builder_arguments_t &d, const vel_node_t *node, continuous_law_t *law,
                  int count, int first_checked, const char *message, bool with_location) {
  if (int code = arguments(d, 0, count, law->p)) return code;
  bool positive = true;
  for (int i = first_checked; i < count; ++i) positive = positive && law->p[i] > 0;
  if (!positive) {
    return first_checked + 1 == count
               ? report_fault(node, vel_error_invalid_argument, message, law->p[first_checked])
               : report_fault(node, vel_error_invalid_argument, message, law->p[0], law->p[1]);
  }
  if (with_location) return located(d, law, count);
  law->support_lo = -DBL_MAX;
  law->support_hi = DBL_MAX;
  return 0;
}

int read_beta(const builder_arguments_t &d, const vel_node_t *node, continuous_law_t *law) {
  if (int code = arguments(d, 0, 2, law->p)) return code;
  if (!(law->p[0] > 0 && law->p[1] > 0)) {
    return report_fault(
        node, vel_error_invalid_argument,
        "Beta distribution (shape) parameters must be positive (observed: %g and %g)\n", law->p[0],
        law->p[1]);
  }
  law->p[2] = 0.0;
  law->p[3] = 1.0;
  if (has_argument(d, 2)) {
    if (int code = arguments(d, 2, 2, law->p + 2)) return code;
    if (!(law->p[2] < law->p[3])) {
      return report_fault(
          node, vel_error_invalid_argument,
          "Beta distribution: Interval must have positive length (observed: [%g, %g])\n", law->p[2],
          law->p[3]);
    }
  }
  law->support_lo = law->p[2];
  law->support_hi = law->p[3];
  return 0;
}

int read_uniform(const builder_arguments_t &d, const vel_node_t *node, continuous_law_t *law) {
  if (int code = arguments(d, 0, 2, law->p)) return code;
  if (!(law->p[0] < law->p[1])) {
    return report_fault(
        node, vel_error_invalid_argument,
        "Uniform distribution: Interval must have positive length (observed: [%g, %g])\n",
        law->p[0], law->p[1]);
  }
  law->support_lo = law->p[0];
  law->support_hi = law->p[1];
  return 0;
}

int read_triangular(const builder_arguments_t &d, const vel_node_t *node, continuous_law_t *law) {
  if (int code = arguments(d, 0, 3, law->p)) return code;
  const double a = law->p[0], m = law->p[1], b = law->p[2];
  if (!(a <= m && m <= b && a < b)) {
    return report_fault(node, vel_error_invalid_argument,
                        "Triangular distribution parameters must obey a <= m <= b and a < b "
                        "(observed: a = %g, m = %g, b = %g)\n",
                        a, m, b);
  }
  law->support_lo = a;
  law->support_hi = b;
  return 0;
}

// PERT(a, m, b, lambda) is the beta distribution on [a, b] whose shapes put
// its mode at m.
int read_pert(const builder_arguments_t &d, const vel_node_t *node, continuous_law_t *law) {
  double v[3];
  if (int code = arguments(d, 0, 3, v)) return code;
  const double a = v[0], m = v[1], b = v[2];
  if (!(a < m && m < b)) {
    return report_fault(node, vel_error_invalid_argument,
                        "PERT parameters must obey a < m < b (observed: a = %g, m = %g, b = %g)\n",
                        a, m, b);
  }
  double lambda;
  if (int code = optional_argument(d, 3, 4.0, &lambda)) return code;
  if (!(lambda > 0)) {
    return report_fault(
        node, vel_error_invalid_argument,
        "The fourth parameter of a PERT distribution must be positive (observed: %g)\n", lambda);
  }
  law->p[0] = lambda * (m - a) / (b - a) + 1;
  law->p[1] = lambda * (b - m) / (b - a) + 1;
  law->p[2] = a;
  law->p[3] = b;
  law->support_lo = a;
  law->support_hi = b;
  return 0;
}

}  // namespace

int read_continuous_law(const builder_arguments_t &distribution, const vel_node_t *node,
                        continuous_law_t *law) {
  *law = continuous_law_t{};
  law->op = distribution.distribution->operator_;
  switch (law->op) {
    case vel_op_Normal:
      return read_positive(distribution, node, law, 2, 1,
                           "Variance for a Normal distribution must be positive (observed: %g)\n",
                           false);
    case vel_op_LogNormal:
      return read_positive(distribution, node, law, 2, 1,
                           "The variance parameter of a LogNormal distribution must be positive "
                           "(observed: %g)\n",
                           true);
    case vel_op_Beta:
      return read_beta(distribution, node, law);
    case vel_op_Gamma:
      return read_positive(
          distribution, node, law, 2, 0,
          "Gamma distribution parameters must be positive (observed: shape = %g, scale = %g)\n",
          true);
    case vel_op_Exponential:
      // The scale is the mean: the Exponential interval function divides by it.
      return read_positive(distribution, node, law, 1, 0,
                           "Exponential distribution parameter must be positive (observed: %g)\n",
                           true);
    case vel_op_Weibull:
      return read_positive(
          distribution, node, law, 2, 0,
          "Weibull distribution parameters must be positive (observed: a = %g, b = %g)\n", true);
    case vel_op_Uniform:
      return read_uniform(distribution, node, law);
    case vel_op_Triangular:
      return read_triangular(distribution, node, law);
    case vel_op_PERT:
      return read_pert(distribution, node, law);
    default:
      return vel::fail(vel_error_unsupported);
  }
}
