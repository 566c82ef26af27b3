// Utility tables: one number per configuration of the parents, averaged over
// sample points of interval parents.
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/batch_plan.h"
#include "table_generator/configuration_walk.h"
#include "table_generator/sampler.h"
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

int compute_value(const vel_expression_t *expression, vel_node_t **nodes, double *block,
                  uint64_t samples) {
  auto at_leaf = [](vel_node_t **position) { return position[0] == nullptr; };
  auto leaf = [&](vel_node_t **, double *row) {
    _vel_error_code = 0;
    if (eval_numeric_expr(expression, &row[0]) != 0) return _vel_error_code;
    row[2] = row[0];
    row[1] = row[2];
    return 0;
  };
  return sample_parents(nodes, block, 1, samples, at_leaf, leaf);
}

}  // namespace

int generate_utility(vel_table_t *table, float **data, vel_expression_t **expressions,
                     const vel_control_t *control, double *block, batch_plan_t *batch) {
  const uint64_t samples = table->node->model->samples_per_interval;
  // An entry by batch evaluation when it can be had so, else on the scalar path.
  auto compute_entry = [&](const vel_expression_t *expression, uint64_t changed) {
    if (batch && batch_row(batch, expression, changed, block, block) == 0) return 0;
    return compute_value(expression, table->nodes, block, samples);
  };
  return walk_configurations(table->nodes, control, table->node_count, expressions,
                             [&](vel_expression_t **cursor, uint64_t changed) {
    const int code = compute_entry(*cursor, changed) != 0
                         ? report_failed_evaluation(table)
                         : write_entry(table, data, block[0], block[1], block[2]);
    if (code != 0) vel::set_failed_expression(cursor - expressions);
    return code;
  });
}
