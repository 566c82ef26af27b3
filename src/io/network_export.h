// Networks out: BIF, XMLBIF and the BAYES form of the UAI format.
#pragma once

#include <ostream>
#include <stdexcept>
#include <string>

#include "vel/vel.h"

namespace vel::io {

enum class ExportFormat { bif, xmlbif, uai };

// "BIF", "XMLBIF", "UAI".
const char *format_name(ExportFormat format);

// A network the format cannot hold as it is; what() names the node (and the
// state) and the reason.
class ExportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Writes every node of the domain, in domain order, with its current table
// (entries as the shortest text that reads back to the same float).  Nodes
// the format cannot hold are refused with ExportError: utility and decision
// nodes in BIF and UAI, continuous and real-valued function nodes in every
// format, state names that BIF or XML cannot carry, entries that are not
// finite.  With `chance_only` utility, continuous and real-valued function
// nodes are left out (none of them is a node of another node's table) and
// decision nodes are written as chance nodes with their policies.  Discrete
// function nodes are written as chance nodes.  `name` names the network.
// Nothing is written when the network is refused.
void write_network(std::ostream &out, vel_domain_t *domain, const std::string &name, ExportFormat format,
                   bool chance_only);

}  // namespace vel::io
