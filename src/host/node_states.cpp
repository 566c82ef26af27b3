// The states of discrete nodes: their number, labels and numeric values.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/api_guard_internal.h"
#include "host/host.h"
#include "host/model_size_internal.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

std::string name_of(const vel_node_t *node) { return node->name; }

bool has_labels(const vel_node_t *node) {
  return node->subtype == vel_subtype_labeled || node->subtype == vel_subtype_boolean;
}

size_t value_count(int subtype, size_t states) {
  if (subtype == vel_subtype_numbered) return states;
  if (subtype == vel_subtype_interval) return states + 1;
  return 0;
}

}  // namespace

extern "C" {

int vel_node_set_number_of_states(vel_node_t *node, size_t count) {
  if (!check_not_null("vel_node_set_number_of_states", "node", node)) return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    if (!vel::host::is_discrete(node))
      return usage("node " + name_of(node) + " has no states");
    if (node->subtype == vel_subtype_boolean)
      return usage("boolean node " + name_of(node) + " always has two states");
    if (count == std::numeric_limits<size_t>::max())
      return usage("too many states for node " + name_of(node));
    NodeStorage &storage = vel::host::storage_of(node);

    // Models over this node: their sizes change, which only an unspecified
    // model can follow.
    std::vector<std::pair<vel_model_t *, uint64_t>> resized;
    for (vel_node_t *child : storage.children) {
      if (!child || !child->model || !_vel_node_in_list(node, child->model->nodes)) continue;
      if (child->model->expressions)
        return usage("node " + name_of(node) + " is a model node of the model of " +
                     name_of(child) + ", which has expressions");
      uint64_t size = 0;
      if (!vel::host::model_size(child->model->nodes, node, count, &size))
        return usage("the model of " + name_of(child) + " would have too many expressions");
      resized.emplace_back(child->model, size);
    }

    std::vector<std::string> labels = storage.labels;
    std::vector<double> values = storage.values;
    std::vector<float> beliefs(count, 0.0f);
    if (node->subtype == vel_subtype_labeled) labels.resize(count);
    values.resize(value_count(node->subtype, count), 0.0);

    storage.labels.swap(labels);
    storage.values.swap(values);
    storage.beliefs->data.swap(beliefs);
    node->state_count = count;
    vel::host::sync_labels(storage);
    vel::host::sync_node_lists(storage);
    for (auto &[model, size] : resized) model->expression_count = size;
    if (node->evidence.state >= static_cast<int64_t>(count)) node->evidence.state = -1;
    if (node->configured_state >= static_cast<int64_t>(count)) node->configured_state = -1;
    storage.entered_state = -1;
    storage.entered_likelihood.clear();
    vel::host::invalidate_tables(node);
    vel::host::structure_changed(node->domain);
    return _vel_error_code = 0;
  });
}

size_t vel_node_get_number_of_states(const vel_node_t *node) {
  if (!check_not_null("vel_node_get_number_of_states", "node", node))
    return static_cast<size_t>(-1);
  if (!vel::host::is_discrete(node)) {
    guarded<int>(vel_error_out_of_memory, [&] { return usage("node " + name_of(node) + " has no states"); });
    return static_cast<size_t>(-1);
  }
  _vel_error_code = 0;
  return node->state_count;
}

int vel_node_set_state_label(vel_node_t *node, size_t state, const char *label) {
  if (!check_not_null("vel_node_set_state_label", "node or label", node, label))
    return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    if (node->subtype != vel_subtype_labeled || !vel::host::is_discrete(node))
      return usage("node " + name_of(node) + " is not a labeled node");
    if (state >= node->state_count)
      return usage("node " + name_of(node) + " has no state " + std::to_string(state));
    NodeStorage &storage = vel::host::storage_of(node);
    storage.labels[state] = label;
    // Only this label's text may have moved: setting every label of a node
    // costs time linear in their number.
    storage.label_pointers[state] = storage.labels[state].data();
    vel::host::outdate_models(node);
    return _vel_error_code = 0;
  });
}

const char *vel_node_get_state_label(const vel_node_t *node, size_t state) {
  if (!check_not_null("vel_node_get_state_label", "node", node)) return nullptr;
  return guarded<const char *>(nullptr, [&]() -> const char * {
    if (!vel::host::is_discrete(node) || !has_labels(node)) {
      usage("node " + name_of(node) + " has no state labels");
      return nullptr;
    }
    if (state >= node->state_count) {
      usage("node " + name_of(node) + " has no state " + std::to_string(state));
      return nullptr;
    }
    _vel_error_code = 0;
    return node->state_labels[state];
  });
}

int vel_node_set_state_value(vel_node_t *node, size_t index, double value) {
  if (!check_not_null("vel_node_set_state_value", "node", node)) return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    if (!vel::host::is_discrete(node) ||
        (node->subtype != vel_subtype_numbered && node->subtype != vel_subtype_interval))
      return usage("node " + name_of(node) + " is neither numbered nor interval");
    if (index >= value_count(node->subtype, node->state_count))
      return usage("node " + name_of(node) + " has no state value " + std::to_string(index));
    node->state_values[index] = value;
    vel::host::outdate_models(node);
    return _vel_error_code = 0;
  });
}

double vel_node_get_state_value(const vel_node_t *node, size_t index) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  if (!check_not_null("vel_node_get_state_value", "node", node)) return nan;
  return guarded<double>(nan, [&]() -> double {
    if (!vel::host::is_discrete(node) ||
        (node->subtype != vel_subtype_numbered && node->subtype != vel_subtype_interval)) {
      usage("node " + name_of(node) + " is neither numbered nor interval");
      return nan;
    }
    if (index >= value_count(node->subtype, node->state_count)) {
      usage("node " + name_of(node) + " has no state value " + std::to_string(index));
      return nan;
    }
    _vel_error_code = 0;
    return node->state_values[index];
  });
}

}  // extern "C"
