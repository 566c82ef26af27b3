// The one walk over the configurations of a table's parents, for
// probability and utility tables alike: the first `count` table nodes take
// every combination of their states, the first node slowest and the last
// fastest, so that rows come in storage order; the expression cursor follows
// by the nodes' strides (the cursor points at the configuration's expression).  fill(cursor, changed) is called for each
// configuration, `changed` being the position of the first node whose state
// changed since the previous call (0 for the first).  Every walked node's
// state_index is -1 again when the walk ends, complete or stopped by a
// failing fill, whose code it returns.
#pragma once

#include <cstdint>

#include "host/records.h"

template <typename Fill>
int walk_configurations(vel_node_t **nodes, const vel_control_t *control, uint64_t count,
                        vel_expression_t **expressions, Fill fill) {
  for (uint64_t i = 0; i < count; ++i) {
    if (control[i].state_count == 0) return 0;  // no configuration at all
  }
  for (uint64_t i = 0; i < count; ++i) nodes[i]->state_index = 0;
  vel_expression_t **cursor = expressions;
  uint64_t changed = 0;
  for (;;) {
    if (int code = fill(cursor, changed)) {
      for (uint64_t i = 0; i < count; ++i) nodes[i]->state_index = -1;
      return code;
    }
    // The next configuration: the last node that can move on does, and
    // every node after it starts again at its first state.
    uint64_t i = count;
    while (i > 0 && static_cast<uint64_t>(nodes[i - 1]->state_index) + 1 == control[i - 1].state_count) --i;
    if (i == 0) break;
    --i;
    // Back to the first states after i, then on by i's stride: the cursor
    // never leaves the expression array.
    for (uint64_t j = i + 1; j < count; ++j) {
      cursor -= control[j].stride * (control[j].state_count - 1);
      nodes[j]->state_index = 0;
    }
    ++nodes[i]->state_index;
    cursor += control[i].stride;
    changed = i;
  }
  for (uint64_t i = 0; i < count; ++i) nodes[i]->state_index = -1;
  return 0;
}
