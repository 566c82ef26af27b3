// The value of a real-valued function node, computed by the table generator's
// function-node evaluation from inference results.
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "table_generator/table_generator.h"

extern "C" double vel_node_get_value(vel_node_t *node) {
  if (!node) {
    vel::host::usage("vel_node_get_value: node is NULL");
    return -1.0;
  }
  if (!vel::host::is_real_function(node)) {
    vel::host::usage("vel_node_get_value: not a real-valued function node");
    return -1.0;
  }
  if (_vel_node_compute_function_value(node, vel_mode_inference) != 0) return -1.0;
  _vel_error_code = 0;
  return node->inferred_value;
}
