// Searches in node and expression lists, and in a model's expressions.
#include <algorithm>

#include "host/record_queries.h"
#include "host/host.h"
#include "host/storage_internal.h"

namespace {

void collect_references(const vel_expression_t *expression, std::vector<const vel_node_t *> &out) {
  if (expression->operator_ == vel_op_node) out.push_back(expression->node);
  if (expression->operator_ >= vel_op_number) return;
  for (vel_expression_t *const *argument = expression->arguments; *argument; ++argument)
    collect_references(*argument, out);
}

// The sorted references of the model's expressions, made once per change of
// them, so that asking about each of many parents stays cheap.
const std::vector<const vel_node_t *> &references_of(const vel_model_t *model) {
  vel::host::ModelStorage &storage = vel::host::storage_of(model);
  if (!storage.references_known) {
    std::vector<const vel_node_t *> found;
    for (uint64_t i = 0; i < model->expression_count; ++i)
      if (model->expressions[i]) collect_references(model->expressions[i], found);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    storage.references.swap(found);
    storage.references_known = true;
  }
  return storage.references;
}

}  // namespace

extern "C" {

int _vel_node_appears_in_model(const vel_model_t *model, const vel_node_t *node) {
  if (!model || !model->expressions) return 0;
  try {
    const std::vector<const vel_node_t *> &references = references_of(model);
    return std::binary_search(references.begin(), references.end(), node) ? 1 : 0;
  } catch (...) {
    // No memory for the list: walk the expressions instead.
    for (uint64_t i = 0; i < model->expression_count; ++i)
      if (model->expressions[i] && refers_to(model->expressions[i], node)) return 1;
    return 0;
  }
}

int _vel_node_in_list(const vel_node_t *node, vel_node_t *const *list) {
  return _vel_node_index(node, list) >= 0;
}

int64_t _vel_node_index(const vel_node_t *node, vel_node_t *const *list) {
  for (int64_t i = 0; list && list[i]; ++i)
    if (list[i] == node) return i;
  return -1;
}

uint64_t _vel_expr_list_length(vel_expression_t *const *list) {
  uint64_t length = 0;
  while (list && list[length]) ++length;
  return length;
}

}  // extern "C"
