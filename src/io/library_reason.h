// The library's own account of its last failure, for loader messages.
#pragma once

#include <string>

namespace vel::io::detail {

// vel_error_message() when there is one, else the code's description and
// name.
std::string library_reason();

}  // namespace vel::io::detail
