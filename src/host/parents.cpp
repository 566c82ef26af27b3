// The edges of the graph: parents and children of nodes.
#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

vel_node_t *const empty_list[] = {nullptr};

// The nodes reachable from `start` along `next` edges (children or parents)
// whose topological order lies within [low, high]; false as soon as `stop`
// is met.
template <typename Next>
bool collect(vel_node_t *start, int64_t low, int64_t high, const vel_node_t *stop, Next next,
             std::vector<vel_node_t *> &found) {
  std::unordered_set<const vel_node_t *> seen{start};
  std::vector<vel_node_t *> pending{start};
  while (!pending.empty()) {
    vel_node_t *node = pending.back();
    pending.pop_back();
    if (node == stop) return false;
    found.push_back(node);
    for (vel_node_t *const *other = next(node); other && *other; ++other) {
      const int64_t order = (*other)->topological_order;
      if (order >= low && order <= high && seen.insert(*other).second) pending.push_back(*other);
    }
  }
  return true;
}

// Keeps every edge going from a lower to a higher topological order, so that
// an edge that agrees with the order is accepted at once.  One that does not
// is mended cheaply when its parent has no parents (it moves below every
// node) or its child no children (it moves above every node), as when a
// network is written children first; otherwise Pearce and Kelly's dynamic
// topological sort reorders just the nodes between the edge's ends.  False
// when the edge would close a directed cycle; the order is then valid still.
bool order_for_edge(vel_node_t *parent, vel_node_t *child) {
  const int64_t low = child->topological_order, high = parent->topological_order;
  if (high < low) return true;
  vel_host_domain_data &domain = *child->domain->host;
  if (parent->parents == nullptr || parent->parents[0] == nullptr) {
    parent->topological_order = --domain.lowest_topological_order;
    return true;
  }
  if (child->children == nullptr || child->children[0] == nullptr) {
    child->topological_order = domain.next_topological_order++;
    return true;
  }
  std::vector<vel_node_t *> below, above;
  if (!collect(child, low, high, parent, [](vel_node_t *n) { return n->children; }, below))
    return false;
  collect(parent, low, high, nullptr, [](vel_node_t *n) { return n->parents; }, above);
  auto by_order = [](const vel_node_t *a, const vel_node_t *b) {
    return a->topological_order < b->topological_order;
  };
  std::sort(below.begin(), below.end(), by_order);
  std::sort(above.begin(), above.end(), by_order);
  std::vector<int64_t> orders;
  orders.reserve(below.size() + above.size());
  for (const vel_node_t *n : above) orders.push_back(n->topological_order);
  for (const vel_node_t *n : below) orders.push_back(n->topological_order);
  std::sort(orders.begin(), orders.end());
  // The parent's ancestors in the window take the lower orders, the child's
  // descendants the higher ones, each group keeping its own sequence.
  std::size_t i = 0;
  for (vel_node_t *n : above) n->topological_order = orders[i++];
  for (vel_node_t *n : below) n->topological_order = orders[i++];
  return true;
}

uint64_t edge_key(const vel_node_t *parent, const vel_node_t *child) {
  return parent->index << 32 | child->index;
}

void append(std::vector<vel_node_t *> &list, vel_node_t *node) {
  if (list.empty()) list.push_back(nullptr);
  list.back() = node;
  list.push_back(nullptr);
}

}  // namespace

extern "C" {

int vel_node_add_parent(vel_node_t *node, vel_node_t *parent) {
  if (!check_not_null("vel_node_add_parent", "node or parent", node, parent))
    return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    std::string names = std::string(parent->name) + " as a parent of " + node->name;
    if (parent->domain != node->domain)
      return usage("cannot add " + names + ": the nodes belong to different domains");
    if (parent == node) return usage("cannot add " + names + ": a node cannot be its own parent");
    vel_host_domain_data &domain = *node->domain->host;
    if (domain.edges.count(edge_key(parent, node)))
      return usage("cannot add " + names + ": it is a parent already");
    if (!order_for_edge(parent, node))
      return usage("cannot add " + names + ": it would close a directed cycle");

    NodeStorage &child_storage = vel::host::storage_of(node);
    NodeStorage &parent_storage = vel::host::storage_of(parent);
    vel::host::reserve_more(child_storage.parents, 2);
    vel::host::reserve_more(parent_storage.children, 2);
    domain.edges.insert(edge_key(parent, node));
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
  return checked_get("vel_node_get_parents", node, nullptr,
                     [&] { return node->parents ? node->parents : empty_list; });
}

vel_node_t *const *vel_node_get_children(const vel_node_t *node) {
  return checked_get("vel_node_get_children", node, nullptr,
                     [&] { return node->children ? node->children : empty_list; });
}

}  // extern "C"
