// A node's `evidence`: a state, or {likelihood: [..]} with one finite,
// non-negative entry per state, not all zero.  With stated results (an
// inference block) it is the propagated evidence state, a state only, and is
// set in the domain as well.
#include <cmath>
#include <string>

#include "io/loader_parts.h"

namespace vel::io::detail {

namespace {

std::vector<double> read_likelihood(const Source &source, const NodeDecl &decl, const YAML::Node &map) {
  check_mapping(source, map, {"likelihood"}, "'evidence'");
  const Entry entry = find(map, "likelihood");
  if (!entry.present()) source.fail(map, "'evidence' of '" + decl.name + "' needs a 'likelihood' list");
  require_sequence(source, entry, "'likelihood'");
  const std::size_t states = vel_node_get_number_of_states(decl.node);
  if (entry.value.size() != states)
    source.fail(entry.key, "'likelihood' of '" + decl.name + "' needs " + std::to_string(states) +
                               " entries, one per state; found " + std::to_string(entry.value.size()));
  std::vector<double> likelihood;
  bool positive = false;
  for (const YAML::Node &item : entry.value) {
    const double value = read_number(source, item, "a likelihood");
    if (!(value >= 0.0) || !std::isfinite(value) || value >= vel_infinity)
      source.fail(item, "a likelihood must be a finite, non-negative number");
    positive = positive || value > 0.0;
    likelihood.push_back(value);
  }
  if (!positive) source.fail(entry.key, "'likelihood' of '" + decl.name + "' needs a positive entry");
  return likelihood;
}

}  // namespace

void read_evidence(const Source &source, const NodeDecl &decl, const Entry &entry, bool stated,
                   std::vector<FileEvidence> &evidence) {
  if (entry.value.IsMap()) {
    if (stated)
      source.fail(entry.value, "with an 'inference' block, 'evidence' is the propagated evidence state, not a likelihood");
    evidence.push_back({decl.node, -1, read_likelihood(source, decl, entry.value)});
    return;
  }
  const long long state = entry.value.IsNull() ? -1 : read_state(source, decl, entry);
  if (state >= 0) evidence.push_back({decl.node, state, {}});
  if (stated && vel_node_set_evidence(decl.node, state) != 0)
    source.fail(entry.key, "cannot set the evidence of '" + decl.name + "': " + library_reason());
}

}  // namespace vel::io::detail

namespace vel::io {

long long state_named(vel_node_t *node, const std::string &text) {
  return detail::find_named_state(node, YAML::Node(text));
}

}  // namespace vel::io
