// Messages the program writes on standard error.
#pragma once

#include <optional>
#include <string>

#include "io/model_file.h"

namespace vel::cli {

// Loads the model file or network (any format vel reads), or writes the loader's message and returns nothing
// (exit status 2).
std::optional<io::LoadedModel> load_or_report(const std::string &file);

// "vel: NODE: error 34 (vel_error_invalid_expression): <description>"
void report_library_failure(const std::string &node, int code);

// "vel: FILE: no node named 'X'"
void report_unknown_node(const std::string &file, const std::string &name);

}  // namespace vel::cli
