// Per-thread count of calls to the host operations that read results of
// inference and state values.  Tests read it to show that a function node's
// ancestor is computed once per computation and that a cached value comes
// back without any computation.
#pragma once

#include <cstdint>

namespace vel::host {

void count_value_read();
uint64_t value_read_count();

}  // namespace vel::host
