// Batch evaluation of a model over the sample points of a table's interval
// parents.  Each expression is compiled into a flat program whose
// instructions are evaluated at the loop level of the innermost node they
// depend on: constants once per generation, terms in discrete parents once
// per configuration of those parents (by the scalar evaluator), terms in
// interval parents once per configuration of the parents they depend on, in
// tight loops over the sample points ("lanes").  A row is then made lane by
// lane from the computed values and averaged as the scalar path averages.
// Anything unusual in a row (a failed value in a lane that uses it, a leaf
// that refuses its parameters) makes the caller compute the row again on the
// scalar path, so what is observed, values, messages and codes, is always
// the scalar path's.
#pragma once

#include <cstdint>

#include "host/records.h"

// Instruction kinds.
enum batch_kind : uint8_t {
  op_row,        // a subtree without interval parents' values: the scalar evaluator
  op_sample,     // the sample points of an interval parent
  op_unary,      // negate, log ... ceil
  op_binary,     // + - * / ^ mod
  op_min_step,   // min and max as chains of steps
  op_max_step,
  op_compare,    // == != < > <= >=
  op_and,        // and, or as chains of steps
  op_or,
  op_not,
  op_if,
};

struct batch_instruction_t {
  uint8_t kind;
  uint8_t boolean;     // the value is a condition (0 or 1), not a number
  uint16_t level;      // 0: once per configuration; j: varies with interval level j
  uint32_t code;       // the operator code (unary, binary, compare)
  int32_t a, b, c;     // operands (instruction indexes)
  int32_t depth;       // op_row: the last table position it reads; -1: a constant
  const vel_expression_t *expression;  // op_row: the subtree
  // When every use of the value lies in one branch of an if: the condition
  // (an earlier instruction of no deeper level) and the branch's truth, so
  // that lanes which take the other branch may skip the work; -1: none.
  int32_t guard = -1;
  uint8_t guard_when = 0;
  // The register holding the values (see assign_registers).
  uint32_t reg = 0;
};

// How the row of a probability table comes out of the values: the
// structure of if and truncate around distribution builders and plain values.
enum batch_shape_kind : uint8_t {
  shape_if,         // value: condition; first, second: the branches
  shape_truncate,   // value: lower bound or -1; upper: upper bound or -1; first: the distribution
  shape_builder,    // expression: the builder; arguments, argument_count: its argument values
  shape_number,     // value: a number, placed on its state
  shape_boolean,    // value: a condition, placed on false or true
  shape_label,      // expression: a label of the configuration, placed on its state
};

struct batch_shape_t {
  uint8_t kind;
  int32_t value;
  int32_t upper;
  int32_t first;
  int32_t second;
  uint32_t arguments;
  uint32_t argument_count;
  const vel_expression_t *expression;
};

// One expression compiled, with the values of its configuration-level
// instructions kept between rows (valid while the table positions they read
// keep their states).
struct batch_program_t {
  const vel_expression_t *expression;  // NULL: the slot is empty
  int compiled;                        // 0: the expression is left to the scalar path
  uint32_t count;                      // instructions
  int32_t root;                        // utility: root instruction; probability: root shape
  batch_instruction_t *code;
  batch_shape_t *shapes;
  uint32_t shape_count;
  int32_t *arguments;
  uint32_t argument_count;
  double *row_value;
  uint8_t *row_failed;
  uint64_t *row_serial;                // the row serial it was computed at; 0: never
  // Rows across the states of the block parent (see batch_plan_t): whether a
  // configuration value reads that parent (then there are none), each
  // state's row and whether it was had, and the row serial they are of.
  int reads_block_node;
  double *block_rows;
  uint8_t *block_ok;
  uint64_t block_serial;
};

// How an interval parent's state is sampled: at one point (an interval of
// zero width, not averaged), at `samples` points (averaged), or at the one
// point inside an unbounded interval.
enum batch_sampling : uint8_t { sampling_single, sampling_averaged, sampling_unbounded };

// The batch evaluation of one generation, inside its workspace.
struct batch_plan_t {
  vel_table_t *table;
  vel_node_t *node;
  int probability;          // nonzero: rows of the node's states; zero: one utility
  uint64_t n;               // entries of a row (the node's states, or 1)
  uint64_t samples;         // per bounded interval state
  uint32_t levels;          // interval parents in the table
  uint32_t outer;           // the first levels are walked one point at a time, the rest in lanes
  vel_node_t **level_node;  // per level
  uint32_t *level_position; // per level: the position among the table's nodes
  uint64_t capacity;        // instructions per program
  uint64_t lane_capacity;   // lanes of the inner levels together
  uint32_t slot_count;
  uint32_t next_slot;
  batch_program_t *slots;
  double *registers;        // capacity * lane_capacity values
  uint8_t *failed;          // capacity * lane_capacity failure flags
  uint8_t *any_failed;      // per instruction: whether some lane failed
  uint64_t *changed_at;     // per table position: the row serial its state last changed at
  uint64_t serial;          // of the current row
  // Per row and level: the sample points (lo + (k + 0.5) width, or the one
  // point of an unbounded state), their count, whether they are averaged.
  double *level_lo;
  double *level_width;
  double *level_point;      // the one point, when the state is unbounded
  uint64_t *level_count;
  uint8_t *level_sampling;  // sampling_* below
  uint64_t *level_index;    // the outer walk's current point per level
  uint64_t *level_lanes;    // lanes of a value that varies with the levels up to j
  uint64_t *level_spread;   // [from * (levels + 1) + to]: lanes of level `to` per value of `from`
  int32_t *seen;            // compiling: instructions by hash, for common subexpressions;
  uint64_t seen_size;       // a power of two, room for 2 * capacity + levels + 1 afterwards
  double *lane_rows;        // each lane's row: three rows of n, lane after lane
  double *argument_values;  // a builder's arguments in one lane
  bool *argument_failed;
  uint64_t argument_capacity;
  // A Distribution's weights over the lanes of one prefix: each argument's
  // first value and its step (1 or 0), each lane's sum of weights, and one
  // argument's quotients.
  const double **argument_columns;
  uint64_t *argument_steps;
  double *lane_sums;
  double *lane_quotients;
  // Rows computed together across the states of the innermost level's parent
  // (block_states of them; 0: each row by itself), when every table node
  // after it selects the expression, so that the rows of a program all share
  // the configuration of the nodes before it: the lanes of each state among
  // the innermost level's (offsets), its sample points and how it is sampled.
  uint64_t block_states;
  int block_active;                      // the innermost level holds every state's points
  uint32_t *block_point_state;           // the state of each of the innermost level's points
  uint64_t *block_offset;
  double *block_points;
  double *block_lo;
  double *block_width;
  double *block_point;
  uint8_t *block_sampling;
};

// Bytes of the plan for the table and model, 0 when they are left to the
// scalar path (no interval parent, or programs too large to batch).
uint64_t batch_plan_bytes(const vel_table_t *table, const vel_model_t *model);
// Lays the plan out in `memory` (batch_plan_bytes of it); NULL when there is
// none.
batch_plan_t *batch_plan_in(void *memory, vel_table_t *table, const vel_model_t *model);

// The row (or utility entry) of the current configuration in `out` (three
// rows of n: mean, minimum, maximum), `changed` being the first table
// position whose state changed since the previous row.  0 when it is made;
// nonzero when the row must be computed on the scalar path instead (nothing
// has been written to the log then, and the code is not the row's).
int batch_row(batch_plan_t *plan, const vel_expression_t *expression, uint64_t changed, double *out,
              double *accumulators);

// Instruction i's values and failure flags (lane_capacity of each).
inline double *register_values(const batch_plan_t *plan, const batch_program_t *program, int32_t i) {
  return plan->registers + program->code[i].reg * plan->lane_capacity;
}
inline uint8_t *register_failures(const batch_plan_t *plan, const batch_program_t *program, int32_t i) {
  return plan->failed + program->code[i].reg * plan->lane_capacity;
}

// Compiling (batch_compile.cpp) and evaluating (batch_evaluation.cpp).
int compile_program(batch_plan_t *plan, batch_program_t *program, const vel_expression_t *expression);
void evaluate_instructions(batch_plan_t *plan, batch_program_t *program, uint32_t from_level,
                           uint32_t to_level);
