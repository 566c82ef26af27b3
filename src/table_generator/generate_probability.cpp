// Conditional probability and policy tables: one row per configuration of the
// parents, from compute_distribution, written in storage order.
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/batch_plan.h"
#include "table_generator/configuration_walk.h"
#include "table_generator/table_generator.h"

namespace {

// "(i0,i1,...,state): P (min=L, max=U)\n".  A failed "(" is remembered and
// the line goes on; any later failed piece ends it with vel_error_io.
int write_row_diagnostic(const vel_table_t *table, vel_node_t **nodes, uint64_t state,
                         double p, double low, double high) {
  vel_domain_t *domain = table->domain;
  FILE *log = domain->log_file;
  if (log == nullptr) return 0;
  if (fputs("(", log) < 0) vel::fail(vel_error_io);
  for (vel_node_t **n = nodes; n[1] != nullptr; ++n) {
    const char *index = _vel_print_size(domain, static_cast<uint64_t>((*n)->state_index));
    if (fprintf(log, "%s,", index) < 0) return vel::fail(vel_error_io);
  }
  if (fprintf(log, "%s): ", _vel_print_size(domain, state)) < 0) return vel::fail(vel_error_io);
  if (fprintf(log, "%g (min=%g, max=%g)\n", p, low, high) < 0) return vel::fail(vel_error_io);
  return 0;
}

int write_row(vel_table_t *table, const double *work, float **data, uint64_t n) {
  const double *p = work;
  const double *low = work + n;
  const double *high = work + 2 * n;
  for (uint64_t i = 0; i < n; ++i) *(*data)++ = static_cast<float>(p[i]);
  for (uint64_t i = 0; i < n; ++i) {
    if (!(high[i] > low[i] || low[i] < 0.0)) continue;
    if (int code = write_row_diagnostic(table, table->nodes, i, p[i], low[i], high[i])) {
      return code;
    }
    if (low[i] < 0.0) return vel::fail(vel_error_negative_entry);
  }
  return 0;
}


// A row by batch evaluation when it can be had so, else on the scalar path.
int compute_row(batch_plan_t *batch, const vel_expression_t *expression, uint64_t changed,
                vel_node_t **nodes, double *work, uint64_t n, uint64_t samples) {
  if (batch && batch_row(batch, expression, changed, work, work) == 0) return 0;
  return compute_distribution(expression, nodes, work, n, samples);
}

}  // namespace

int generate_probability(vel_table_t *table, double *work, float **data,
                         vel_expression_t **expressions, const vel_control_t *control,
                         batch_plan_t *batch) {
  const uint64_t parents = table->node_count - 1;
  const uint64_t n = control[parents].state_count;
  const uint64_t samples = table->node->model->samples_per_interval;
  return walk_configurations(table->nodes, control, parents, expressions,
                             [&](vel_expression_t **cursor, uint64_t changed) {
    const int code = compute_row(batch, *cursor, changed, table->nodes, work, n, samples) != 0
                         ? _vel_error_code
                         : write_row(table, work, data, n);
    if (code != 0) vel::set_failed_expression(cursor - expressions);
    return code;
  });
}
