// Discrete distributions on numbered and interval nodes: not built yet.
#include "common/error.h"
#include "table_generator/table_generator.h"

int discrete_distribution(const vel_expression_t *, vel_node_t *, double *, uint64_t, int) {
  return vel::fail(vel_error_unsupported);
}
