// The working data of one generation beyond the control records: it lives
// in the same block as they do, which _vel_create_control_data_for_tg makes
// in one allocation, so that a generation allocates nothing else.
#include "table_generator/generation_workspace.h"

#include <cstddef>

#include "table_generator/batch_plan.h"
#include "table_generator/table_generator.h"

namespace {

constexpr uint64_t alignment = 64;

// Saturates like size_multiply, so that an impossible size stays one.
uint64_t aligned(uint64_t bytes) {
  return bytes > UINT64_MAX - alignment ? UINT64_MAX : (bytes + alignment - 1) / alignment * alignment;
}

// Three doubles per table node and one more: a utility row's value, minimum
// and maximum at each level of sampled interval parents.
uint64_t block_bytes(const vel_table_t *table) {
  return aligned(size_multiply(3 * sizeof(double), table->node_count + 1));
}

uint64_t records_bytes(const vel_table_t *table) {
  return aligned(size_multiply(sizeof(vel_control_t), table->node_count));
}

bool batches(const vel_table_t *table) { return table->domain->scalar_generation == 0; }

}  // namespace

extern "C" uint64_t _vel_generation_block_bytes(const vel_table_t *table, const vel_model_t *model) {
  uint64_t bytes = 0;
  if (__builtin_add_overflow(records_bytes(table), block_bytes(table), &bytes)) return UINT64_MAX;
  if (batches(table) && __builtin_add_overflow(bytes, aligned(batch_plan_bytes(table, model)), &bytes))
    return UINT64_MAX;
  return bytes;
}

generation_workspace_t workspace_of(vel_control_t *control, vel_table_t *table, const vel_model_t *model) {
  char *base = reinterpret_cast<char *>(control) + records_bytes(table);
  generation_workspace_t workspace{};
  workspace.blocks = reinterpret_cast<double *>(base);
  if (batches(table)) workspace.batch = batch_plan_in(base + block_bytes(table), table, model);
  return workspace;
}
