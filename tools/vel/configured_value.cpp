#include "configured_value.h"

namespace vel::cli {

// The library offers no public entry for this mode yet; this is the one place
// to call it once it does.
int compute_configured_value(vel_node_t *node, double &value) {
  (void)node;
  value = 0.0;
  return vel_error_unsupported;
}

}  // namespace vel::cli
