// A network as the BIF and XMLBIF readers read it, the checks they share, and
// the domain built from it through the public API.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "io/model_file.h"
#include "vel/vel.h"

namespace vel::io::detail {

struct VariableDescription {
  std::string name;
  int category = vel_category_chance;  // chance, decision or utility
  std::vector<std::string> states;     // labels; none for a utility node
  Position name_at;
  Position states_at;
};

struct TableDescription {
  std::size_t variable = 0;            // index into NetworkDescription::variables
  std::vector<std::size_t> parents;    // indices, in parent order
  std::vector<Position> parent_at;
  bool has_entries = false;            // parents only when false
  std::vector<double> entries;         // storage order: parents in order, the node's own state fastest
  Position at;
};

struct NetworkDescription {
  std::string name;
  std::vector<VariableDescription> variables;
  std::vector<TableDescription> tables;       // at most one per variable
  std::size_t entries = 0;             // of all tables so far
};

// The most entries a reader accepts in all the tables of a network (2^25,
// 128 MiB of floats), far beyond the standard networks: a BIF `default` row
// would otherwise let a few bytes of text ask for any amount of memory.
inline constexpr std::size_t max_network_entries = std::size_t{1} << 25;

// Variable names to indices; throws at the second of two variables with one
// name.
std::unordered_map<std::string, std::size_t> index_variables(const std::string &file,
                                                             const NetworkDescription &network);

// Appends the variable called `name` to the table's parents, refusing an
// unknown, duplicate or utility variable and the table's own variable.
void add_parent(const std::string &file, const NetworkDescription &network,
                const std::unordered_map<std::string, std::size_t> &index, TableDescription &table,
                std::string_view name, Position at);

// The number of entries of the table: the parents' state counts times the
// variable's (one for a utility node), added to the network's count; throws
// at the table's position when that exceeds max_network_entries.
std::size_t table_entries(const std::string &file, NetworkDescription &network, const TableDescription &table);

// A table entry written as `text`: a number, finite in single precision.
double read_entry(const std::string &file, std::string_view text, Position at);

// Builds the domain: nodes in the order of `variables` with labeled states,
// then each table's parents and entries, and the positions of each node's
// name, states and table.  Throws LoadError at the item the library refuses
// (a name that is no identifier, an edge closing a directed cycle).
LoadedModel build_network(const std::string &file, NetworkDescription network);

}  // namespace vel::io::detail
