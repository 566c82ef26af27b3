// The domain of a network read from BIF or XMLBIF, and the checks both
// readers share.
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "io/library_reason.h"
#include "io/network_description.h"
#include "io/number_parsing.h"
#include "io/text_positions.h"

namespace vel::io::detail {

namespace {

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

std::unordered_map<std::string, std::size_t> index_variables(const std::string &file,
                                                             const NetworkDescription &network) {
  std::unordered_map<std::string, std::size_t> index;
  for (std::size_t i = 0; i < network.variables.size(); ++i) {
    const VariableDescription &variable = network.variables[i];
    if (!index.emplace(variable.name, i).second)
      fail_at(file, variable.name_at, "duplicate variable " + quoted(variable.name));
  }
  return index;
}

void add_parent(const std::string &file, const NetworkDescription &network,
                const std::unordered_map<std::string, std::size_t> &index, TableDescription &table,
                std::string_view name, Position at) {
  const auto found = index.find(std::string(name));
  if (found == index.end()) fail_at(file, at, "unknown parent " + quoted(name));
  const std::size_t parent = found->second;
  if (parent == table.variable) fail_at(file, at, "variable " + quoted(name) + " cannot be its own parent");
  if (std::find(table.parents.begin(), table.parents.end(), parent) != table.parents.end())
    fail_at(file, at, "duplicate parent " + quoted(name));
  if (network.variables[parent].category == vel_category_utility)
    fail_at(file, at, "utility variable " + quoted(name) + " cannot be a parent");
  table.parents.push_back(parent);
  table.parent_at.push_back(at);
}

std::size_t table_entries(const std::string &file, NetworkDescription &network, const TableDescription &table) {
  const VariableDescription &variable = network.variables[table.variable];
  const std::string too_many = "with the table of " + quoted(variable.name) + " the network would have more than " +
                               std::to_string(max_network_entries) + " entries";
  const std::size_t room = max_network_entries - network.entries;
  std::size_t size = std::max<std::size_t>(variable.states.size(), 1);
  for (const std::size_t parent : table.parents) {
    const std::size_t count = network.variables[parent].states.size();
    if (count != 0 && size > room / count) fail_at(file, table.at, too_many);
    size *= count;
  }
  if (size > room) fail_at(file, table.at, too_many);
  network.entries += size;
  return size;
}

double read_entry(const std::string &file, std::string_view text, Position at) {
  double value = 0.0;
  if (!parse_number(text, value)) fail_at(file, at, "expected a number, found " + quoted(text));
  // Entries are stored as floats: anything beyond float range would not fit.
  if (!(std::fabs(value) <= std::numeric_limits<float>::max()))
    fail_at(file, at, "a table entry must be a finite number in single-precision range");
  return value;
}

LoadedModel build_network(const std::string &file, NetworkDescription network) {
  LoadedModel model;
  model.name = std::move(network.name);
  model.domain.reset(vel_domain_new());
  if (!model.domain) fail_at(file, {1, 1}, "cannot create the domain: " + library_reason());

  std::vector<vel_node_t *> nodes;
  nodes.reserve(network.variables.size());
  for (const VariableDescription &variable : network.variables) {
    const bool utility = variable.category == vel_category_utility;
    vel_node_t *node = vel_domain_new_node(model.domain.get(), variable.category,
                                           utility ? vel_kind_stateless : vel_kind_discrete,
                                           utility ? vel_subtype_none : vel_subtype_labeled,
                                           variable.name.c_str());
    if (!node)
      fail_at(file, variable.name_at, "cannot create node " + quoted(variable.name) + ": " + library_reason());
    const std::string states_failure = "cannot set the states of " + quoted(variable.name) + ": ";
    if (!utility && vel_node_set_number_of_states(node, variable.states.size()) != 0)
      fail_at(file, variable.states_at, states_failure + library_reason());
    for (std::size_t s = 0; s < variable.states.size(); ++s)
      if (vel_node_set_state_label(node, s, variable.states[s].c_str()) != 0)
        fail_at(file, variable.states_at, states_failure + library_reason());
    NodeSource &source = model.sources[node];
    source.name = variable.name_at;
    source.states = variable.states_at;
    nodes.push_back(node);
  }

  for (TableDescription &table : network.tables) {
    vel_node_t *node = nodes[table.variable];
    for (std::size_t i = 0; i < table.parents.size(); ++i)
      if (vel_node_add_parent(node, nodes[table.parents[i]]) != 0)
        fail_at(file, table.parent_at[i], library_reason());
    model.sources[node].table = table.at;
    if (!table.has_entries) continue;
    if (vel_node_set_table_data(node, table.entries.data(), table.entries.size()) != 0)
      fail_at(file, table.at,
              "cannot set the table of " + quoted(vel_node_get_name(node)) + ": " + library_reason());
    std::vector<double>().swap(table.entries);
  }
  return model;
}

}  // namespace vel::io::detail
