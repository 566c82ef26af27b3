// The nodes of a network as an export writes them, and the writer of each
// format.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "io/network_export.h"

namespace vel::io::detail {

struct ExportNode {
  vel_node_t *node = nullptr;
  const char *name = nullptr;
  int category = vel_category_chance;  // as written: chance, decision or utility
  std::vector<std::string> states;     // names as the exchange formats write them; none for utility
  std::vector<std::size_t> parents;    // the table's other nodes, as indices into the written nodes
  const float *data = nullptr;         // the table in storage order
  std::size_t size = 0;
};

// The nodes to write, refusing what the format cannot hold (see write_network).
std::vector<ExportNode> plan_export(vel_domain_t *domain, ExportFormat format, bool chance_only);

// A state's name in BIF, XMLBIF and UAI: its label, false/true, its number,
// or an interval as "lo_hi" ("-inf_0", "0_2", "2_inf").
std::string exchange_state_name(const vel_node_t *node, std::size_t state);

void write_bif(std::ostream &out, const std::string &name, const std::vector<ExportNode> &nodes);
void write_xmlbif(std::ostream &out, const std::string &name, const std::vector<ExportNode> &nodes);
void write_uai(std::ostream &out, const std::vector<ExportNode> &nodes);

// Whether BIF reads `text` back as one word: not empty, UTF-8, no blanks,
// control characters or any of ,;{}()[]|" and no comment at its start.
bool is_bif_word(const std::string &text);

// Why XML text cannot carry `text` unchanged (not UTF-8, a control
// character, a blank at either end, which readers trim), or nullptr.
const char *xml_refusal(const std::string &text);

}  // namespace vel::io::detail
