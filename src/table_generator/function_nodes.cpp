// Function-node evaluation: not built yet.
#include "common/error.h"
#include "table_generator/table_generator.h"

extern "C" int _vel_node_compute_function_value(vel_node_t *, uint32_t) {
  return vel::fail(vel_error_unsupported);
}
