// The aggregate distribution of a function node: the numbers come from
// aggregate_sum; this keeps the last sum, since a table asks for the same one
// in every row and at every sample point of its interval parents.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "common/error.h"
#include "host/host.h"
#include "special/aggregate_sum.h"

namespace {

// The last inputs and their outcome, compared by content, so that each
// distinct sum is worked out once.
struct LastSum {
  std::vector<float> counts, item_beliefs;
  std::vector<double> item_bounds, bounds, row;
  int code = -1;  // none yet

  bool holds(const float *count_beliefs, uint64_t count_state_count, const vel_node_t *item,
             const vel_node_t *node) const {
    auto same = [](const auto &kept, const auto *data, uint64_t size) {
      return kept.size() == size && std::equal(kept.begin(), kept.end(), data);
    };
    return code >= 0 && same(counts, count_beliefs, count_state_count) &&
           same(item_beliefs, item->belief_table->data, item->state_count) &&
           same(item_bounds, item->state_values, item->state_count + 1) &&
           same(bounds, node->state_values, node->state_count + 1);
  }
};

thread_local LastSum last_sum;

}  // namespace

extern "C" int _vel_aggregate(const vel_node_t *node, const float *count_beliefs,
                              uint64_t count_state_count, const vel_node_t *item, double *out) {
  try {
    if (item->belief_table == nullptr) return vel::fail(vel_error_computation);
    LastSum &last = last_sum;
    if (!last.holds(count_beliefs, count_state_count, item, node)) {
      last.code = -1;
      last.counts.assign(count_beliefs, count_beliefs + count_state_count);
      last.item_beliefs.assign(item->belief_table->data,
                               item->belief_table->data + item->state_count);
      last.item_bounds.assign(item->state_values, item->state_values + item->state_count + 1);
      last.bounds.assign(node->state_values, node->state_values + node->state_count + 1);
      last.row.assign(node->state_count, 0.0);
      last.code = vel::special::aggregate_sum(count_beliefs, count_state_count, item->belief_table->data, item->state_values,
                                item->state_count, node->state_values, node->state_count, last.row.data());
    }
    if (last.code == 0) std::copy(last.row.begin(), last.row.end(), out);
    return vel::fail(last.code);
  } catch (...) {
    last_sum.code = -1;
    return vel::fail(vel_error_out_of_memory);
  }
}
