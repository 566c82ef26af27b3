// Keeps C++ exceptions from crossing the C boundary of the host's entries.
#pragma once

#include <string>

#include "common/error.h"

namespace vel::host {

// Runs `body`; an exception becomes vel_error_out_of_memory (every exception
// the host can meet comes from allocation) and the result is `failure`.
template <class R, class F>
R guarded(R failure, F &&body) {
  try {
    return body();
  } catch (...) {
    fail(vel_error_out_of_memory);
    return failure;
  }
}

// Refuses with a usage error and a message for vel_error_message().
inline int usage(const char *message) {
  set_error_message(message);
  return fail(vel_error_usage);
}
inline int usage(const std::string &message) { return usage(message.c_str()); }

}  // namespace vel::host
