// First stage of loading: every node with its name, category, type and states.
#include <cmath>
#include <string>
#include <unordered_set>
#include <vector>

#include "io/loader_parts.h"

namespace vel::io::detail {

std::string library_reason() {
  const int code = vel_error_code();
  const std::string message = vel_error_message();
  if (!message.empty()) return message;
  const char *name = vel_error_name(code);
  const char *description = vel_error_description(code);
  return std::string(description ? description : "failure") + " (" + (name ? name : "error") + ")";
}

Position position_of(const YAML::Mark &mark) {
  if (mark.line < 0 || mark.column < 0) return {};
  return {static_cast<std::size_t>(mark.line) + 1, static_cast<std::size_t>(mark.column) + 1};
}

namespace {

struct NodeType {
  int kind;
  int subtype;
};

bool is_identifier(const std::string &name) {
  if (name.empty() || name == "true" || name == "false") return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(name[i]);
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (!letter && !(i > 0 && c >= '0' && c <= '9')) return false;
  }
  return true;
}

int read_category(const Source &source, const Entry &entry) {
  if (!entry.present()) return vel_category_chance;
  const std::string text = read_text(source, entry, "'category'");
  if (text == "chance") return vel_category_chance;
  if (text == "decision") return vel_category_decision;
  if (text == "utility") return vel_category_utility;
  if (text == "function") return vel_category_function;
  source.fail(entry.value_mark(), "unknown category '" + text + "'");
}

NodeType read_type(const Source &source, const Entry &entry, int category, const YAML::Node &map,
                   const std::string &name) {
  if (!entry.present()) {
    if (category == vel_category_utility) return {vel_kind_stateless, vel_subtype_none};
    source.fail(map, "node '" + name + "' needs a 'type'");
  }
  const std::string text = read_text(source, entry, "'type'");
  NodeType type;
  if (text == "labeled") type = {vel_kind_discrete, vel_subtype_labeled};
  else if (text == "boolean") type = {vel_kind_discrete, vel_subtype_boolean};
  else if (text == "numbered") type = {vel_kind_discrete, vel_subtype_numbered};
  else if (text == "interval") type = {vel_kind_discrete, vel_subtype_interval};
  else if (text == "continuous") type = {vel_kind_continuous, vel_subtype_none};
  else if (text == "real") type = {vel_kind_stateless, vel_subtype_none};
  else source.fail(entry.value_mark(), "unknown type '" + text + "'");

  if (category == vel_category_utility && text != "real")
    source.fail(entry.value_mark(), "a utility node has type 'real'");
  if (text == "real" && category != vel_category_function && category != vel_category_utility)
    source.fail(entry.value_mark(), "type 'real' is for utility and function nodes only");
  if (text == "continuous" && category != vel_category_chance)
    source.fail(entry.value_mark(), "type 'continuous' is for chance nodes only");
  return type;
}

[[noreturn]] void library_failure(const Source &source, const YAML::Mark &mark, const std::string &what) {
  source.fail(mark, what + ": " + library_reason());
}

void set_states(const Source &source, NodeDecl &decl, int subtype) {
  const Entry states = find(decl.map, "states");
  if (states.present()) decl.where.states = position_of(states.key.Mark());
  const bool needs_states = subtype == vel_subtype_labeled || subtype == vel_subtype_numbered ||
                            subtype == vel_subtype_interval;
  if (!needs_states) {
    if (states.present()) source.fail(states.key, "node '" + decl.name + "' takes no 'states'");
    return;
  }
  if (!states.present()) source.fail(decl.map, "node '" + decl.name + "' needs 'states'");
  require_sequence(source, states, "'states'");
  const std::size_t entries = states.value.size();
  if (entries == 0) source.fail(states.value_mark(), "'states' must not be empty");
  if (subtype == vel_subtype_interval && entries < 2)
    source.fail(states.value_mark(), "an interval node needs at least two bounds");

  const std::size_t count = subtype == vel_subtype_interval ? entries - 1 : entries;
  charge_list(source, states.value);
  if (vel_node_set_number_of_states(decl.node, count) != 0)
    library_failure(source, states.key.Mark(), "cannot set the states of '" + decl.name + "'");
  for (std::size_t i = 0; i < entries; ++i) {
    const YAML::Node item = states.value[i];
    if (subtype == vel_subtype_labeled) {
      if (!item.IsScalar()) source.fail(item, "a state label must be a string");
      charge_text(source, item);
      if (vel_node_set_state_label(decl.node, i, item.Scalar().c_str()) != 0)
        library_failure(source, item.Mark(), "cannot set the label '" + item.Scalar() + "'");
    } else {
      const double value = read_number(source, item, "a state value");
      if (std::isnan(value)) source.fail(item, "a state value must not be NaN");
      if (vel_node_set_state_value(decl.node, i, value) != 0)
        library_failure(source, item.Mark(), "cannot set the state value " + item.Scalar());
    }
  }
}

}  // namespace

std::vector<NodeDecl> declare_nodes(const Source &source, const Entry &nodes, vel_domain_t *domain) {
  require_sequence(source, nodes, "'nodes'");
  std::vector<NodeDecl> decls;
  std::unordered_set<std::string> names;
  for (const YAML::Node &map : nodes.value) {
    check_mapping(source, map,
                  {"name", "category", "type", "states", "parents", "model", "table", "beliefs",
                   "evidence", "mean", "variance", "expected_utility", "configured"},
                  "a node");
    const Entry name = find(map, "name");
    if (!name.present()) source.fail(map, "missing key 'name'");
    NodeDecl decl{map, name.key, read_text(source, name, "a node name"), nullptr, {}};
    decl.where.name = position_of(name.value_mark());
    if (!is_identifier(decl.name)) source.fail(name.value_mark(), "invalid node name '" + decl.name + "'");
    if (!names.insert(decl.name).second)
      source.fail(name.value_mark(), "duplicate node name '" + decl.name + "'");

    const int category = read_category(source, find(map, "category"));
    const NodeType type = read_type(source, find(map, "type"), category, map, decl.name);
    decl.node = vel_domain_new_node(domain, category, type.kind, type.subtype, decl.name.c_str());
    if (!decl.node) library_failure(source, name.value_mark(), "cannot create node '" + decl.name + "'");
    set_states(source, decl, type.subtype);
    decls.push_back(decl);
  }
  return decls;
}

}  // namespace vel::io::detail
