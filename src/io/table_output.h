// Tables out: a person's text layout, CSV (RFC 4180 quoting) and one JSON
// document for a run of generations.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "vel/vel.h"

namespace vel::io {

// "conditional probability", "policy" or "utility", from the node's category.
const char *table_word(const vel_node_t *node);

// Shortest text that reads back to the same value ("0.1", "-0", "1e-05");
// non-finite values as "nan", "inf", "-inf".
std::string shortest_text(float value);
std::string shortest_text(double value);
// A state value or interval bound: shortest_text, with +-vel_infinity (and
// beyond) as "inf" and "-inf".
std::string bound_text(double bound);
// A state as a person reads it: its label, false/true, its number, or an
// interval "[lo;hi)" with unbounded ends as -inf and inf.
std::string state_text(const vel_node_t *node, std::size_t state);

// One table each.  The text layout has the parents' names and the node's
// state names (or "utility") as headings; the CSV form is a "# NODE (word)"
// line, a header row and one row per parent configuration.  Callers put a
// blank line between two tables.  Throw std::runtime_error for a node that
// has no table.
void write_table_text(std::ostream &out, vel_node_t *node);
void write_table_csv(std::ostream &out, vel_node_t *node);

// The failure that ended a run of generations.
struct GenerationError {
  int code;
  std::string node;
};

// {"domain": ..., "tables": [...], "error": null or {"code", "name", "node"}}.
void write_json_document(std::ostream &out, const std::string &domain,
                         const std::vector<vel_node_t *> &tables, const GenerationError *error);
// A number for JSON: shortest_text, with non-finite values as strings.
std::string json_number(float value);
std::string json_number(double value);
// {"code": 34, "name": "vel_error_invalid_expression", "node": "Temp"}
std::string json_error(const GenerationError &error);

}  // namespace vel::io
