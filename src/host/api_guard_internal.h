// Checks at the C boundary of the host's entries: arguments that must not be
// NULL, and C++ exceptions that must not cross it.
#pragma once

#include <cstdio>
#include <string>
#include <utility>

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

// Whether none of `pointers` is NULL; otherwise refuses with the usage error
// "FUNCTION: WHAT is NULL" (`what` names them all: "node or parent").  The
// message is formatted on the stack, so the check cannot throw.
template <class... P>
bool check_not_null(const char *function, const char *what, const P *...pointers) {
  if ((... && (pointers != nullptr))) return true;
  char message[256];
  std::snprintf(message, sizeof message, "%s: %s is NULL", function, what);
  usage(message);
  return false;
}

// The name a record of each type goes by in check_not_null's message.
inline const char *record_name(const vel_domain_t *) { return "domain"; }
inline const char *record_name(const vel_node_t *) { return "node"; }
inline const char *record_name(const vel_table_t *) { return "table"; }
inline const char *record_name(const vel_model_t *) { return "model"; }
inline const char *record_name(const vel_expression_t *) { return "expression"; }
inline const char *record_name(const vel_junction_tree_t *) { return "junction tree"; }

// An accessor of `record`: `fallback` after the usage error when the record
// is NULL, else the error code cleared and what `get` returns.
template <class Record, class Get>
auto checked_get(const char *function, const Record *record,
                 decltype(std::declval<Get &>()()) fallback, Get &&get) -> decltype(get()) {
  if (!check_not_null(function, record_name(record), record)) return fallback;
  _vel_error_code = 0;
  return get();
}

}  // namespace vel::host
