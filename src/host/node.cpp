// Node creation and the accessors of a node's identity.
#include <cstring>
#include <string>

#include "host/api_guard_internal.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

bool is_identifier(const char *name) {
  auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
  auto digit = [](char c) { return c >= '0' && c <= '9'; };
  if (!letter(name[0])) return false;
  for (const char *c = name + 1; *c; ++c)
    if (!letter(*c) && !digit(*c)) return false;
  return std::strcmp(name, "true") != 0 && std::strcmp(name, "false") != 0;
}

// Null when the combination of category, kind and subtype is valid, else why not.
const char *combination_error(int category, int kind, int subtype) {
  if (kind == vel_kind_discrete) {
    if (subtype < vel_subtype_labeled || subtype > vel_subtype_interval)
      return "a discrete node needs subtype 30, 31, 32 or 33";
    if (category == vel_category_utility) return "a utility node has no states";
    return nullptr;
  }
  if (subtype != vel_subtype_none) return "a node without states takes subtype 0";
  if (kind > 0) {
    if (category == vel_category_function || category == vel_category_decision ||
        category == vel_category_utility)
      return "only chance nodes may be continuous";
    return nullptr;
  }
  if (category != vel_category_utility && category != vel_category_function)
    return "only utility and function nodes may be without states";
  return nullptr;
}

}  // namespace

extern "C" {

vel_node_t *vel_domain_new_node(vel_domain_t *domain, int category, int kind, int subtype,
                                const char *name) {
  if (!check_not_null("vel_domain_new_node", "domain or name", domain, name)) return nullptr;
  return guarded<vel_node_t *>(nullptr, [&]() -> vel_node_t * {
    if (!is_identifier(name)) {
      usage(std::string("invalid node name '") + name + "'");
      return nullptr;
    }
    if (const char *why = combination_error(category, kind, subtype)) {
      usage(std::string("node ") + name + ": " + why);
      return nullptr;
    }
    vel_host_domain_data &host = *domain->host;
    if (host.by_name.count(name)) {
      usage(std::string("a node named ") + name + " already exists");
      return nullptr;
    }
    auto storage = std::make_unique<NodeStorage>();
    vel_node_s &node = storage->record;
    storage->name = name;
    node.domain = domain;
    node.category = category;
    node.kind = kind;
    node.subtype = subtype;
    node.junction_tree = domain->junction_tree;
    node.state_index = -1;
    node.function_status[0] = node.function_status[1] = -1;
    node.configured_state = -1;
    if (kind == vel_kind_discrete) {
      node.evidence.state = -1;
      storage->beliefs = std::make_unique<vel::host::TableStorage>();
      storage->beliefs->nodes = {&node, nullptr};
      if (subtype == vel_subtype_boolean) {
        storage->labels = {"false", "true"};
        node.state_count = 2;
      } else if (subtype == vel_subtype_interval) {
        storage->values.assign(1, 0.0);
      }
      storage->beliefs->data.assign(node.state_count, 0.0f);
    } else {
      node.evidence.value = 0.0;
    }
    node.index = host.nodes.size();
    node.topological_order = host.next_topological_order++;
    node.name = storage->name.data();
    vel::host::sync_labels(*storage);
    vel::host::sync_node_lists(*storage);
    vel::host::reserve_more(host.nodes, 1);
    host.by_name.emplace(storage->name, &node);
    host.nodes.push_back(std::move(storage));  // cannot throw: reserved
    if (domain->last_node)
      domain->last_node->next = &node;
    else
      domain->first_node = &node;
    domain->last_node = &node;
    vel::host::structure_changed(domain);
    _vel_error_code = 0;
    return &node;
  });
}

const char *vel_node_get_name(const vel_node_t *node) {
  return checked_get("vel_node_get_name", node, nullptr, [&] { return node->name; });
}

vel_domain_t *vel_node_get_domain(const vel_node_t *node) {
  return checked_get("vel_node_get_domain", node, nullptr, [&] { return node->domain; });
}

int vel_node_get_category(const vel_node_t *node) {
  return checked_get("vel_node_get_category", node, 0, [&] { return node->category; });
}

int vel_node_get_kind(const vel_node_t *node) {
  return checked_get("vel_node_get_kind", node, 0, [&] { return node->kind; });
}

int vel_node_get_subtype(const vel_node_t *node) {
  return checked_get("vel_node_get_subtype", node, 0, [&] { return node->subtype; });
}

}  // extern "C"

namespace vel::host {

void sync_node_lists(NodeStorage &storage) {
  storage.record.parents = storage.parents.empty() ? nullptr : storage.parents.data();
  storage.record.children = storage.children.empty() ? nullptr : storage.children.data();
  storage.record.state_values = storage.values.empty() ? nullptr : storage.values.data();
  if (storage.beliefs) {
    TableStorage &beliefs = *storage.beliefs;
    beliefs.record.domain = storage.record.domain;
    beliefs.record.node = &storage.record;
    beliefs.record.nodes = storage.beliefs->nodes.data();
    beliefs.record.node_count = 1;
    beliefs.record.data = beliefs.data.data();
    beliefs.record.size = beliefs.data.size();
    storage.record.belief_table = &beliefs.record;
  }
}

void sync_labels(NodeStorage &storage) {
  storage.label_pointers.resize(storage.labels.size());
  for (size_t i = 0; i < storage.labels.size(); ++i)
    storage.label_pointers[i] = storage.labels[i].data();
  storage.record.state_labels = storage.label_pointers.empty() ? nullptr : storage.label_pointers.data();
}

}  // namespace vel::host
