// The value of a real-valued function node, computed by the table generator's
// function-node evaluation and cached per mode in the node.
#include <string>

#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "table_generator/entries.h"

using vel::host::check_not_null;

extern "C" {

double vel_node_get_value(vel_node_t *node) {
  double value = 0.0;
  if (vel_node_compute_value(node, vel_mode_inference, &value) != 0) return -1.0;
  return value;
}

int vel_node_compute_value(vel_node_t *node, int mode, double *value) {
  if (!check_not_null("vel_node_compute_value", "node", node)) return vel_error_usage;
  if (!check_not_null("vel_node_compute_value", "value", value)) return vel_error_usage;
  if (mode != vel_mode_inference && mode != vel_mode_configured)
    return vel::host::usage("vel_node_compute_value: mode must be 0 (inference) or 1 (configured)");
  if (!is_real_function(node))
    return vel::host::guarded<int>(vel_error_out_of_memory, [&] {
      return vel::host::usage(std::string(node->name) + " is not a real-valued function node");
    });
  if (int code = _vel_node_compute_function_value(node, static_cast<uint32_t>(mode))) {
    // The evaluation writes no log; its code says what went wrong.
    vel::set_error_message(vel_error_description(code));
    return vel::fail(code);
  }
  *value = mode == vel_mode_inference ? node->inferred_value : node->configured_value;
  return _vel_error_code = 0;
}

}  // extern "C"
