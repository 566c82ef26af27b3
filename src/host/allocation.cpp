// The allocator of the table generator's working data (memory it releases
// with free), with a switch that lets tests make one allocation fail.
#include "host/allocation.h"

#include <cstdint>
#include <cstdlib>

#include "common/error.h"
#include "host/host.h"

namespace {

thread_local long successes_before_failure = -1;
thread_local long calls = 0;

}  // namespace

namespace vel::host {

void fail_allocations_after(long successes) { successes_before_failure = successes; }

long allocation_count() { return calls; }

}  // namespace vel::host

extern "C" void *_vel_allocate(size_t bytes) {
  ++calls;
  if (successes_before_failure == 0) {
    successes_before_failure = -1;
    vel::fail(vel_error_out_of_memory);
    return nullptr;
  }
  if (successes_before_failure > 0) --successes_before_failure;
  // No object may exceed PTRDIFF_MAX bytes; saturated sizes end here rather
  // than in malloc.
  void *memory = bytes > PTRDIFF_MAX ? nullptr : std::malloc(bytes ? bytes : 1);
  if (!memory) vel::fail(vel_error_out_of_memory);
  return memory;
}
