// Continuous distributions on interval nodes: not built yet.
#include "common/error.h"
#include "table_generator/table_generator.h"

int continuous_distribution(const vel_expression_t *, vel_node_t *, double *, uint64_t,
                            double, double, int) {
  return vel::fail(vel_error_unsupported);
}

int check_state_range(double, double, vel_node_t *, uint64_t, uint32_t, int) {
  return vel::fail(vel_error_unsupported);
}
