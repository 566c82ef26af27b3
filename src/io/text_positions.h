// Positions in the text of a file, and the load errors that cite them.
#pragma once

#include <string>
#include <string_view>

#include "io/model_file.h"

namespace vel::io::detail {

// LoadError "FILE:LINE:COLUMN: message"; fail_at throws it.
LoadError load_error(const std::string &file, Position at, const std::string &message);
[[noreturn]] void fail_at(const std::string &file, Position at, const std::string &message);

// The position just after `text` when `text` starts at `at`: a line feed
// starts a new line; columns count characters (UTF-8 continuation bytes add
// none).
Position advance(Position at, std::string_view text);

// Whether `text` is well-formed UTF-8 (no overlong forms, surrogates or code
// points beyond U+10FFFF).
bool is_utf8(std::string_view text);

}  // namespace vel::io::detail
