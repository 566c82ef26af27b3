// State values of numbered and interval nodes: the host judges them, the
// generator turns a bad verdict into a log line and vel_error_invalid_state_values.
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/report_fault.h"
#include "table_generator/table_generator.h"

int state_values_verdict(const vel_node_t *node) {
  if (node->kind != vel_kind_discrete ||
      (node->subtype != vel_subtype_numbered && node->subtype != vel_subtype_interval)) {
    return 0;
  }
  return _vel_node_check_status_of_state_values(node);
}

const char *const state_values_format = "The state values of node %s %s.\n";

const char *state_values_word(int verdict) {
  return verdict == 1 ? "do not form an increasing sequence" : "use infinite values incorrectly";
}

extern "C" int _vel_check_state_values(vel_node_t *node) {
  int verdict = state_values_verdict(node);
  if (verdict == 0) return 0;
  return report_fault(node, vel_error_invalid_state_values, state_values_format, node->name,
                      state_values_word(verdict));
}
