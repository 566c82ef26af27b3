// Continuous distributions on interval nodes: the range check, the
// normaliser over the truncation bounds and the mass of every state.
#include <cfloat>
#include <cstdio>

#include "common/error.h"
#include "special/special.h"
#include "table_generator/continuous_law.h"
#include "table_generator/distribution_log.h"
#include "table_generator/table_generator.h"

double dmax(double a, double b) { return a >= b ? a : b; }
double dmin(double a, double b) { return a < b ? a : b; }
double shift(double x, double c) { return -DBL_MAX < x && x < DBL_MAX ? x - c : x; }

double law_mass(const continuous_law_t *law, double x1, double x2) {
  const double *p = law->p;
  const double c = law->location;
  switch (law->op) {
    case vel_op_Normal:
      return _vel_Gauss_cdf(x1, x2, p[0], p[1]);
    case vel_op_LogNormal:
      return LogNormal_cdf(shift(x1, c), shift(x2, c), p[0], p[1]);
    case vel_op_Beta:
    case vel_op_PERT:
      return Beta_cdf(x1, x2, p[0], p[1], p[2], p[3]);
    case vel_op_Gamma:
      return Gamma_cdf(shift(x1, c), shift(x2, c), p[0], p[1]);
    case vel_op_Exponential:
      return Exponential_cdf(shift(x1, c), shift(x2, c), p[0]);
    case vel_op_Weibull:
      return Weibull_cdf(shift(x1, c), shift(x2, c), p[0], p[1]);
    case vel_op_Uniform:
      return Uniform_cdf(x1, x2, p[0], p[1]);
    case vel_op_Triangular:
      return Triangular_cdf(x1, x2, p[0], p[1], p[2]);
    default:
      return -1.0;
  }
}

int check_state_range(double lower, double upper, vel_node_t *node, uint64_t n, uint32_t op,
                      int truncated) {
  const char *name_of_op = operator_names[op - vel_op_Normal];
  if (node->subtype != vel_subtype_interval) {
    return report_fault(node, vel_error_invalid_expression,
                        "The %s distribution can only be applied to interval nodes\n", name_of_op);
  }
  const double *v = node->state_values;
  if (v[0] <= lower && upper <= v[n]) return 0;
  FILE *log = distribution_log(node);
  if (log == nullptr) return vel::fail(vel_error_state_range);
  const char *name = vel_node_get_name(node);
  if (name == nullptr) return _vel_error_code;
  // "[%g, %g]" takes at most 2 * 13 + 4 characters.
  char range[64];
  int length = lower <= -DBL_MAX ? snprintf(range, sizeof range, "(-inf, ")
                                 : snprintf(range, sizeof range, "[%g, ", lower);
  if (upper >= DBL_MAX) {
    snprintf(range + length, sizeof range - length, "inf)");
  } else {
    snprintf(range + length, sizeof range - length, "%g]", upper);
  }
  if (fprintf(log, "Node %s: State range must include %s", name, range) < 0 ||
      fprintf(log, " for %s%s distribution\n", truncated ? "truncated " : "", name_of_op) < 0) {
    return vel::fail(vel_error_io);
  }
  return vel::fail(vel_error_state_range);
}

namespace {

// The Gamma interval function fails where the incomplete gamma ratio cannot
// reach its accuracy; its code survives the message.
int fail_gamma(const vel_node_t *node, const continuous_law_t *law) {
  const int code = _vel_error_code;
  FILE *log = distribution_log(node);
  if (log != nullptr &&
      fprintf(log,
              "Computation failed for gamma distribution with parameters: shape = %g, scale = %g\n",
              law->p[0], law->p[1]) < 0) {
    return vel::fail(vel_error_io);
  }
  return vel::fail(code);
}

}  // namespace

int continuous_distribution(const vel_expression_t *distribution, vel_node_t *node, double *result,
                            uint64_t n, double lower, double upper, int truncated) {
  continuous_law_t law;
  if (int code = read_continuous_law(distribution, node, &law)) return code;
  if (int code = check_state_range(dmax(lower, law.support_lo), dmin(upper, law.support_hi), node,
                                   n, law.op, truncated)) {
    return code;
  }
  // A failed normaliser (negative) counts as too little mass.
  const double z = law_mass(&law, lower, upper);
  if (!(z >= DBL_MIN)) {
    return report_fault(
        node, vel_error_invalid_expression,
        "Invalid truncation of the %s distribution (insufficient probability mass)\n",
        operator_names[law.op - vel_op_Normal]);
  }
  const double *v = node->state_values;
  for (uint64_t i = 0; i < n; ++i) {
    const double p = law_mass(&law, dmax(lower, v[i]), dmin(upper, v[i + 1])) / z;
    if (p < 0 && law.op == vel_op_Gamma) return fail_gamma(node, &law);
    result[i] = result[n + i] = result[2 * n + i] = p;
  }
  return 0;
}
