// The models whose tables are generated from results of inference, so that a
// change of beliefs, evidence, means, expected utilities or of the domain's
// inference state marks exactly those tables outdated.
#include <algorithm>

#include "host/record_queries.h"
#include "host/host.h"
#include "host/storage_internal.h"

namespace {

bool is_inference_operator(uint32_t code) {
  return code == vel_op_aggregate || code == vel_op_probability || code == vel_op_variance ||
         code == vel_op_quantile;
}

// Whether an inference operator in the tree reads `node` (any node when NULL).
bool reads_results(const vel_expression_t *expression, const vel_node_t *node) {
  const uint32_t code = expression->operator_;
  if (!has_arguments(expression)) return false;
  if (is_inference_operator(code) && (!node || refers_to(expression, node))) return true;
  for (vel_expression_t *const *a = expression->arguments; *a; ++a)
    if (reads_results(*a, node)) return true;
  return false;
}

// A discrete function node's table is generated after its parents' values
// are taken from inference.
bool reads_parents(const vel_model_t *model, const vel_node_t *node) {
  const vel_node_t *owner = model->node;
  if (owner->category != vel_category_function || owner->kind != vel_kind_discrete) return false;
  if (!node) return true;
  return !is_real_function(node) && _vel_node_in_list(node, owner->parents);
}

bool reads(const vel_model_t *model, const vel_node_t *node) {
  if (reads_parents(model, node)) return true;
  for (uint64_t i = 0; model->expressions && i < model->expression_count; ++i)
    if (model->expressions[i] && reads_results(model->expressions[i], node)) return true;
  return false;
}

std::vector<vel_model_t *> &readers_of(const vel_model_t *model) {
  return model->node->domain->host->inference_readers;
}

}  // namespace

namespace vel::host {

void track_inference_reads(vel_model_t *model) {
  ModelStorage &storage = storage_of(model);
  const bool now = reads(model, nullptr);
  if (now == storage.reads_inference) return;
  std::vector<vel_model_t *> &readers = readers_of(model);
  if (now)
    readers.push_back(model);
  else
    readers.erase(std::find(readers.begin(), readers.end(), model));
  storage.reads_inference = now;
}

void forget_inference_reads(vel_model_t *model) {
  ModelStorage &storage = storage_of(model);
  if (!storage.reads_inference) return;
  std::vector<vel_model_t *> &readers = readers_of(model);
  readers.erase(std::find(readers.begin(), readers.end(), model));
  storage.reads_inference = false;
}

bool reads_inference_results(const vel_model_t *model) {
  return storage_of(model).reads_inference || model->function_value_use != 0;
}

void outdate_inference_readers(vel_domain_t *domain, const vel_node_t *node) {
  for (vel_model_t *model : domain->host->inference_readers)
    if (!node || reads(model, node)) model->tables_outdated = 1;
}

}  // namespace vel::host
