// A generation into scratch storage: the node's table is set aside, a fresh
// one is generated and dropped, and the old one is put back with its
// outdated flag, so that a check can meet every failure generation would
// without changing what the domain holds.
#include <memory>
#include <utility>

#include "common/error.h"
#include "host/storage_internal.h"

extern "C" int vel_node_try_generate_table(vel_node_t *node) {
  if (!node || !node->model || is_real_function(node))
    return vel_node_generate_table(node);  // refused there, with the reason
  vel::host::NodeStorage &storage = vel::host::storage_of(node);
  vel_host_domain_data &domain = *node->domain->host;
  std::unique_ptr<vel::host::TableStorage> kept = std::move(storage.table);
  const bool kept_stale = storage.table_stale;
  const int32_t kept_outdated = node->model->tables_outdated;
  const bool nested = domain.trial;

  storage.table_stale = false;
  node->model->tables_outdated = 1;
  domain.trial = true;
  const int code = vel_node_generate_table(node);
  domain.trial = nested;
  storage.table = std::move(kept);  // frees the scratch table
  storage.table_stale = kept_stale;
  node->model->tables_outdated = kept_outdated;
  return vel::fail(code);
}
