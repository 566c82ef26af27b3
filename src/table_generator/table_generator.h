// The table generator's functions private to the module; its entries for
// the rest of the library are in entries.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/records.h"
#include "table_generator/builder_arguments.h"
#include "table_generator/entries.h"

// Texts of the named operators, indexed by operator code - 60 (codes 60..100).
extern const char *const operator_names[41];

// Typing and structural checks (typing.cpp).
int node_check_expression(vel_node_t *node, vel_expression_t *expression);
int value_is_used(const vel_node_t *node, const vel_expression_t *expression);
int node_value_is_used_in_model(const vel_model_t *model, const vel_node_t *node);
int get_unique_node(const vel_expression_t *expression, vel_node_t **slot);

// Evaluation (eval_numeric.cpp, eval_boolean.cpp, eval_label.cpp).
int eval_numeric_expr(const vel_expression_t *expression, double *result);
int eval_boolean_expr(const vel_expression_t *expression);
const char *eval_label_expr(const vel_expression_t *expression);
const vel_expression_t *eval_distribution_expr(const vel_expression_t *expression,
                                               double *lower, double *upper);
int eval_distribution_or_numeric_expr(const vel_expression_t *expression, double *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper);
int eval_distribution_or_label_expr(const vel_expression_t *expression, const char **value,
                                    const vel_expression_t **slot, double *lower,
                                    double *upper);
int eval_distribution_or_boolean_expr(const vel_expression_t *expression, int *value,
                                      const vel_expression_t **slot, double *lower,
                                      double *upper);

// Discretization (compute_distribution.cpp, continuous.cpp, discrete.cpp).
// result: rows of n doubles (row 0 probabilities, rows 1 and 2 minimum and
// maximum, then three scratch rows per interval parent).
int compute_distribution(const vel_expression_t *expression, vel_node_t **nodes,
                         double *result, uint64_t n, uint64_t samples);
// The Normal ... PERT branch (codes 60..68; Uniform only on interval nodes).
int continuous_distribution(const builder_arguments_t &distribution, vel_node_t *node,
                            double *result, uint64_t n, double lower, double upper,
                            int truncated);
// The Binomial, Poisson, NegativeBinomial, Geometric branch (codes 69..72).
int discrete_distribution(const builder_arguments_t &distribution, vel_node_t *node,
                          double *result, uint64_t n, int truncated);
// The row of a distribution builder (the dispatch on its operator), the
// truncation bounds already applied.
int distribution_row(const builder_arguments_t &distribution, vel_node_t *node, double *result,
                     uint64_t n, double lower, double upper);
// Probability one on a state: the one holding the value (labeled nodes: the
// label; boolean nodes: state 0 false, 1 true).  34 with its message when no
// state holds it.
int place_label(vel_node_t *node, double *result, uint64_t n, const char *label);
int place_value(vel_node_t *node, double *result, uint64_t n, double value);
int place_state(double *result, uint64_t n, uint64_t state);
// Entry i of a row computed at one point: its mean, minimum and maximum (the
// three rows of n of a result) are the same value.
inline void set_entry(double *result, uint64_t n, uint64_t i, double p) {
  result[i] = result[n + i] = result[2 * n + i] = p;
}

// Generation (driver.cpp, generate_probability.cpp, generate_utility.cpp).
// The driver's messages, each taking one %s (the node's name or an index).
extern const char *const unspecified_model_format;
extern const char *const missing_expression_format;
extern const char *const invalid_expression_format;
size_t size_multiply(size_t a, size_t b);
// `batch`: the batch evaluation of the rows, or NULL for the scalar path alone.
struct batch_plan_t;
int generate_probability(vel_table_t *table, double *work, float **data,
                         vel_expression_t **expressions, const vel_control_t *control,
                         batch_plan_t *batch);
// `block`: three doubles (value, minimum, maximum) per table node and one more.
int generate_utility(vel_table_t *table, float **data, vel_expression_t **expressions,
                     const vel_control_t *control, double *block, batch_plan_t *batch);

// Checks shared by generation and vel_node_check_model (state_value_checks.cpp,
// check_model.cpp).  The host's verdict on the node's state values; 0 for
// nodes the test does not apply to.
int state_values_verdict(const vel_node_t *node);
// The generator's sentence for a bad verdict: the format takes the node's
// name and the word of the verdict.
extern const char *const state_values_format;
const char *state_values_word(int verdict);
// Called for each missing (vel_check_missing_expression) or unfitting
// (vel_check_invalid_expression) expression; nonzero ends the scan with it.
typedef int (*expression_problem_t)(void *context, int kind, uint64_t index);
// Scans every expression of the model in index order; 0 when all are present
// and fit the node, else 34 (set) after the whole scan, or the first nonzero
// result of `problem`.
int scan_model_expressions(vel_node_t *node, const vel_model_t *model,
                           expression_problem_t problem, void *context);
// The single sample point of an interval parent's state with an unbounded end;
// 0 when both ends are finite (the caller samples the interval instead).
int unbounded_interval_point(double lo, double hi, double *point);

// Values from inference (inference_values.cpp).
int compute_dcu_value(vel_node_t *node);
int64_t get_inferred_state(const vel_node_t *node);

// Function nodes (function_nodes.cpp).
int evaluate_function_node(vel_node_t *node, uint32_t mode);
// Nonzero when the model's value depends on the node: its expressions refer
// to it, or it is a model node (which selects the expression).
int model_uses_node(const vel_model_t *model, const vel_node_t *node);
