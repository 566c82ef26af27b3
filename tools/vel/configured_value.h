// The value of a real-valued function node computed from configured values.
#pragma once

#include "vel/vel.h"

namespace vel::cli {

// 0 and the value, or the library's error code.
int compute_configured_value(vel_node_t *node, double &value);

}  // namespace vel::cli
