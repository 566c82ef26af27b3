// The node tables a propagation multiplies together.  Tables of models are
// generated through the module's junction-tree entry, which visits every
// node of the domain's junction tree that has a model; tables generated from
// results of inference wait until there are results, and until then take
// part as they stand (uniform when they hold nothing yet).
#include <algorithm>
#include <string>

#include "common/error.h"
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"
#include "table_generator/entries.h"

namespace vel::inference {

namespace {

// A node whose table propagation uses but that has neither a model nor a
// table yet.
bool needs_table(const vel_node_t *node) {
  if (!host::is_discrete(node) && node->category != vel_category_utility) return false;
  const host::NodeStorage &storage = host::storage_of(node);
  return !node->model && !(storage.table && !storage.table_stale);
}

int refuse(vel_node_t *node, const std::string &why) {
  node->domain->host->failed_node = node;
  return host::usage(std::string("node ") + node->name + " " + why);
}

int give_uniform_policy(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  if (!table) return _vel_error_code;
  const std::vector<double> uniform(table->size, 1.0 / static_cast<double>(node->state_count));
  return vel_node_set_table_data(node, uniform.data(), uniform.size());
}

}  // namespace

int check_node_tables(vel_domain_t *domain) {
  for (vel_node_t *node = domain->first_node; node; node = node->next) {
    if (host::is_discrete(node) && node->state_count == 0) return refuse(node, "has no states");
    if (needs_table(node) && node->category != vel_category_decision)
      return refuse(node, "has neither a table nor a model");
  }
  return _vel_error_code = 0;
}

int give_uniform_policies(vel_domain_t *domain) {
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (needs_table(node) && node->category == vel_category_decision)
      if (int code = give_uniform_policy(node)) return code;
  return _vel_error_code = 0;
}

std::vector<vel_node_t *> outdated_readers(vel_domain_t *domain) {
  std::vector<vel_node_t *> readers;
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (node->model && node->model->tables_outdated && !is_real_function(node) &&
        host::reads_inference_results(node->model))
      readers.push_back(node);
  return readers;
}

// The walk refuses real-valued function nodes (they have no table), so they
// leave the junction tree while it runs; deferred models look up to date.
int generate_tables(vel_domain_t *domain, const std::vector<vel_node_t *> &deferred) {
  vel_junction_tree_t *tree = domain->junction_tree;
  std::vector<vel_node_t *> detached;
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (is_real_function(node) && node->junction_tree == tree) {
      node->junction_tree = nullptr;
      detached.push_back(node);
    }
  for (vel_node_t *node : deferred) node->model->tables_outdated = 0;
  const int code = _vel_jt_generate_tables(tree);
  for (vel_node_t *node : deferred) node->model->tables_outdated = 1;
  for (vel_node_t *node : detached) node->junction_tree = tree;
  if (code == 0) return 0;
  // The walk stops at the first failure, and every table before it is done.
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (node->model && node->model->tables_outdated && !is_real_function(node) &&
        std::find(deferred.begin(), deferred.end(), node) == deferred.end()) {
      domain->host->failed_node = node;
      break;
    }
  return fail(code);
}

void fill_provisional_tables(const std::vector<vel_node_t *> &deferred) {
  for (vel_node_t *node : deferred) {
    if (!host::is_discrete(node)) continue;
    vel_table_t *table = vel_node_get_table(node);
    if (!table || host::storage_of(node).table->filled) continue;
    for (uint64_t i = 0; i < table->size; ++i) table->data[i] = 1.0f / static_cast<float>(node->state_count);
  }
}

}  // namespace vel::inference
