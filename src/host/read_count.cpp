#include "host/read_count_internal.h"

namespace {

thread_local uint64_t reads = 0;

}  // namespace

namespace vel::host {

void count_value_read() { ++reads; }

uint64_t value_read_count() { return reads; }

}  // namespace vel::host
