// Discarding cached function-node values when something they depend on
// changes, and marking the tables generated from them as outdated.
#include "host/record_queries.h"
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

namespace {

void initialize_domain(vel_domain_t *domain) {
  const uint64_t *k = domain->node_counters;
  const bool check_parents = k[2] + k[3] + k[5] - k[0] != k[1];
  for (vel_node_t *node = domain->first_node; node != nullptr; node = node->next) {
    vel_model_t *model = node->model;
    if (model == nullptr || model->function_value_use == 0) continue;
    model->function_value_use = 0;
    model->tables_outdated = 0;
    if (!check_parents || node->parents == nullptr) continue;
    for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
      if (!is_real_function(*p) || !_vel_node_appears_in_model(model, *p)) continue;
      if (vel_node_get_value(*p) < 0.0 && _vel_error_code != 0) {
        model->tables_outdated = 1;
        break;
      }
    }
  }
}

}  // namespace

extern "C" {

// Iterative, so that a chain of any length is walked without deep
// recursion; the nodes to go on from are linked through their
// invalidation_next fields.  Each node is invalidated once: one that is
// already invalid has nothing cached, and neither has anything computed from
// it since, so the walk stops there.
void _vel_invalidate_function_value(vel_node_t *node, uint32_t mode) {
  if (node == nullptr || mode > vel_mode_configured) return;
  vel_node_t *pending = nullptr;
  auto invalidate = [&](vel_node_t *n) {
    if (n->function_status[mode] < 0) return;
    n->function_status[mode] = -1;
    n->invalidation_next = pending;
    pending = n;
  };
  invalidate(node);
  while (vel_node_t *n = pending) {
    pending = n->invalidation_next;
    for (vel_node_t **c = n->children; c != nullptr && *c != nullptr; ++c) {
      vel_node_t *child = *c;
      if (!model_uses_node(child->model, n)) continue;
      if (is_real_function(child)) {
        invalidate(child);
      } else if (mode == vel_mode_inference) {
        // Tables are generated from values of mode 0 only.
        _vel_node_touch_model(child);
      }
    }
    const vel_domain_t *domain = n->domain;
    if (domain == nullptr) continue;
    const int64_t i = _vel_node_index(n, domain->mirrored_nodes);
    if (i < 0 || domain->mirror_list == nullptr) continue;
    for (vel_mirror_t **mirror = domain->mirror_list; *mirror != nullptr; ++mirror) {
      invalidate((*mirror)->nodes[i]);
    }
  }
}

void _vel_invalidate_function_children(vel_node_t *node, uint32_t mode) {
  if (node == nullptr || mode > vel_mode_configured) return;
  for (vel_node_t **c = node->children; c != nullptr && *c != nullptr; ++c) {
    vel_node_t *child = *c;
    if (child->category != vel_category_function ||
        !model_uses_node(child->model, node)) {
      continue;
    }
    if (child->kind < 0) {
      _vel_invalidate_function_value(child, mode);
    } else if (mode == vel_mode_inference) {
      _vel_node_touch_model(child);
    }
  }
}

void _vel_domain_initialize_function_status_codes(vel_domain_t *domain) {
  if (domain != nullptr) initialize_domain(domain);
  _vel_error_code = 0;
}

void _vel_cc_initialize_function_status_codes(vel_collection_t *collection, uint64_t first) {
  if (collection != nullptr && collection->domains != nullptr) {
    // A first index past the terminating NULL names no domain at all.
    uint64_t count = 0;
    while (collection->domains[count] != nullptr) ++count;
    for (uint64_t i = first; i < count; ++i) initialize_domain(collection->domains[i]);
  }
  _vel_error_code = 0;
}

}  // extern "C"
