// Node tables: created on first request over the node's discrete parents (and
// the node itself when it has states), rebuilt when those change.
#include <cfloat>
#include <cmath>
#include <string>
#include <vector>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/storage_internal.h"
#include "table_generator/entries.h"

using namespace vel::host;

namespace {

std::vector<vel_node_t *> table_nodes(vel_node_t *node) {
  std::vector<vel_node_t *> nodes;
  for (vel_node_t *const *parent = node->parents; parent && *parent; ++parent)
    if (vel::host::is_discrete(*parent)) nodes.push_back(*parent);
  if (vel::host::is_discrete(node)) nodes.push_back(node);
  nodes.push_back(nullptr);
  return nodes;
}

// Whether the stored list (NULL-terminated) is still the node's table nodes;
// compared in place, so handing out an unchanged table allocates nothing.
bool same_table_nodes(const std::vector<vel_node_t *> &stored, vel_node_t *node) {
  size_t i = 0;
  auto next_is = [&](vel_node_t *expected) { return i < stored.size() && stored[i++] == expected; };
  for (vel_node_t *const *parent = node->parents; parent && *parent; ++parent)
    if (vel::host::is_discrete(*parent) && !next_is(*parent)) return false;
  if (vel::host::is_discrete(node) && !next_is(node)) return false;
  return next_is(nullptr) && i == stored.size();
}

const char *no_table_reason(const vel_node_t *node) {
  if (node->kind > 0) return "is continuous and has no table";
  if (is_real_function(node)) return "is a real-valued function node and has no table";
  return nullptr;
}

}  // namespace

namespace vel::host {

void invalidate_own_table(vel_node_t *node) {
  storage_of(node).table_stale = true;
  if (node->model) node->model->tables_outdated = 1;
}

// Function nodes read a discrete node's state and state value in both modes.
void invalidate_function_values(vel_node_t *node) {
  _vel_invalidate_function_children(node, vel_mode_inference);
  _vel_invalidate_function_children(node, vel_mode_configured);
}

void invalidate_tables(vel_node_t *node) {
  invalidate_own_table(node);
  for (vel_node_t *const *child = node->children; child && *child; ++child)
    invalidate_own_table(*child);
  invalidate_function_values(node);
  outdate_inference_readers(node->domain, node);
}

void outdate_models(vel_node_t *node) {
  if (node->model) node->model->tables_outdated = 1;
  for (vel_node_t *const *child = node->children; child && *child; ++child)
    if ((*child)->model) (*child)->model->tables_outdated = 1;
  invalidate_function_values(node);
  outdate_inference_readers(node->domain, node);
}

}  // namespace vel::host

extern "C" {

vel_table_t *vel_node_get_table(vel_node_t *node) {
  if (!check_not_null("vel_node_get_table", "node", node)) return nullptr;
  return guarded<vel_table_t *>(nullptr, [&]() -> vel_table_t * {
    if (const char *reason = no_table_reason(node)) {
      usage(std::string("node ") + node->name + " " + reason);
      return nullptr;
    }
    NodeStorage &storage = vel::host::storage_of(node);
    if (storage.table && !storage.table_stale && same_table_nodes(storage.table->nodes, node)) {
      _vel_error_code = 0;
      return &storage.table->record;
    }
    std::vector<vel_node_t *> nodes = table_nodes(node);
    uint64_t size = 1;
    for (vel_node_t *table_node : nodes)
      if (table_node && __builtin_mul_overflow(size, table_node->state_count, &size))
        size = UINT64_MAX;
    if (size > vel_max_table_entries) {
      // Refused before anything is allocated.
      vel::set_error_message(("the table of " + std::string(node->name) + " would have " +
                              (size == UINT64_MAX ? std::string("more than 2^64")
                                                  : std::to_string(size)) +
                              " entries, more than the limit of 2^32")
                                 .c_str());
      vel::fail(vel_error_too_large);
      return nullptr;
    }
    if (nodes.size() - 1 > vel_max_table_nodes) {
      vel::set_error_message(("the table of " + std::string(node->name) + " would have " +
                              std::to_string(nodes.size() - 1) + " nodes, more than the limit of " +
                              std::to_string(vel_max_table_nodes))
                                 .c_str());
      vel::fail(vel_error_too_large);
      return nullptr;
    }
    std::vector<float> data(size, 0.0f);
    if (!storage.table) storage.table = std::make_unique<TableStorage>();
    TableStorage &table = *storage.table;
    table.nodes.swap(nodes);
    table.data.swap(data);
    table.record.domain = node->domain;
    table.record.node = node;
    table.record.is_utility_table = node->category == vel_category_utility;
    table.record.nodes = table.nodes.data();
    table.record.node_count = table.nodes.size() - 1;
    table.record.data = table.data.data();
    table.record.size = size;
    table.filled = false;
    storage.table_stale = false;
    _vel_error_code = 0;
    return &table.record;
  });
}

vel_node_t *const *vel_table_get_nodes(const vel_table_t *table) {
  return checked_get("vel_table_get_nodes", table, nullptr, [&] { return table->nodes; });
}

size_t vel_table_get_node_count(const vel_table_t *table) {
  return checked_get("vel_table_get_node_count", table, static_cast<size_t>(-1),
                     [&] { return table->node_count; });
}

size_t vel_table_get_size(const vel_table_t *table) {
  return checked_get("vel_table_get_size", table, static_cast<size_t>(-1),
                     [&] { return table->size; });
}

float *vel_table_get_data(vel_table_t *table) {
  return checked_get("vel_table_get_data", table, nullptr, [&] { return table->data; });
}

int vel_table_is_utility(const vel_table_t *table) {
  return checked_get("vel_table_is_utility", table, 0,
                     [&] { return table->is_utility_table != 0; });
}

int vel_node_set_table_data(vel_node_t *node, const double *entries, size_t count) {
  if (!check_not_null("vel_node_set_table_data", "node", node)) return vel_error_usage;
  vel_table_t *table = vel_node_get_table(node);
  if (!table) return _vel_error_code;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    if (count != table->size)
      return usage(std::string("the table of ") + node->name + " has " +
                   std::to_string(table->size) + " entries, got " + std::to_string(count));
    if (count > 0 && !check_not_null("vel_node_set_table_data", "entries", entries))
      return vel_error_usage;
    for (size_t i = 0; i < count; ++i)
      if (!(std::fabs(entries[i]) <= FLT_MAX))
        return usage(std::string("entry ") + std::to_string(i) + " of the table of " + node->name +
                     " is not a finite single-precision number");
    for (size_t i = 0; i < count; ++i) table->data[i] = static_cast<float>(entries[i]);
    _vel_node_touch_table(node, 0);
    return _vel_error_code = 0;
  });
}

}  // extern "C"
