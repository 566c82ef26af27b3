// Messages the program writes on standard error, and the explanation of a
// library failure that goes into them.
#pragma once

#include <optional>
#include <string>

#include "io/model_file.h"

namespace vel::cli {

// Loads the model file or network (any format vel reads), or writes the
// loader's message ("FILE:LINE:COLUMN: ...") and returns nothing (exit
// status 2); `message`, when given, receives it for a JSON document.
std::optional<io::LoadedModel> load_or_report(const std::string &file,
                                              std::string *message = nullptr);

// Why the last generation of `node` failed with `code`.  The library keeps
// the explanation when the domain had a log; without one the node is
// generated once more, in scratch storage, with a private log to obtain it.
std::string generation_failure(vel_node_t *node, int code);

// "vel: NODE: error 34 (vel_error_invalid_expression): MESSAGE"
void report_library_failure(const std::string &node, int code, const std::string &message);

// "vel: FILE: no node named 'X'"
void report_unknown_node(const std::string &file, const std::string &name);

}  // namespace vel::cli
