// Host-private owners of the records of one domain.  Every record the module
// reads lives inside one of these owners; the C++ containers sit beside the
// records, never inside them, so the records stay plain.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/record_queries.h"
#include "host/records.h"

namespace vel::host {

struct TableStorage {
  vel_table_s record{};
  std::vector<vel_node_t *> nodes;  // NULL-terminated
  std::vector<float> data;
  bool filled = false;  // contents generated or given since the table was built
};

struct ModelStorage {
  vel_model_s record{};
  std::vector<vel_node_t *> nodes;               // NULL-terminated
  std::vector<vel_expression_t *> expressions;  // count + 1 entries (trailing NULL) once created
  bool reads_inference = false;  // listed in the domain's inference_readers
  // The nodes the expressions refer to, sorted; made on the first question
  // after the expressions change.
  std::vector<const vel_node_t *> references;
  bool references_known = false;
  ModelStorage() = default;
  ModelStorage(const ModelStorage &) = delete;
  ModelStorage &operator=(const ModelStorage &) = delete;
  ~ModelStorage();  // frees the expression trees the model owns
};

struct NodeStorage {
  vel_node_s record{};
  std::string name;
  std::vector<std::string> labels;        // one per state (labeled and boolean nodes)
  std::vector<char *> label_pointers;     // into `labels`, for record.state_labels
  std::vector<double> values;             // numbered: n values; interval: n + 1 bounds
  std::vector<vel_node_t *> parents;      // NULL-terminated when non-empty
  std::vector<vel_node_t *> children;     // NULL-terminated when non-empty
  std::unique_ptr<TableStorage> table;
  bool table_stale = false;               // parents or state counts changed since it was built
  std::unique_ptr<TableStorage> beliefs;  // discrete nodes: one float per state
  std::unique_ptr<ModelStorage> model;
  // Evidence entered for the next propagation: a state (hard evidence), or
  // one likelihood per state; neither when entered_state is -1 and
  // entered_likelihood is empty.
  int64_t entered_state = -1;
  std::vector<double> entered_likelihood;
};

}  // namespace vel::host

struct vel_host_domain_data {
  vel_junction_tree_s junction_tree{};
  std::vector<std::unique_ptr<vel::host::NodeStorage>> nodes;  // in node-list order
  std::unordered_map<std::string, vel_node_t *> by_name;
  // Every parent edge, as parent index << 32 | child index.
  std::unordered_set<uint64_t> edges;
  // The next order above and below every node's: new nodes, and nodes moved
  // to an end of the order, take them.
  int64_t next_topological_order = 0;
  int64_t lowest_topological_order = 0;
  uint64_t table_version = 0;  // bumped whenever a table's contents change
  // Models whose tables are generated from results of inference.
  std::vector<vel_model_t *> inference_readers;
  // During a generation whose failure is explained: the caller's log stream,
  // which the domain's log_file passes every byte to.
  std::FILE *captured_log = nullptr;
  // During a trial generation: tables are written to scratch storage and
  // nothing is told of the change.
  bool trial = false;
  // The junction trees of a domain compiled by vel_domain_compile, owned
  // here and read only by the inference unit; empty otherwise.
  std::shared_ptr<void> junction_forest;
  // The node that stopped the last compilation or propagation, if one did.
  vel_node_t *failed_node = nullptr;
};

namespace vel::host {

inline NodeStorage &storage_of(const vel_node_t *node) {
  return *node->domain->host->nodes[node->index];
}

inline ModelStorage &storage_of(const vel_model_t *model) {
  return *storage_of(model->node).model;
}

// Room for `extra` more elements, growing geometrically so that appending
// one at a time stays linear; after it, that many push_backs cannot throw.
template <typename T>
void reserve_more(std::vector<T> &list, std::size_t extra) {
  if (list.capacity() - list.size() >= extra) return;
  list.reserve(std::max(list.size() + extra, 2 * list.capacity()));
}

// Points the record's list fields at the containers after they changed.
void sync_node_lists(NodeStorage &storage);
void sync_labels(NodeStorage &storage);

// The node's table and its children's tables must be rebuilt; their models'
// tables are outdated.
void invalidate_tables(vel_node_t *node);
void invalidate_own_table(vel_node_t *node);
// The node's states changed meaning (labels, values): the tables generated
// from models that may read them are outdated.
void outdate_models(vel_node_t *node);

// Models whose generation reads results of inference (probability, quantile,
// variance, aggregate; a discrete function node's parents): the list is kept
// up to date with the model's expressions, and a change of results marks the
// tables of the models that read them outdated.
void track_inference_reads(vel_model_t *model);
void forget_inference_reads(vel_model_t *model);
// node NULL: a change for the whole domain (compiled flag, junction tree).
void outdate_inference_readers(vel_domain_t *domain, const vel_node_t *node);
// Whether generating the model's table needs results of inference: it reads
// them itself, or reads a real-valued function parent (computed from them).
bool reads_inference_results(const vel_model_t *model);

// Results of inference changed for the whole domain: cached function values
// computed from them are stale, and so are the tables generated from them.
void inference_state_changed(vel_domain_t *domain);
// The domain's nodes, parents or state counts changed: junction trees built
// before no longer fit, so a compiled domain becomes uncompiled.
void structure_changed(vel_domain_t *domain);

// Mean and variance of a numbered node's state values under its normalised
// beliefs; false when the beliefs have no mass.
bool belief_moments(const vel_node_t *node, double *mean, double *variance);
// Writes the node's variance field from its current results: a numbered
// node's under its beliefs (NaN without belief mass), a continuous node's
// stated one, a utility node's; other nodes are left alone.
void write_variance(vel_node_t *node);

// Predicates on node classes.
inline bool is_discrete(const vel_node_t *node) { return node->kind == vel_kind_discrete; }

}  // namespace vel::host
