// Continuous distributions on interval nodes: the range check, the
// normaliser over the truncation bounds and the mass of every state.
#include <cfloat>
#include <cstdio>

#include "common/error.h"
#include "special/interval_ends.h"
#include "special/special.h"
#include "table_generator/continuous_law.h"
#include "table_generator/report_fault.h"
#include "table_generator/table_generator.h"

namespace {

int check_state_range(double lower, double upper, vel_node_t *node, uint64_t n, uint32_t op,
                      int truncated) {
  const char *name_of_op = operator_names[op - vel_op_Normal];
  if (node->subtype != vel_subtype_interval) {
    return report_fault(node, vel_error_invalid_expression,
                        "The %s distribution can only be applied to interval nodes\n", name_of_op);
  }
  const double *v = node->state_values;
  if (v[0] <= lower && upper <= v[n]) return 0;
  // "[%g, %g]" takes at most 2 * 13 + 4 characters.
  char range[64];
  int length = lower <= -DBL_MAX ? snprintf(range, sizeof range, "(-inf, ")
                                 : snprintf(range, sizeof range, "[%g, ", lower);
  if (upper >= DBL_MAX) {
    snprintf(range + length, sizeof range - length, "inf)");
  } else {
    snprintf(range + length, sizeof range - length, "%g]", upper);
  }
  return report_fault(node, vel_error_state_range, "Node %s: State range must include %s for %s%s distribution\n",
                      node->name, range, truncated ? "truncated " : "", name_of_op);
}

// Calls visit(mass) with mass(x1, x2) the probability that the law puts on
// (x1, x2), so that the interval function is chosen once per row.  Each end
// of the intervals is evaluated once: the masses of one row share a cache of
// ends.
template <typename Visit>
int with_interval_function(const continuous_law_t &law, Visit visit) {
  const double a = law.p[0], b = law.p[1], c = law.p[2], d = law.p[3];
  const double location = law.location;
  vel::special::GaussEnds gauss;
  vel::special::RatioEnds ratio;
  vel::special::TailEnds tail;
  switch (law.op) {
    case vel_op_Normal:
      return visit([&](double x1, double x2) { return vel::special::gauss_interval(x1, x2, a, b, gauss); });
    case vel_op_LogNormal:
      return visit([&](double x1, double x2) {
        return vel::special::log_normal_interval(shift(x1, location), shift(x2, location), a, b, gauss);
      });
    case vel_op_Beta:
    case vel_op_PERT:
      return visit([&](double x1, double x2) { return vel::special::beta_interval(x1, x2, a, b, c, d, ratio); });
    case vel_op_Gamma:
      return visit([&](double x1, double x2) {
        return vel::special::gamma_interval(shift(x1, location), shift(x2, location), a, b, ratio);
      });
    case vel_op_Exponential:
      return visit([&](double x1, double x2) {
        return vel::special::weibull_interval(shift(x1, location), shift(x2, location), 1.0, a, tail);
      });
    case vel_op_Weibull:
      return visit([&](double x1, double x2) {
        return vel::special::weibull_interval(shift(x1, location), shift(x2, location), a, b, tail);
      });
    case vel_op_Uniform:
      return visit([=](double x1, double x2) { return vel::special::Uniform_cdf(x1, x2, a, b); });
    case vel_op_Triangular:
      return visit([=](double x1, double x2) { return vel::special::Triangular_cdf(x1, x2, a, b, c); });
    default:
      return vel::fail(vel_error_unsupported);
  }
}

// The Gamma interval function fails where the incomplete gamma ratio cannot
// reach its accuracy; its code survives the message.
int fail_gamma(const vel_node_t *node, const continuous_law_t &law) {
  return report_fault(node, _vel_error_code,
                      "Computation failed for gamma distribution with parameters: shape = %g, scale = %g\n",
                      law.p[0], law.p[1]);
}

// The mass of every state within the truncation bounds, over the mass of
// the bounds themselves.
template <typename Mass>
int discretise(Mass mass, const continuous_law_t &law, vel_node_t *node, double *result, uint64_t n,
               double lower, double upper) {
  // A failed normaliser (negative) counts as too little mass.
  const double z = mass(lower, upper);
  if (!(z >= DBL_MIN)) {
    return report_fault(
        node, vel_error_invalid_expression,
        "Invalid truncation of the %s distribution (insufficient probability mass)\n",
        operator_names[law.op - vel_op_Normal]);
  }
  const double *v = node->state_values;
  const bool gamma = law.op == vel_op_Gamma;
  for (uint64_t i = 0; i < n; ++i) {
    const double p = mass(dmax(lower, v[i]), dmin(upper, v[i + 1])) / z;
    if (gamma && p < 0) return fail_gamma(node, law);
    set_entry(result, n, i, p);
  }
  return 0;
}

}  // namespace

int continuous_distribution(const builder_arguments_t &distribution, vel_node_t *node, double *result,
                            uint64_t n, double lower, double upper, int truncated) {
  continuous_law_t law;
  if (int code = read_continuous_law(distribution, node, &law)) return code;
  if (int code = check_state_range(dmax(lower, law.support_lo), dmin(upper, law.support_hi), node,
                                   n, law.op, truncated)) {
    return code;
  }
  return with_interval_function(
      law, [&](auto mass) { return discretise(mass, law, node, result, n, lower, upper); });
}
