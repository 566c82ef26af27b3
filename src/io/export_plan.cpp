// Which nodes an export writes, and how: the refusals every format shares.
#include <cmath>
#include <set>
#include <unordered_map>

#include "io/network_writers.h"
#include "io/table_output.h"
#include "io/text_positions.h"

namespace vel::io {

namespace detail {

namespace {

std::string node_message(const vel_node_t *node, const std::string &text) {
  return std::string("node ") + vel_node_get_name(node) + ": " + text;
}

std::vector<std::string> state_names(const vel_node_t *node, ExportFormat format) {
  const std::size_t count = vel_node_get_number_of_states(node);
  std::vector<std::string> names;
  std::set<std::string> seen;
  for (std::size_t s = 0; s < count; ++s) {
    std::string name = exchange_state_name(node, s);
    const std::string where = std::string("node ") + vel_node_get_name(node) + ", state '" + name + "': ";
    if (format == ExportFormat::bif) {
      if (!is_bif_word(name))
        throw ExportError(where + "a BIF state name cannot be empty or contain blanks or any of ,;{}()[]|\"");
      if (!seen.insert(name).second)
        throw ExportError(where + "appears twice; BIF rows name states, so they must differ");
    } else if (format == ExportFormat::xmlbif) {
      if (const char *why = xml_refusal(name))
        throw ExportError(where + "XMLBIF cannot carry a state name that " + why);
    }
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

const char *xml_refusal(const std::string &text) {
  if (!is_utf8(text)) return "is not UTF-8 text";
  for (const char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return "holds a control character";
  if (!text.empty() && (text.front() == ' ' || text.back() == ' '))
    return "starts or ends with a blank, which XMLBIF readers drop";
  return nullptr;
}

std::string exchange_state_name(const vel_node_t *node, std::size_t state) {
  if (vel_node_get_subtype(node) != vel_subtype_interval) return state_text(node, state);
  return bound_text(vel_node_get_state_value(node, state)) + "_" +
         bound_text(vel_node_get_state_value(node, state + 1));
}

bool is_bif_word(const std::string &text) {
  if (text.empty() || !is_utf8(text) || text.rfind("//", 0) == 0 || text.rfind("/*", 0) == 0) return false;
  for (const char c : text) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte == 0x7F || std::string_view(",;{}()[]|\"").find(c) != std::string_view::npos)
      return false;
  }
  return true;
}

std::vector<ExportNode> plan_export(vel_domain_t *domain, ExportFormat format, bool chance_only) {
  const std::string in_format = std::string(" cannot be written in ") + format_name(format);
  const bool holds_decisions = format == ExportFormat::xmlbif;
  std::vector<ExportNode> nodes;
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    const int category = vel_node_get_category(node), kind = vel_node_get_kind(node);
    ExportNode written;
    written.node = node;
    written.name = vel_node_get_name(node);
    if (kind != vel_kind_discrete && category != vel_category_utility) {
      if (chance_only) continue;
      const char *what = kind > 0 ? "a continuous node" : "a real-valued function node";
      throw ExportError(node_message(node, what + in_format + " (--chance-only leaves it out)"));
    }
    if (category == vel_category_utility) {
      if (chance_only) continue;
      if (!holds_decisions)
        throw ExportError(node_message(node, "a utility node" + in_format + " (--chance-only leaves it out)"));
      written.category = vel_category_utility;
    } else if (category == vel_category_decision && !chance_only) {
      if (!holds_decisions)
        throw ExportError(node_message(node, "a decision node" + in_format +
                                                 " (--chance-only writes it as a chance node with its policy)"));
      written.category = vel_category_decision;
    }
    if (written.category != vel_category_utility) written.states = state_names(node, format);
    vel_table_t *table = vel_node_get_table(node);
    if (!table) throw ExportError(node_message(node, std::string("no table: ") + vel_error_message()));
    written.data = vel_table_get_data(table);
    written.size = vel_table_get_size(table);
    for (std::size_t i = 0; i < written.size; ++i)
      if (!std::isfinite(written.data[i]))
        throw ExportError(node_message(node, "the table holds " + shortest_text(written.data[i]) + ", which" +
                                                 in_format));
    nodes.push_back(std::move(written));
  }

  std::unordered_map<const vel_node_t *, std::size_t> index;
  for (std::size_t i = 0; i < nodes.size(); ++i) index.emplace(nodes[i].node, i);
  for (ExportNode &written : nodes) {
    vel_table_t *table = vel_node_get_table(written.node);
    vel_node_t *const *table_nodes = vel_table_get_nodes(table);
    const std::size_t count = vel_table_get_node_count(table);
    for (std::size_t i = 0; i < count; ++i) {
      if (table_nodes[i] == written.node) continue;
      // Every node of a table is discrete, and every discrete node is written.
      written.parents.push_back(index.at(table_nodes[i]));
    }
  }
  return nodes;
}

}  // namespace detail

const char *format_name(ExportFormat format) {
  switch (format) {
    case ExportFormat::bif: return "BIF";
    case ExportFormat::xmlbif: return "XMLBIF";
    default: return "UAI";
  }
}

void write_network(std::ostream &out, vel_domain_t *domain, const std::string &name, ExportFormat format,
                   bool chance_only) {
  const std::vector<detail::ExportNode> nodes = detail::plan_export(domain, format, chance_only);
  switch (format) {
    case ExportFormat::bif: return detail::write_bif(out, name, nodes);
    case ExportFormat::xmlbif: return detail::write_xmlbif(out, name, nodes);
    default: return detail::write_uai(out, nodes);
  }
}

}  // namespace vel::io
