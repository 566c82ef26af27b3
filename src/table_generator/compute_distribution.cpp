// One row of state probabilities for one configuration of a node's parents:
// sampling of interval parents, deterministic values, the dispatch on the
// distribution operator, and the non-parametric distributions.
#include <cfloat>
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/report_fault.h"
#include "table_generator/sampler.h"
#include "table_generator/table_generator.h"

int unbounded_interval_point(double lo, double hi, double *point) {
  bool lo_infinite = lo <= -DBL_MAX;
  bool hi_infinite = hi >= DBL_MAX;
  if (!lo_infinite && !hi_infinite) return 0;
  // The factors move the point 0.1 % from the finite end into the interval.
  if (lo_infinite && hi_infinite) {
    *point = 0.0;
  } else if (hi_infinite) {
    *point = lo == 0.0 ? 1.0 : lo < 0.0 ? lo * 0.999 : lo * 1.001;
  } else {
    *point = hi == 0.0 ? -1.0 : hi < 0.0 ? hi * 1.001 : hi * 0.999;
  }
  return 1;
}

namespace {

// The row of means, as computed at one point, made its own minimum and maximum.
void copy_to_bounds(double *result, uint64_t n) {
  for (uint64_t i = 0; i < n; ++i) set_entry(result, n, i, result[i]);
}

int fail_unsupported_truncation(const vel_node_t *node, uint32_t op) {
  return report_fault(node, vel_error_invalid_expression, "Truncation is not supported for the %s distribution\n",
                      operator_names[op - vel_op_Normal]);
}

}  // namespace

int place_state(double *result, uint64_t n, uint64_t state) {
  for (uint64_t i = 0; i < n; ++i) result[i] = i == state ? 1.0 : 0.0;
  copy_to_bounds(result, n);
  return 0;
}

int place_label(vel_node_t *node, double *result, uint64_t n, const char *label) {
  int64_t state = _vel_node_get_state_index(node, label);
  if (state >= 0) return place_state(result, n, static_cast<uint64_t>(state));
  return report_fault(node, vel_error_invalid_expression, "Node %s does not have a (unique) state labeled `%s'\n",
                      node->name, label);
}

int place_value(vel_node_t *node, double *result, uint64_t n, double value) {
  int64_t state = _vel_node_state_value_to_state_index(node, value);
  if (state >= 0) return place_state(result, n, static_cast<uint64_t>(state));
  if (node->subtype == vel_subtype_numbered)
    return report_fault(node, vel_error_invalid_expression, "Node %s does not have a state with value %g\n",
                        node->name, value);
  return report_fault(node, vel_error_invalid_expression, "Value for node %s is out of bounds: %g\n", node->name,
                      value);
}

namespace {

int explicit_distribution(const builder_arguments_t &distribution, vel_node_t *node,
                          double *result, uint64_t n, int truncated) {
  if (truncated) return fail_unsupported_truncation(node, vel_op_Distribution);
  if (_vel_expr_list_length(distribution.distribution->arguments) != n) {
    return report_fault(node, vel_error_invalid_expression,
                        "The number of arguments of a Distribution expression must match the number of states\n");
  }
  double sum = 0.0;
  for (uint64_t i = 0; i < n; ++i) {
    if (argument_number(distribution, i, &result[i]) != 0) return _vel_error_code;
    if (result[i] < 0.0) {
      return report_fault(node, vel_error_invalid_argument, "Negative value in Distribution expression (state %s)\n",
                          _vel_print_size(node->domain, i));
    }
    sum += result[i];
  }
  if (sum == 0.0) {
    return report_fault(node, vel_error_invalid_argument,
                        "At least one argument of a Distribution expression must be positive\n");
  }
  for (uint64_t i = 0; i < n; ++i) result[i] /= sum;
  copy_to_bounds(result, n);
  return 0;
}

// q_i is the probability that a present cause fails to produce the effect.
int noisy_or(const builder_arguments_t &distribution, vel_node_t *node, double *result,
             uint64_t n, int truncated) {
  if (truncated) return fail_unsupported_truncation(node, vel_op_NoisyOR);
  if (node->subtype != vel_subtype_boolean) {
    return report_fault(node, vel_error_invalid_expression,
                        "A NoisyOR distribution can only be applied to boolean nodes\n");
  }
  double p = 1.0;
  for (size_t i = 0; distribution.distribution->arguments[i] != nullptr; i += 2) {
    const int condition = argument_truth(distribution, i);
    if (condition < 0) return _vel_error_code;
    double q;
    if (argument_number(distribution, i + 1, &q) != 0) return _vel_error_code;
    if (q < 0.0 || q > 1.0) return vel::fail(vel_error_invalid_argument);
    if (condition) p *= q;
  }
  result[0] = p;
  result[1] = 1.0 - p;
  copy_to_bounds(result, n);
  return 0;
}

int uniform_over_states(vel_node_t *node, double *result, uint64_t n, int truncated) {
  if (truncated) return fail_unsupported_truncation(node, vel_op_Uniform);
  for (uint64_t i = 0; i < n; ++i) result[i] = 1.0 / static_cast<double>(n);
  copy_to_bounds(result, n);
  return vel::fail(vel_error_none);
}

int aggregate(const vel_expression_t *distribution, vel_node_t *node, double *result,
              uint64_t n, int truncated) {
  if (truncated) return fail_unsupported_truncation(node, vel_op_aggregate);
  if (node->category != vel_category_function || node->subtype != vel_subtype_interval) {
    return report_fault(node, vel_error_invalid_expression,
                        "Aggregate distributions are only valid for interval discrete function nodes\n");
  }
  const vel_node_t *count = distribution->arguments[0]->node;
  const vel_node_t *item = distribution->arguments[1]->node;
  if (count->subtype != vel_subtype_numbered) {
    return report_fault(node, vel_error_invalid_expression, "Aggregate distribution: `%s' must be a numbered node.\n",
                        count->name);
  }
  if (item->subtype != vel_subtype_interval) {
    return report_fault(node, vel_error_invalid_expression, "Aggregate distribution: `%s' must be an interval node.\n",
                        item->name);
  }
  if (!_vel_is_wellformed_interval_node(node) || !_vel_is_wellformed_interval_node(item) ||
      !_vel_is_wellformed_numbered_node(count)) {
    return vel::fail(vel_error_invalid_state_values);
  }
  // The count and item nodes' beliefs must come from a sum propagation.
  if (int code = _vel_node_check_inference_results(count)) return code;
  if (int code = _vel_node_check_inference_results(item)) return code;
  if (count->belief_table == nullptr) return vel::fail(vel_error_computation);
  if (_vel_aggregate(node, count->belief_table->data, count->state_count, item, result) != 0) {
    return _vel_error_code;
  }
  copy_to_bounds(result, n);
  return 0;
}

}  // namespace

int distribution_row(const builder_arguments_t &distribution, vel_node_t *node, double *result,
                     uint64_t n, double lower, double upper) {
  int truncated = lower > -DBL_MAX || upper < DBL_MAX;
  uint32_t op = distribution.distribution->operator_;
  if (op == vel_op_Uniform && node->subtype != vel_subtype_interval) {
    if (node->subtype == vel_subtype_numbered) return uniform_over_states(node, result, n, truncated);
    return vel::fail(vel_error_invalid_expression);
  }
  if (op >= vel_op_Normal && op <= vel_op_PERT) {
    return continuous_distribution(distribution, node, result, n, lower, upper, truncated);
  }
  if (op >= vel_op_Binomial && op <= vel_op_Geometric) {
    return discrete_distribution(distribution, node, result, n, truncated);
  }
  switch (op) {
    case vel_op_Distribution: return explicit_distribution(distribution, node, result, n, truncated);
    case vel_op_NoisyOR: return noisy_or(distribution, node, result, n, truncated);
    case vel_op_aggregate: return aggregate(distribution.distribution, node, result, n, truncated);
    default: return vel::fail(vel_error_unsupported);
  }
}

namespace {

// Evaluates the expression for the node itself and turns the outcome into a row.
int distribution_of_node(const vel_expression_t *expression, vel_node_t *node, double *result,
                         uint64_t n) {
  double lower = -DBL_MAX;
  double upper = DBL_MAX;
  const vel_expression_t *distribution = nullptr;
  switch (node->subtype) {
    case vel_subtype_labeled: {
      const char *label = nullptr;
      if (int code = eval_distribution_or_label_expr(expression, &label, &distribution, &lower,
                                                     &upper)) {
        return code;
      }
      if (distribution == nullptr) return place_label(node, result, n, label);
      break;
    }
    case vel_subtype_boolean: {
      int truth = 0;
      if (int code = eval_distribution_or_boolean_expr(expression, &truth, &distribution, &lower,
                                                       &upper)) {
        return code;
      }
      if (distribution == nullptr) return place_state(result, n, truth ? 1 : 0);
      break;
    }
    case vel_subtype_numbered:
    case vel_subtype_interval: {
      double value = 0.0;
      if (int code = eval_distribution_or_numeric_expr(expression, &value, &distribution, &lower,
                                                       &upper)) {
        return code;
      }
      if (distribution == nullptr) return place_value(node, result, n, value);
      break;
    }
    default:
      return vel::fail(vel_error_unsupported);
  }
  return distribution_row(builder_arguments_t{distribution, nullptr, nullptr}, node, result, n, lower,
                          upper);
}

}  // namespace

int compute_distribution(const vel_expression_t *expression, vel_node_t **nodes,
                         double *result, uint64_t n, uint64_t samples) {
  auto at_leaf = [](vel_node_t **position) { return position[1] == nullptr; };
  auto leaf = [&](vel_node_t **position, double *row) {
    return distribution_of_node(expression, position[0], row, n);
  };
  return sample_parents(nodes, result, n, samples, at_leaf, leaf);
}
