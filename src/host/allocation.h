// Test switch of the host's allocator for the table generator's working data.
// Not exported from the library (no vel_ prefix); unit tests link the host
// objects directly.
#pragma once

namespace vel::host {

// Makes _vel_allocate fail (out of memory) once `successes` more calls have
// succeeded; the failing call disarms the switch, so exactly one call fails.
// A negative count disarms it.  Per thread.
void fail_allocations_after(long successes);

// Number of _vel_allocate calls made on this thread so far, failed ones included.
long allocation_count();

}  // namespace vel::host
