// The stages of loading a model file, run in this order on one domain:
// declare the nodes (names, kinds, states), connect their parents, give them
// models or literal tables, then set the results of inference.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <yaml-cpp/yaml.h>

#include "io/library_reason.h"
#include "io/model_file.h"
#include "io/yaml_reading.h"
#include "vel/vel.h"

namespace vel::io::detail {

// One entry of the file's `nodes` list and the node made from it.
struct NodeDecl {
  YAML::Node map;
  YAML::Node name_key;
  std::string name;
  vel_node_t *node = nullptr;
  NodeSource where;  // positions of the node's items, for later messages
};

// The 1-based position of a YAML mark (0 when yaml-cpp does not know it).
Position position_of(const YAML::Mark &mark);

std::vector<NodeDecl> declare_nodes(const Source &source, const Entry &nodes, vel_domain_t *domain);
void connect_parents(const Source &source, const std::vector<NodeDecl> &decls);
void attach_models_and_tables(const Source &source, std::vector<NodeDecl> &decls,
                              std::size_t default_samples);
void set_inference_state(const Source &source, const Entry &inference, vel_domain_t *domain);
// `stated`: the file has an inference block.  Every node's evidence is
// recorded in `evidence`; stated evidence is also set in the domain.
void set_node_results(const Source &source, const std::vector<NodeDecl> &decls, bool stated,
                      std::vector<FileEvidence> &evidence);
// A node's `evidence` entry: a state, or {likelihood: [..]} (not with stated results).
void read_evidence(const Source &source, const NodeDecl &decl, const Entry &entry, bool stated,
                   std::vector<FileEvidence> &evidence);

// The state that a node's `evidence` or `configured` entry names; fails
// with a message when it names none.
long long read_state(const Source &source, const NodeDecl &decl, const Entry &entry);

// The state of a discrete node that `value` names the way a person enters it
// (label, true/false, state value, a number inside an interval); -1 if none.
long long find_named_state(vel_node_t *node, const YAML::Node &value);

}  // namespace vel::io::detail
