// The number of expressions of a model: the product of its nodes' state counts.
#pragma once

#include <cstdint>

#include "host/records.h"

namespace vel::host {

// Product of the state counts of the NULL-terminated `nodes`, taking
// `replaced_count` as the count of `replaced` (may be NULL).  False on
// overflow of 64 bits.
bool model_size(vel_node_t *const *nodes, const vel_node_t *replaced, uint64_t replaced_count,
                uint64_t *size);

}  // namespace vel::host
