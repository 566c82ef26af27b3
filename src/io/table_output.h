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
// A table entry for a person (text and CSV): its shortest text, with a
// negative zero written as "0".
std::string entry_text(float value);
// A state value or interval bound: shortest_text, with +-vel_infinity (and
// beyond) as "inf" and "-inf".
std::string bound_text(double bound);
// A state as a person reads it: its label, false/true, its number, or an
// interval "[lo;hi)" with unbounded ends as -inf and inf.
std::string state_text(const vel_node_t *node, std::size_t state);

// One table each.  The text layout has the parents' names and the node's
// state names (or "utility") as headings; the CSV form is a "# NODE (word)"
// line (left out when `titled` is false), a header row and one row per
// parent configuration.  Callers put a blank line between two tables.  Throw
// std::runtime_error for a node that has no table.
void write_table_text(std::ostream &out, vel_node_t *node);
void write_table_csv(std::ostream &out, vel_node_t *node, bool titled = true);

// The failure that ended a run: the library's code and explanation, and the
// node it concerns.
struct GenerationError {
  int code;
  std::string node;
  std::string message;
};

// {"domain": ..., "tables": [...], "error": null or the error object}.
void write_json_document(std::ostream &out, const std::string &domain,
                         const std::vector<vel_node_t *> &tables, const GenerationError *error);
// The same document for a file that cannot be loaded: no domain, no tables,
// the load error.
void write_json_load_failure(std::ostream &out, const std::string &message);
// {"code": 34, "name": "vel_error_invalid_expression", "node": "Temp", "message": "..."}
std::string json_error(const GenerationError &error);
// The error object of a file that cannot be loaded: code and node null, name
// "load_error", the loader's message.
std::string json_load_error(const std::string &message);

}  // namespace vel::io
