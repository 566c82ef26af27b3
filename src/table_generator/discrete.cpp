// Discrete distributions on numbered and interval nodes: the masses of the
// counts 0, 1, 2, ... put on the states.
#include <cfloat>
#include <cmath>

#include "common/error.h"
#include "special/interval_ends.h"
#include "special/special.h"
#include "table_generator/binomial.h"
#include "table_generator/builder_arguments.h"
#include "table_generator/report_fault.h"
#include "table_generator/table_generator.h"

namespace {

// Parameters in argument order: Binomial (trials, p), Poisson (mean),
// NegativeBinomial (r, p), Geometric (p); q = 1 - p, formed once.
struct discrete_law_t {
  uint32_t op;
  double first;
  double p;
  double q;
};

int read_discrete_law(const builder_arguments_t &distribution, discrete_law_t *law) {
  law->op = distribution.distribution->operator_;
  double v[2] = {0.0, 0.0};
  for (size_t i = 0; i < 2 && has_argument(distribution, i); ++i) {
    if (int code = argument_number(distribution, i, &v[i])) return code;
  }
  bool valid = false;
  switch (law->op) {
    case vel_op_Binomial:
      valid = v[0] >= 0 && std::floor(v[0]) == v[0] && v[1] >= 0 && v[1] <= 1;
      law->first = v[0];
      law->p = v[1];
      break;
    case vel_op_Poisson:
      valid = v[0] >= 0;
      law->first = v[0];
      law->p = 0.0;
      break;
    case vel_op_NegativeBinomial:
      valid = v[0] > 0 && v[1] >= 0 && v[1] <= 1;
      law->first = v[0];
      law->p = v[1];
      break;
    default:  // Geometric
      valid = v[0] >= 0 && v[0] <= 1;
      law->first = 1.0;
      law->p = v[0];
      break;
  }
  if (!valid) return vel::fail(vel_error_invalid_argument);
  law->q = 1 - law->p;
  return 0;
}

// Mass of the counts k with x1 <= k < x2; x2 = DBL_MAX takes the whole tail.
// The masses of one row share `ends`, so each end is evaluated once.
double count_mass(const discrete_law_t *law, double x1, double x2, vel::special::RatioEnds &ends) {
  switch (law->op) {
    case vel_op_Binomial:
      return vel::special::binomial_interval(x1, x2, law->first, law->p, law->q, ends);
    case vel_op_Poisson:
      return vel::special::poisson_interval(x1, x2, law->first, ends);
    default:  // NegativeBinomial, and Geometric with r = 1
      return vel::special::negative_binomial_interval(x1, x2, law->first, law->p, law->q, ends);
  }
}

bool states_are_counts(const vel_node_t *node, uint64_t n) {
  for (uint64_t i = 0; i < n; ++i) {
    if (node->state_values[i] != static_cast<double>(i)) return false;
  }
  return true;
}

// States 0 ... n-2 by running products; the last state collects the tail
// from n-1 upward (Binomial: every state is a count up to trials).
int on_numbered(const discrete_law_t *law, double *result, uint64_t n) {
  if (n == 0) return 0;
  const uint64_t last = n - 1;
  if (law->op == vel_op_Binomial) {
    if (static_cast<double>(n) <= law->first) return vel::fail(vel_error_state_range);
    for (uint64_t k = 0; k < n; ++k) {
      const double mass = Binomial(law->first, law->p, k);
      if (mass < 0) return _vel_error_code;
      set_entry(result, n, k, mass);
    }
    return 0;
  }
  if (law->op == vel_op_Geometric) {
    double w = 1.0;
    for (uint64_t k = 0; k < last; ++k) {
      set_entry(result, n, k, law->p * w);
      w *= law->q;
    }
    set_entry(result, n, last, w);
    return 0;
  }
  const bool poisson = law->op == vel_op_Poisson;
  const double r = law->first;
  double mass = poisson ? std::exp(-r) : law->p <= 0 ? 0.0 : std::pow(law->p, r);
  for (uint64_t k = 0; k < last; ++k) {
    const double kk = static_cast<double>(k);
    if (k > 0) mass = poisson ? mass * r / kk : mass * law->q * (kk - 1 + r) / kk;
    set_entry(result, n, k, mass);
  }
  vel::special::RatioEnds ends;
  const double tail = count_mass(law, static_cast<double>(last), DBL_MAX, ends);
  if (tail < 0) return _vel_error_code;
  set_entry(result, n, last, tail);
  return 0;
}

// A running point x moves through the bounds: each state takes the counts
// that x passes, a zero-width state the single count at x when x is whole.
int on_interval(const discrete_law_t *law, const vel_node_t *node, double *result, uint64_t n) {
  const double *v = node->state_values;
  const bool binomial = law->op == vel_op_Binomial;
  if (!(v[0] <= 0) || !(binomial ? v[n] >= law->first : v[n] >= DBL_MAX)) {
    return vel::fail(vel_error_state_range);
  }
  if (n == 0) return 0;
  const uint64_t end = binomial ? n - 1 : n;
  vel::special::RatioEnds ends;
  double x = v[0];
  for (uint64_t i = 0; i < end; ++i) {
    double mass = 0.0;
    if (v[i + 1] <= v[i]) {
      if (std::floor(x) == x) {
        x = x + 1;
        mass = count_mass(law, v[i], x, ends);
      }
    } else {
      mass = count_mass(law, x, v[i + 1], ends);
      x = v[i + 1];
    }
    if (mass < 0) return _vel_error_code;
    set_entry(result, n, i, mass);
  }
  if (binomial) {
    const double tail = count_mass(law, x, DBL_MAX, ends);
    if (tail < 0) return _vel_error_code;
    set_entry(result, n, n - 1, tail);
  }
  return 0;
}

}  // namespace

int discrete_distribution(const builder_arguments_t &distribution, vel_node_t *node, double *result,
                          uint64_t n, int truncated) {
  const char *name_of_op = operator_names[distribution.distribution->operator_ - vel_op_Normal];
  if (truncated) {
    return report_fault(node, vel_error_invalid_expression,
                        "Truncation is not supported for the %s distribution\n", name_of_op);
  }
  if (node->subtype == vel_subtype_numbered) {
    if (!states_are_counts(node, n)) return vel::fail(vel_error_state_range);
  } else if (node->subtype != vel_subtype_interval) {
    return report_fault(node, vel_error_invalid_expression,
                        "The %s distribution can only be applied to numbered or interval nodes\n",
                        name_of_op);
  }
  discrete_law_t law;
  if (int code = read_discrete_law(distribution, &law)) return code;
  if (node->subtype == vel_subtype_numbered) return on_numbered(&law, result, n);
  return on_interval(&law, node, result, n);
}
