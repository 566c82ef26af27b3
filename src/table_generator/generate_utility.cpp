// Utility tables: one number per configuration of the parents, averaged over
// sample points of interval parents.
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

namespace {

// "(" and the table nodes' state indexes joined by ","; any failed write
// ends with vel_error_io.
int write_configuration(const vel_table_t *table, FILE *log) {
  if (fputs("(", log) < 0) return vel::fail(vel_error_io);
  for (vel_node_t **n = table->nodes; *n != nullptr; ++n) {
    if (n != table->nodes && fputs(",", log) < 0) return vel::fail(vel_error_io);
    const char *index = _vel_print_size(table->domain, static_cast<uint64_t>((*n)->state_index));
    if (fputs(index, log) < 0) return vel::fail(vel_error_io);
  }
  return 0;
}

// The line is left without a newline; the evaluation's code wins over a
// failed write of its closing text.
int report_failed_evaluation(const vel_table_t *table) {
  int code = _vel_error_code;
  FILE *log = table->domain->log_file;
  if (log != nullptr) {
    if (int io = write_configuration(table, log)) return io;
    fputs("): evaluation failed", log);
  }
  return vel::fail(code);
}

int write_entry(vel_table_t *table, float **data, double value, double low, double high) {
  *(*data)++ = static_cast<float>(value);
  bool forbidden_negative = table->is_utility_table == 0 && low < 0.0;
  if (!(high > low || forbidden_negative)) return 0;
  FILE *log = table->domain->log_file;
  if (log != nullptr) {
    if (int io = write_configuration(table, log)) return io;
    if (fprintf(log, "): %g (min=%g, max=%g)\n", value, low, high) < 0) {
      return vel::fail(vel_error_io);
    }
  }
  if (forbidden_negative) return vel::fail(vel_error_negative_entry);
  return 0;
}

// Evaluates into value/min/max for the sample point that `point` gives the
// interval node, after setting it.
int evaluate_at(vel_node_t *node, double point, const vel_expression_t *expression,
                vel_node_t **rest, double *value, double *min, double *max, uint64_t samples) {
  node->value = point;
  return compute_value(expression, rest, value, min, max, samples);
}

}  // namespace

int compute_value(const vel_expression_t *expression, vel_node_t **nodes, double *value,
                  double *min, double *max, uint64_t samples) {
  vel_node_t *node = nodes[0];
  if (node == nullptr) {
    _vel_error_code = 0;
    if (eval_numeric_expr(expression, value) != 0) return _vel_error_code;
    *max = *value;
    *min = *max;
    return 0;
  }
  if (node->subtype == vel_subtype_numbered) {
    node->value = node->state_values[node->state_index];
    return compute_value(expression, nodes + 1, value, min, max, samples);
  }
  if (node->subtype != vel_subtype_interval) {
    return compute_value(expression, nodes + 1, value, min, max, samples);
  }

  double lo = node->state_values[node->state_index];
  double hi = node->state_values[node->state_index + 1];
  double point;
  if (unbounded_interval_point(lo, hi, &point)) {
    return evaluate_at(node, point, expression, nodes + 1, value, min, max, samples);
  }
  double width = (hi - lo) / static_cast<double>(samples);
  if (int code = evaluate_at(node, lo + 0.5 * width, expression, nodes + 1, value, min, max,
                             samples)) {
    return code;
  }
  if (width == 0.0) return 0;
  double sum = *value;
  for (uint64_t k = 1; k < samples; ++k) {
    double v, low, high;
    double at = lo + (static_cast<double>(k) + 0.5) * width;
    if (int code = evaluate_at(node, at, expression, nodes + 1, &v, &low, &high, samples)) {
      return code;
    }
    sum += v;
    if (low < *min) *min = low;
    if (high > *max) *max = high;
  }
  *value = sum / static_cast<double>(samples);
  return 0;
}

int generate_utility(vel_table_t *table, float **data, vel_expression_t **expressions,
                     vel_node_t **nodes, const vel_control_t *control) {
  vel_node_t *node = nodes[0];
  if (node == nullptr) {
    double value, low, high;
    uint64_t samples = table->node->model->samples_per_interval;
    const int code = compute_value(*expressions, table->nodes, &value, &low, &high, samples) != 0
                         ? report_failed_evaluation(table)
                         : write_entry(table, data, value, low, high);
    if (code != 0) vel::set_failed_expression(expressions - table->node->model->expressions);
    return code;
  }
  for (uint64_t s = 0; s < control->state_count; ++s) {
    node->state_index = static_cast<int64_t>(s);
    if (generate_utility(table, data, expressions, nodes + 1, control + 1) != 0) {
      node->state_index = -1;
      return _vel_error_code;
    }
    if (s + 1 < control->state_count) expressions += control->stride;
  }
  node->state_index = -1;
  return 0;
}
