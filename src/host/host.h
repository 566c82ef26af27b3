// Host operations that the table generator calls, and the host's internal
// entries.  Everything here has C linkage; the vel_ operations the module
// uses are declared in the public header.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/records.h"

extern "C" {

// State values and labels.
double _vel_node_get_state_value(const vel_node_t *node, int64_t state);
const char *_vel_node_get_state_label(const vel_node_t *node, int64_t state);
// Index of the only state with that label; negative when none or not unique.
int64_t _vel_node_get_state_index(const vel_node_t *node, const char *label);
// Index of the state that holds the value; negative when none (NaN).
int64_t _vel_node_state_value_to_state_index(const vel_node_t *node, double value);
// 0 acceptable, 1 not increasing, 2 infinities misused.
int _vel_node_check_status_of_state_values(const vel_node_t *node);
int _vel_is_wellformed_interval_node(const vel_node_t *node);
int _vel_is_wellformed_numbered_node(const vel_node_t *node);

// Results of inference.
double _vel_node_get_variance(const vel_node_t *node, int reserved);
// 0 when the node's beliefs may be read as probabilities (the domain
// compiled, a sum propagation, no evidence entered since unless the mode
// keeps it); otherwise sets and returns vel_error_not_compiled,
// vel_error_not_propagated or vel_error_computation.
int _vel_node_check_inference_results(const vel_node_t *node);

// Models and lists.
int _vel_node_appears_in_model(const vel_model_t *model, const vel_node_t *node);
void _vel_node_touch_table(vel_node_t *node, int reserved);
void _vel_node_touch_model(vel_node_t *node);
int _vel_node_in_list(const vel_node_t *node, vel_node_t *const *list);
int64_t _vel_node_index(const vel_node_t *node, vel_node_t *const *list);
uint64_t _vel_expr_list_length(vel_expression_t *const *list);

// Distribution of the sum of N independent copies of X onto node's intervals.
int _vel_aggregate(const vel_node_t *node, const float *count_beliefs,
                   uint64_t count_state_count, const vel_node_t *item, double *out);

// Working data of one generation.
const char *_vel_print_size(vel_domain_t *domain, uint64_t value);
void *_vel_allocate(size_t bytes);
vel_control_t *_vel_create_control_data_for_tg(const vel_table_t *table,
                                               const vel_model_t *model);
int _vel_domain_flush_log_file(vel_domain_t *domain);

// Runs `generate` (one node's table generation) so that a failure leaves its
// explanation in vel_error_message() and the index of the failing expression,
// when there is one, in vel_error_expression_index().
int _vel_generate_explained(vel_node_t *node, int (*generate)(vel_node_t *));

}  // extern "C"
