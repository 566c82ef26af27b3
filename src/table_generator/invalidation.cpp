// Discarding cached function-node values when something they depend on
// changes, and marking the tables generated from them as outdated.
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

namespace {

bool is_real_function(const vel_node_t *node) {
  return node->category == vel_category_function && node->kind < 0;
}

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

void _vel_invalidate_function_value(vel_node_t *node, uint32_t mode) {
  if (node == nullptr || mode > vel_mode_configured) return;
  // An invalid node has nothing cached, and neither has anything computed
  // from it since: the walk stops here.
  if (node->function_status[mode] < 0) return;
  node->function_status[mode] = -1;
  for (vel_node_t **c = node->children; c != nullptr && *c != nullptr; ++c) {
    vel_node_t *child = *c;
    if (!model_uses_node(child->model, node)) continue;
    if (is_real_function(child)) {
      _vel_invalidate_function_value(child, mode);
    } else if (mode == vel_mode_inference) {
      // Tables are generated from values of mode 0 only.
      _vel_node_touch_model(child);
    }
  }
  const vel_domain_t *domain = node->domain;
  if (domain == nullptr) return;
  const int64_t i = _vel_node_index(node, domain->mirrored_nodes);
  if (i < 0 || domain->mirror_list == nullptr) return;
  for (vel_mirror_t **mirror = domain->mirror_list; *mirror != nullptr; ++mirror) {
    _vel_invalidate_function_value((*mirror)->nodes[i], mode);
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
