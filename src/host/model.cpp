// Models: the model nodes of a node and one expression per configuration of
// their states.  Every change marks the node's table as outdated.
#include <limits>
#include <new>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/api_guard_internal.h"
#include "host/expression_internal.h"
#include "host/host.h"
#include "host/model_size_internal.h"
#include "host/storage_internal.h"
#include "table_generator/entries.h"

using namespace vel::host;

namespace vel::host {

ModelStorage::~ModelStorage() {
  for (vel_expression_t *expression : expressions) delete_tree(expression);
}

bool model_size(vel_node_t *const *nodes, const vel_node_t *replaced, uint64_t replaced_count,
                uint64_t *size) {
  uint64_t product = 1;
  for (; nodes && *nodes; ++nodes) {
    uint64_t count = *nodes == replaced ? replaced_count : (*nodes)->state_count;
    if (__builtin_mul_overflow(product, count, &product)) return false;
  }
  *size = product;
  return true;
}

}  // namespace vel::host

namespace {

std::string owner_name(const vel_model_t *model) { return model->node->name; }

// 1 when the expressions read the value of a real-valued function parent.
int64_t reads_function_values(const vel_model_t *model) {
  for (vel_node_t *const *parent = model->node->parents; parent && *parent; ++parent)
    if (is_real_function(*parent) && _vel_node_appears_in_model(model, *parent))
      return 1;
  return 0;
}

// The model's expressions changed: its table must be generated again, and a
// function node's cached values no longer hold.
void model_changed(vel_model_t *model) {
  vel::host::storage_of(model).references_known = false;
  model->tables_outdated = 1;
  model->function_value_use = reads_function_values(model);
  vel::host::track_inference_reads(model);
  if (is_real_function(model->node)) {
    _vel_invalidate_function_value(model->node, vel_mode_inference);
    _vel_invalidate_function_value(model->node, vel_mode_configured);
  }
}

size_t array_length(uint64_t count) {
  if (count == std::numeric_limits<uint64_t>::max()) throw std::bad_alloc();
  return static_cast<size_t>(count) + 1;
}

}  // namespace

extern "C" {

vel_model_t *vel_node_new_model(vel_node_t *node, vel_node_t *const *model_nodes) {
  if (!check_not_null("vel_node_new_model", "node", node)) return nullptr;
  return guarded<vel_model_t *>(nullptr, [&]() -> vel_model_t * {
    std::string name = node->name;
    if (node->kind > 0) {
      usage("continuous node " + name + " cannot have a model");
      return nullptr;
    }
    auto storage = std::make_unique<ModelStorage>();
    // Hashed, so that a model over many parents costs no search per node.
    std::unordered_set<const vel_node_t *> parents, seen;
    for (vel_node_t *const *parent = node->parents; parent && *parent; ++parent) parents.insert(*parent);
    for (vel_node_t *const *entry = model_nodes; entry && *entry; ++entry) {
      vel_node_t *model_node = *entry;
      if (parents.count(model_node) == 0) {
        usage(std::string("model node ") + model_node->name + " is not a parent of " + name);
        return nullptr;
      }
      if (!vel::host::is_discrete(model_node)) {
        usage(std::string("model node ") + model_node->name + " of " + name + " has no states");
        return nullptr;
      }
      if (!seen.insert(model_node).second) {
        usage(std::string("model node ") + model_node->name + " of " + name + " appears twice");
        return nullptr;
      }
      storage->nodes.push_back(model_node);
    }
    storage->nodes.push_back(nullptr);
    vel_model_s &model = storage->record;
    if (!vel::host::model_size(storage->nodes.data(), nullptr, 0, &model.expression_count)) {
      usage("the model of " + name + " would have too many expressions");
      return nullptr;
    }
    model.nodes = storage->nodes.data();
    model.expressions = nullptr;
    model.tables_outdated = 1;
    model.samples_per_interval = 25;
    model.node = node;
    if (node->model) vel::host::forget_inference_reads(node->model);
    vel::host::storage_of(node).model = std::move(storage);  // frees an earlier model
    node->model = &model;
    model_changed(&model);
    _vel_error_code = 0;
    return &model;
  });
}

vel_model_t *vel_node_get_model(const vel_node_t *node) {
  return checked_get("vel_node_get_model", node, nullptr, [&] { return node->model; });
}

int vel_node_delete_model(vel_node_t *node) {
  if (!check_not_null("vel_node_delete_model", "node", node)) return vel_error_usage;
  if (!node->model) return guarded<int>(vel_error_out_of_memory, [&] {
    return usage(std::string("node ") + node->name + " has no model");
  });
  vel::host::forget_inference_reads(node->model);
  vel::host::storage_of(node).model.reset();
  node->model = nullptr;
  if (is_real_function(node)) {
    _vel_invalidate_function_value(node, vel_mode_inference);
    _vel_invalidate_function_value(node, vel_mode_configured);
  }
  return _vel_error_code = 0;
}

vel_node_t *const *vel_model_get_nodes(const vel_model_t *model) {
  return checked_get("vel_model_get_nodes", model, nullptr, [&] { return model->nodes; });
}

size_t vel_model_get_size(const vel_model_t *model) {
  return checked_get("vel_model_get_size", model, static_cast<size_t>(-1),
                     [&] { return model->expression_count; });
}

int vel_model_set_expression(vel_model_t *model, size_t index, vel_expression_t *expression) {
  if (!check_not_null("vel_model_set_expression", "model", model)) return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    if (index >= model->expression_count)
      return usage("the model of " + owner_name(model) + " has no expression index " +
                   std::to_string(index));
    if (expression && expression->owner)
      return usage("the expression belongs to another expression or model");
    ModelStorage &storage = vel::host::storage_of(model);
    if (storage.expressions.empty())
      storage.expressions.assign(array_length(model->expression_count), nullptr);
    vel_expression_t *old = storage.expressions[index];
    storage.expressions[index] = expression;
    if (expression) expression->owner = model;
    vel::host::delete_tree(old);
    model->expressions = storage.expressions.data();
    model_changed(model);
    return _vel_error_code = 0;
  });
}

int vel_model_set_expressions(vel_model_t *model, vel_expression_t *const *expressions,
                              size_t count) {
  if (!check_not_null("vel_model_set_expressions", "model", model)) return vel_error_usage;
  return guarded<int>(vel_error_out_of_memory, [&]() -> int {
    ModelStorage &storage = vel::host::storage_of(model);
    std::vector<vel_expression_t *> fresh;
    if (expressions) {
      if (count != model->expression_count)
        return usage("the model of " + owner_name(model) + " takes " +
                     std::to_string(model->expression_count) + " expressions, got " +
                     std::to_string(count));
      std::unordered_set<const vel_expression_t *> seen;
      for (size_t i = 0; i < count; ++i) {
        const vel_expression_t *expression = expressions[i];
        if (!expression) continue;
        if (expression->owner)
          return usage("expression " + std::to_string(i) +
                       " belongs to another expression or model");
        if (!seen.insert(expression).second)
          return usage("expression " + std::to_string(i) + " appears twice in the list");
      }
      fresh.assign(expressions, expressions + count);
      fresh.push_back(nullptr);
    }
    storage.expressions.swap(fresh);
    for (vel_expression_t *old : fresh) vel::host::delete_tree(old);
    for (vel_expression_t *expression : storage.expressions)
      if (expression) expression->owner = model;
    model->expressions = expressions ? storage.expressions.data() : nullptr;
    model_changed(model);
    return _vel_error_code = 0;
  });
}

vel_expression_t *vel_model_get_expression(const vel_model_t *model, size_t index) {
  if (!check_not_null("vel_model_get_expression", "model", model)) return nullptr;
  return guarded<vel_expression_t *>(nullptr, [&]() -> vel_expression_t * {
    if (index >= model->expression_count) {
      usage("the model of " + owner_name(model) + " has no expression index " +
            std::to_string(index));
      return nullptr;
    }
    _vel_error_code = 0;
    return model->expressions ? model->expressions[index] : nullptr;
  });
}

int vel_model_set_samples_per_interval(vel_model_t *model, size_t samples) {
  if (!check_not_null("vel_model_set_samples_per_interval", "model", model)) return vel_error_usage;
  if (samples == 0) return usage("samples per interval must be at least 1");
  if (samples > vel_max_samples_per_interval) {
    vel::set_error_message("samples per interval must be at most 1000000");
    return vel::fail(vel_error_too_large);
  }
  model->samples_per_interval = samples;
  model->tables_outdated = 1;
  return _vel_error_code = 0;
}

size_t vel_model_get_samples_per_interval(const vel_model_t *model) {
  return checked_get("vel_model_get_samples_per_interval", model, 0,
                     [&] { return model->samples_per_interval; });
}

int vel_model_get_tables_outdated(const vel_model_t *model) {
  return checked_get("vel_model_get_tables_outdated", model, 0,
                     [&] { return model->tables_outdated != 0; });
}

int vel_model_set_tables_outdated(vel_model_t *model, int outdated) {
  if (!check_not_null("vel_model_set_tables_outdated", "model", model)) return vel_error_usage;
  model->tables_outdated = outdated ? 1 : 0;
  return _vel_error_code = 0;
}

}  // extern "C"
