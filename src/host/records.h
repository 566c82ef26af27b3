// The host records that the table generator reads and writes.  Field order
// and types of the leading fields are fixed (the module relies on them);
// fields after the marked line belong to the host alone.
#pragma once

#include <cstdint>
#include <cstdio>

#include "vel/vel.h"

struct vel_mirror_s;
struct vel_host_domain_data;  // host-private C++ owner data of a domain

// A mirror: a node array parallel to the domain's mirrored-node list.
struct vel_mirror_s {
  vel_node_t **nodes;
};

struct vel_domain_s {
  FILE *log_file;                 // NULL: no log
  vel_node_t *first_node;         // head of the node list, linked by `next`
  uint64_t node_counters[6];      // k0..k5 (function-status initialisation)
  int32_t is_compiled;            // 0: not compiled
  void *source_domain;            // tested for NULL only
  vel_node_t **blocked_nodes;     // NULL-terminated; may be NULL
  vel_node_t **mirrored_nodes;    // NULL-terminated; may be NULL
  vel_mirror_s **mirror_list;     // NULL-terminated; may be NULL
  // ---- host-only fields ----
  int32_t is_class;
  vel_node_t *last_node;
  vel_junction_tree_t *junction_tree;  // the domain's single junction tree
  vel_host_domain_data *host;          // owner of C++ containers (never read by the module)
  char print_buffer[24];               // text of _vel_print_size, valid until its next call
  int32_t scalar_generation;           // nonzero: tables are generated on the scalar path alone
};

struct vel_collection_s {
  vel_domain_t **domains;  // NULL-terminated
};

struct vel_junction_tree_s {
  vel_domain_t *domain;
  int32_t evidence_pending;  // 0 none
  int32_t equilibrium;       // 10 none, 11 sum
  int32_t evidence_mode;     // 20 normal
};

struct vel_table_s {
  vel_domain_t *domain;
  vel_node_t *node;
  int32_t is_utility_table;
  vel_node_t **nodes;   // storage order; NULL-terminated
  uint64_t node_count;
  float *data;
  // ---- host-only fields ----
  uint64_t size;        // number of entries in data
};

struct vel_model_s {
  vel_node_t **nodes;                // NULL-terminated, configuration order
  vel_expression_t **expressions;    // NULL: unspecified; entries may be NULL
  uint64_t expression_count;
  int32_t tables_outdated;
  uint64_t samples_per_interval;     // at least 1
  int64_t function_value_use;        // nonzero: depends on function-node values
  // ---- host-only fields ----
  vel_node_t *node;                  // the node that owns the model
};

// One per node of a table, in the order of the table's nodes.
struct vel_control_s {
  uint64_t state_count;
  uint64_t stride;   // expression-cursor step per state; 0: not a model node
  uint64_t reserved; // the model node's position + 1, or 0
};
typedef struct vel_control_s vel_control_t;

struct vel_node_s {
  vel_domain_t *domain;
  int32_t category;
  int32_t kind;
  vel_node_t **parents;            // NULL-terminated; may be NULL
  vel_node_t **children;           // NULL-terminated; may be NULL
  int64_t mark;
  vel_junction_tree_t *junction_tree;
  vel_table_t *belief_table;
  vel_model_t *model;
  int64_t state_index;             // -1 none
  double value;
  double variance;
  vel_node_t *value_source;
  void *external_link;
  uint64_t state_count;
  double configured_value;         // mode-1 cache of a function node; configured value otherwise
  double inferred_value;           // mode-0 cache of a function node
  int8_t function_status[2];       // per mode: -1 invalid, 0 valid, >0 error code
  union {
    int64_t state;                 // discrete: propagated evidence state, -1 none
    double value;                  // continuous: mode-1 configured value
  } evidence;
  int64_t configured_state;        // mode-1 state of a discrete node
  int32_t subtype;
  double *state_values;            // numbered: n values; interval: n + 1 bounds
  vel_node_t *next;
  // ---- host-only fields ----
  char *name;
  char **state_labels;             // labeled/boolean: n labels (owned)
  vel_table_t *table;              // the node's table, created on demand
  double mean;                     // continuous: mean after propagation
  double expected_utility;         // utility: expected utility
  double utility_variance;         // utility: variance of the utility
  uint64_t parent_count;
  uint64_t child_count;
  uint64_t index;                  // position in the domain's node list
  double propagated_variance;      // continuous: variance after propagation
  int64_t topological_order;       // parents always have lower orders than their children
  // Scratch of the module's walks over the node graph, which must work at any
  // depth without allocating: the links of their worklists and, for a node
  // whose function value is being computed, where its computation resumes.
  vel_node_t *walk_next;           // marking and clearing of a computation's ancestors
  vel_node_t *invalidation_next;   // invalidation of cached function values
  vel_node_t *walk_caller;         // the node whose computation waits for this one
  const vel_expression_t *walk_root;  // the expression being evaluated
  const vel_expression_t *walk_at;    // the reference or variance it waits at
  uint64_t walk_index;             // the model node it waits for
  int32_t walk_stage;              // 0: no computation under way
};

// Operand of an expression, chosen by its operator code.
struct vel_expression_s {
  uint32_t operator_;   // operator code 60..117 (`operator` is a C++ keyword)
  uint32_t type;        // value type 1..9
  void *owner;          // host: the expression or model that owns it; NULL if free
  union {
    vel_expression_t **arguments;  // 60..113: NULL-terminated
    double number;                 // 114
    char *label;                   // 115
    vel_node_t *node;              // 116
    int32_t truth;                 // 117
  };
  // ---- host-only fields ----
  uint32_t depth;       // height of the tree below and including this record
  uint32_t argument_count;
  uint64_t position;    // index in the owner's argument array, when the owner is an expression
};

typedef struct vel_collection_s vel_collection_t;
typedef struct vel_mirror_s vel_mirror_t;
