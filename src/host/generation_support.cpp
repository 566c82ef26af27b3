// Host operations around one table generation: the control data, texts of
// sizes, the log file and change notifications.
#include <cstdint>
#include <cstdio>

#include "common/error.h"
#include "host/host.h"
#include "host/storage_internal.h"
#include "table_generator/generation_workspace.h"

namespace {

thread_local char domainless_buffer[sizeof(vel_domain_s::print_buffer)];

}  // namespace

extern "C" {

const char *_vel_print_size(vel_domain_t *domain, uint64_t value) {
  char *buffer = domain ? domain->print_buffer : domainless_buffer;
  std::snprintf(buffer, sizeof domainless_buffer, "%llu", static_cast<unsigned long long>(value));
  return buffer;
}

// Strides make the expression cursor the row-major index of the model-node
// configuration, the first model node most significant; table nodes outside
// the model share one expression (stride 0).
vel_control_t *_vel_create_control_data_for_tg(const vel_table_t *table,
                                               const vel_model_t *model) {
  if (!table || !model) {
    vel::fail(vel_error_usage);
    return nullptr;
  }
  // The records, then the generation's other working data, in one block.
  const uint64_t bytes = _vel_generation_block_bytes(table, model);
  auto *control = static_cast<vel_control_t *>(_vel_allocate(bytes));
  if (!control) return nullptr;
  for (uint64_t i = 0; i < table->node_count; ++i) {
    const vel_node_t *node = table->nodes[i];
    int64_t position = _vel_node_index(node, model->nodes);
    uint64_t stride = 0;
    if (position >= 0) {
      stride = 1;
      for (vel_node_t *const *later = model->nodes + position + 1; *later; ++later)
        stride *= (*later)->state_count;
    }
    control[i] = {node->state_count, stride, static_cast<uint64_t>(position + 1)};
  }
  return control;
}

int _vel_domain_flush_log_file(vel_domain_t *domain) {
  if (!domain) return vel::fail(vel_error_usage);
  std::FILE *log = domain->host->captured_log ? domain->host->captured_log : domain->log_file;
  if (log && std::fflush(log) != 0) return vel::fail(vel_error_io);
  return _vel_error_code = 0;
}

void _vel_node_touch_table(vel_node_t *node, int) {
  if (!node || !node->domain || node->domain->host->trial) return;
  ++node->domain->host->table_version;
  if (vel::host::TableStorage *table = vel::host::storage_of(node).table.get()) table->filled = true;
}

void _vel_node_touch_model(vel_node_t *node) {
  if (node && node->model) node->model->tables_outdated = 1;
}

}  // extern "C"
