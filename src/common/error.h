// The library's thread-local error code and the names of its codes.
#pragma once

#include "vel/vel.h"

extern "C" {
// 0 = no error; otherwise one of the vel_error_* codes.  Every entry point
// sets it; an inner failure propagates it unchanged.  constinit lets every
// access go straight to the variable instead of through a TLS wrapper call,
// and the initial-exec model addresses it from the thread pointer without a
// call to the dynamic linker, which the special functions' hot paths would
// otherwise pay on every evaluation (four bytes of the static TLS surplus
// that the C library keeps for libraries loaded at run time).
extern constinit thread_local int _vel_error_code [[gnu::tls_model("initial-exec")]];
}

namespace vel {

// Sets the error code and returns it, for `return fail(vel_error_usage);`.
inline int fail(int code) {
  _vel_error_code = code;
  return code;
}

// Thread-local text of the last host failure that has one (a parse error,
// say); cleared by set_error_message(nullptr) or "".
void set_error_message(const char *text, long position = 0);

// Index of the model expression whose evaluation made the last generation
// fail; -1 when the failure came from no single expression.
void set_failed_expression(long index);

}  // namespace vel
