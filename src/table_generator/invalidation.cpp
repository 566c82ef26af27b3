// Invalidation of function-node values: not built yet (no caches exist).
#include "table_generator/table_generator.h"

extern "C" {
void _vel_invalidate_function_value(vel_node_t *, uint32_t) {}
void _vel_invalidate_function_children(vel_node_t *, uint32_t) {}
void _vel_domain_initialize_function_status_codes(vel_domain_t *) {}
void _vel_cc_initialize_function_status_codes(vel_collection_t *, uint64_t) {}
}
