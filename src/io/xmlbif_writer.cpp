// XMLBIF 0.3 out: VARIABLE elements with their TYPE, then one DEFINITION per
// node whose TABLE is the node's table in storage order.
#include <string_view>

#include "io/network_writers.h"
#include "io/table_output.h"

namespace vel::io::detail {

namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&': result += "&amp;"; break;
      case '<': result += "&lt;"; break;
      case '>': result += "&gt;"; break;
      case '"': result += "&quot;"; break;
      case '\'': result += "&apos;"; break;
      default: result += c;
    }
  }
  return result;
}

const char *type_of(int category) {
  switch (category) {
    case vel_category_decision: return "decision";
    case vel_category_utility: return "utility";
    default: return "nature";
  }
}

}  // namespace

void write_xmlbif(std::ostream &out, const std::string &name, const std::vector<ExportNode> &nodes) {
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<BIF VERSION=\"0.3\">\n<NETWORK>\n<NAME>"
      << escaped(xml_refusal(name) ? "unknown" : name) << "</NAME>\n";
  for (const ExportNode &node : nodes) {
    out << "<VARIABLE TYPE=\"" << type_of(node.category) << "\">\n  <NAME>" << node.name << "</NAME>\n";
    for (const std::string &state : node.states) out << "  <OUTCOME>" << escaped(state) << "</OUTCOME>\n";
    out << "</VARIABLE>\n";
  }
  for (const ExportNode &node : nodes) {
    out << "<DEFINITION>\n  <FOR>" << node.name << "</FOR>\n";
    for (const std::size_t parent : node.parents) out << "  <GIVEN>" << nodes[parent].name << "</GIVEN>\n";
    out << "  <TABLE>";
    for (std::size_t i = 0; i < node.size; ++i) out << (i ? " " : "") << shortest_text(node.data[i]);
    out << "</TABLE>\n</DEFINITION>\n";
  }
  out << "</NETWORK>\n</BIF>\n";
}

}  // namespace vel::io::detail
