// The table generator's entries for the rest of the library (C linkage):
// the only part of the module that the host and inference may call, besides
// the public vel_ functions of vel/vel.h.
#pragma once

#include <cstdint>

#include "host/records.h"

extern "C" {

int _vel_jt_generate_tables(vel_junction_tree_t *junction_tree);
int _vel_check_state_values(vel_node_t *node);
int _vel_assign_types(vel_expression_t *expression, uint32_t mode);
int _vel_node_compute_function_value(vel_node_t *node, uint32_t mode);
void _vel_invalidate_function_value(vel_node_t *node, uint32_t mode);
void _vel_invalidate_function_children(vel_node_t *node, uint32_t mode);
void _vel_domain_initialize_function_status_codes(vel_domain_t *domain);
void _vel_cc_initialize_function_status_codes(vel_collection_t *collection, uint64_t first);

}  // extern "C"
