// The edges of the graph: parents and children of nodes.
#include <string>
#include <vector>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/storage_internal.h"

using vel::host::guarded;
using vel::host::NodeStorage;
using vel::host::usage;

namespace {

vel_node_t *const empty_list[] = {nullptr};

// Whether `target` is reachable from `start` along child edges.
bool reaches(const vel_node_t *start, const vel_node_t *target) {
  std::vector<char> seen(start->domain->host->nodes.size(), 0);
  std::vector<const vel_node_t *> pending{start};
  while (!pending.empty()) {
    const vel_node_t *node = pending.back();
    pending.pop_back();
    if (node == target) return true;
    if (seen[node->index]) continue;
    seen[node->index] = 1;
    for (vel_node_t *const *child = node->children; child && *child; ++child)
      pending.push_back(*child);
  }
  return false;
}

void append(std::vector<vel_node_t *> &list, vel_node_t *node) {
  if (list.empty()) list.push_back(nullptr);
  list.back() = node;
  list.push_back(nullptr);
}

}  // namespace

extern "C" {

int vel_node_add_parent(vel_node_t *node, vel_node_t *parent) {
  if (!node || !parent) return usage("vel_node_add_parent: node or parent is NULL");
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    std::string names = std::string(parent->name) + " as a parent of " + node->name;
    if (parent->domain != node->domain)
      return usage("cannot add " + names + ": the nodes belong to different domains");
    if (parent == node) return usage("cannot add " + names + ": a node cannot be its own parent");
    if (_vel_node_in_list(parent, node->parents))
      return usage("cannot add " + names + ": it is a parent already");
    if (reaches(node, parent)) return usage("cannot add " + names + ": it would close a directed cycle");

    NodeStorage &child_storage = vel::host::storage_of(node);
    NodeStorage &parent_storage = vel::host::storage_of(parent);
    child_storage.parents.reserve(child_storage.parents.size() + 2);
    parent_storage.children.reserve(parent_storage.children.size() + 2);
    append(child_storage.parents, parent);  // cannot throw from here on: reserved
    append(parent_storage.children, node);
    ++node->parent_count;
    ++parent->child_count;
    vel::host::sync_node_lists(child_storage);
    vel::host::sync_node_lists(parent_storage);
    vel::host::invalidate_own_table(node);
    vel::host::structure_changed(node->domain);
    return _vel_error_code = 0;
  });
}

vel_node_t *const *vel_node_get_parents(const vel_node_t *node) {
  if (!node) {
    usage("vel_node_get_parents: node is NULL");
    return nullptr;
  }
  _vel_error_code = 0;
  return node->parents ? node->parents : empty_list;
}

vel_node_t *const *vel_node_get_children(const vel_node_t *node) {
  if (!node) {
    usage("vel_node_get_children: node is NULL");
    return nullptr;
  }
  _vel_error_code = 0;
  return node->children ? node->children : empty_list;
}

}  // extern "C"
