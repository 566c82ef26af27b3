/*
 * vel: probabilistic graphical models (Bayesian networks and influence
 * diagrams).  This is the library's public C interface.
 *
 * Conventions
 *  - Every function sets the thread-local error code (0 on success), which
 *    vel_error_code() reads.  Functions returning int return that code;
 *    functions returning a pointer return NULL on failure; functions returning
 *    a number document their failure value.
 *  - A domain owns every node, model, table and expression in it; deleting
 *    the domain frees them all.  An expression built with a vel_make_*
 *    constructor is owned by the caller until it is handed to another
 *    expression (as an argument) or to a model; then its owner frees it.
 *  - Lists of nodes and expressions are NULL-terminated arrays.
 *  - A domain is used by one thread at a time; different domains may be used
 *    by different threads at once.
 */
#ifndef VEL_VEL_H
#define VEL_VEL_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------ */
/* Records (opaque to users)                                                 */

typedef struct vel_domain_s vel_domain_t;
typedef struct vel_domain_s vel_class_t; /* a class is a domain flagged as a class */
typedef struct vel_node_s vel_node_t;
typedef struct vel_table_s vel_table_t;
typedef struct vel_model_s vel_model_t;
typedef struct vel_junction_tree_s vel_junction_tree_t;
typedef struct vel_expression_s vel_expression_t;

/* ------------------------------------------------------------------------ */
/* Constants                                                                 */

/* Node categories (any other value is a chance node). */
enum {
  vel_category_chance = 1,
  vel_category_function = 5,
  vel_category_decision = 8,
  vel_category_utility = 9
};

/* Node kinds. */
enum {
  vel_kind_discrete = 0,   /* has states */
  vel_kind_continuous = 1, /* positive: continuous */
  vel_kind_stateless = -1  /* negative: no states (utility, real-valued function) */
};

/* Subtypes of discrete nodes (0 for nodes without states). */
enum {
  vel_subtype_none = 0,
  vel_subtype_labeled = 30,
  vel_subtype_boolean = 31,
  vel_subtype_numbered = 32,
  vel_subtype_interval = 33
};

/* Error codes. */
enum {
  vel_error_none = 0,
  vel_error_usage = 1,
  vel_error_io = 2,
  vel_error_out_of_memory = 3,
  vel_error_impossible_evidence = 4, /* propagation found the evidence impossible */
  vel_error_too_large = 5,           /* a table or setting beyond a documented limit */
  vel_error_not_compiled = 17,
  vel_error_negative_entry = 18,
  vel_error_not_propagated = 21,
  vel_error_invalid_expression = 34,
  vel_error_division_by_zero = 36,
  vel_error_invalid_argument = 37,
  vel_error_computation = 38,
  vel_error_state_range = 39,
  vel_error_invalid_state_values = 40,
  vel_error_unsupported = 47
};

/* Operator codes of expressions (60..117). */
enum {
  vel_op_Normal = 60, vel_op_LogNormal, vel_op_Beta, vel_op_Gamma, vel_op_Exponential,
  vel_op_Weibull, vel_op_Uniform, vel_op_Triangular, vel_op_PERT, vel_op_Binomial,
  vel_op_Poisson, vel_op_NegativeBinomial, vel_op_Geometric, vel_op_Distribution,
  vel_op_NoisyOR, vel_op_truncate, vel_op_aggregate, vel_op_probability, vel_op_variance,
  vel_op_quantile, vel_op_min, vel_op_max, vel_op_log, vel_op_log2, vel_op_log10,
  vel_op_exp, vel_op_sin, vel_op_cos, vel_op_tan, vel_op_sinh, vel_op_cosh, vel_op_tanh,
  vel_op_sqrt, vel_op_abs, vel_op_floor, vel_op_ceil, vel_op_mod, vel_op_if, vel_op_and,
  vel_op_or, vel_op_not,
  vel_op_add = 101, vel_op_subtract, vel_op_multiply, vel_op_divide, vel_op_power,
  vel_op_negate, vel_op_state_index_of, vel_op_equals, vel_op_less_than,
  vel_op_greater_than, vel_op_not_equals, vel_op_less_or_equal, vel_op_greater_or_equal,
  vel_op_number = 114, vel_op_label, vel_op_node, vel_op_truth
};

/* Value types of expressions. */
enum {
  vel_type_number = 1,
  vel_type_label = 2,
  vel_type_boolean = 3,
  vel_type_any = 4,
  vel_type_distribution = 5,
  vel_type_distribution_or_number = 6,
  vel_type_distribution_or_label = 7,
  vel_type_distribution_or_boolean = 8,
  vel_type_distribution_or_any = 9
};

/* Junction-tree codes (results of inference). */
enum {
  vel_equilibrium_none = 10,
  vel_equilibrium_sum = 11,
  vel_equilibrium_max = 12,
  vel_evidence_mode_normal = 20,
  vel_evidence_mode_fast = 21
};

/* Evaluation modes of function nodes. */
enum {
  vel_mode_inference = 0,  /* values of other nodes from inference results */
  vel_mode_configured = 1  /* values of other nodes from their configured values */
};

/* The representation of an infinite bound: the largest finite double. */
static const double vel_infinity = 1.7976931348623157e+308;

/* ------------------------------------------------------------------------ */
/* Errors                                                                    */

int vel_error_code(void);                     /* the thread-local error code */
const char *vel_error_name(int code);         /* "vel_error_invalid_expression" */
const char *vel_error_description(int code);  /* one line */

/* The library's version, "MAJOR.MINOR.PATCH". */
const char *vel_version(void);
/* Text of the last failure that has one; "" when there is none.  A parse
 * error says what was expected, and vel_error_position() gives the 1-based
 * character position it refers to (0 when none).  After a failed table
 * generation it is the generator's explanation: the lines it wrote to the
 * domain's log during the call, leaving out the "Using model for ..." line
 * and the row diagnostics ("(0,1): 0.5 (min=0.4, max=0.6)", "(0,1):
 * evaluation failed"), joined by "\n" without a final newline; when nothing
 * remains (or the domain has no log file, so the generator wrote nothing),
 * the code's description.  A generation refused outright (no model, a
 * real-valued function node) names the reason. */
const char *vel_error_message(void);
long vel_error_position(void);
/* After a failed table generation: the index of the model expression whose
 * evaluation failed (the configuration being filled); -1 when the failure
 * came from no single expression (a check before the fill, say). */
long vel_error_expression_index(void);

/* ------------------------------------------------------------------------ */
/* Domains and classes                                                       */

vel_domain_t *vel_domain_new(void);
vel_class_t *vel_class_new(void);
/* Frees the domain (or class) and everything in it.  NULL: usage error. */
int vel_domain_delete(vel_domain_t *domain);
int vel_domain_is_class(const vel_domain_t *domain);
/* The log file receives the table generator's messages; NULL: no log. The
 * domain does not own the stream. */
int vel_domain_set_log_file(vel_domain_t *domain, FILE *log_file);
FILE *vel_domain_get_log_file(const vel_domain_t *domain);
/* The domain's nodes in creation order. */
vel_node_t *vel_domain_get_first_node(const vel_domain_t *domain);
vel_node_t *vel_node_get_next(const vel_node_t *node);
vel_node_t *vel_domain_get_node_by_name(const vel_domain_t *domain, const char *name);

/* The compiled flag and the codes of the domain's junction tree (the domain
 * has one junction-tree record, covering all its junction trees, and every
 * node points to it).  vel_domain_compile and vel_domain_propagate maintain
 * them; these setters state them for results computed elsewhere.  Setting
 * the flag to 0 uncompiles a domain that vel_domain_compile compiled. */
int vel_domain_set_compiled(vel_domain_t *domain, int compiled);
int vel_domain_is_compiled(const vel_domain_t *domain);
vel_junction_tree_t *vel_domain_get_junction_tree(const vel_domain_t *domain);
vel_junction_tree_t *vel_node_get_junction_tree(const vel_node_t *node);
/* equilibrium: vel_equilibrium_*; evidence_mode: vel_evidence_mode_*;
 * evidence_pending: 0 none, nonzero pending. */
int vel_jt_set_state(vel_junction_tree_t *jt, int equilibrium, int evidence_mode,
                     int evidence_pending);

/* ------------------------------------------------------------------------ */
/* Nodes                                                                     */

/* Creates a node named `name` (an identifier, unique in the domain) of the
 * given category, kind and subtype.  Discrete nodes (kind 0) need a subtype
 * 30..33; a boolean node has its two states (false, true) at once, the
 * others start with no states.  Nodes without states take subtype 0. */
vel_node_t *vel_domain_new_node(vel_domain_t *domain, int category, int kind,
                                int subtype, const char *name);
const char *vel_node_get_name(const vel_node_t *node);
vel_domain_t *vel_node_get_domain(const vel_node_t *node);
int vel_node_get_category(const vel_node_t *node);
int vel_node_get_kind(const vel_node_t *node);
int vel_node_get_subtype(const vel_node_t *node);

/* Sets the number of states of a discrete (non-boolean) node.  Labels start
 * empty and state values at 0.  Refused while the node is a model node of a
 * model that has expressions (their number would no longer fit). */
int vel_node_set_number_of_states(vel_node_t *node, size_t count);
/* Returns the count; (size_t)-1 on failure. */
size_t vel_node_get_number_of_states(const vel_node_t *node);
int vel_node_set_state_label(vel_node_t *node, size_t state, const char *label);
/* Label of a labeled node's state (boolean nodes: "false", "true"). */
const char *vel_node_get_state_label(const vel_node_t *node, size_t state);
/* Numbered nodes: state < count; interval nodes: bound index <= count.
 * Infinite bounds are +-vel_infinity (IEEE infinities are stored as such). */
int vel_node_set_state_value(vel_node_t *node, size_t index, double value);
/* NaN on failure. */
double vel_node_get_state_value(const vel_node_t *node, size_t index);

/* Appends `parent` to the node's parents (and the node to the parent's
 * children).  Refused: another domain, the node itself, a duplicate, or an
 * edge that closes a directed cycle. */
int vel_node_add_parent(vel_node_t *node, vel_node_t *parent);
/* NULL-terminated lists owned by the node (never NULL). */
vel_node_t *const *vel_node_get_parents(const vel_node_t *node);
vel_node_t *const *vel_node_get_children(const vel_node_t *node);

/* ------------------------------------------------------------------------ */
/* Models                                                                    */

/* Gives the node a model over `model_nodes` (NULL-terminated; NULL or empty:
 * no model nodes), which must be distinct discrete parents of the node.
 * Replaces an earlier model.  The new model is unspecified (no expressions),
 * has samples_per_interval 25 and tables_outdated set. */
vel_model_t *vel_node_new_model(vel_node_t *node, vel_node_t *const *model_nodes);
vel_model_t *vel_node_get_model(const vel_node_t *node);
int vel_node_delete_model(vel_node_t *node);
vel_node_t *const *vel_model_get_nodes(const vel_model_t *model);
/* Product of the model nodes' state counts; (size_t)-1 on failure. */
size_t vel_model_get_size(const vel_model_t *model);
/* Puts `expression` at `index` (< size), taking ownership; the expression
 * array is created on the first call, its other entries missing (NULL).
 * NULL as expression removes the entry.  The expression must have no owner. */
int vel_model_set_expression(vel_model_t *model, size_t index, vel_expression_t *expression);
/* Replaces all expressions at once: `count` must equal the model's size;
 * ownership of every non-NULL entry passes to the model on success (on
 * failure the caller keeps them).  expressions NULL: the model becomes
 * unspecified. */
int vel_model_set_expressions(vel_model_t *model, vel_expression_t *const *expressions,
                              size_t count);
vel_expression_t *vel_model_get_expression(const vel_model_t *model, size_t index);
/* The largest number of sample points per interval-parent state.  Each
 * interval parent multiplies a row's evaluations by it. */
static const uint64_t vel_max_samples_per_interval = 1000000;
/* 1 to vel_max_samples_per_interval (beyond it: vel_error_too_large). */
int vel_model_set_samples_per_interval(vel_model_t *model, size_t samples);
size_t vel_model_get_samples_per_interval(const vel_model_t *model);
int vel_model_get_tables_outdated(const vel_model_t *model);
int vel_model_set_tables_outdated(vel_model_t *model, int outdated);

/* ------------------------------------------------------------------------ */
/* Expressions                                                               */

/* Constructors.  Each returns a new expression owned by the caller, or NULL
 * with a usage error.  vel_make_operator takes the operator code and a
 * NULL-terminated argument list; it checks the arity of the operator and
 * that node arguments are node references where one is required, refuses
 * arguments that already have an owner and trees nested deeper than 1000,
 * and on success takes ownership of the arguments. */
vel_expression_t *vel_make_number(double value);           /* finite only */
vel_expression_t *vel_make_label(const char *label);       /* copied */
vel_expression_t *vel_make_truth(int truth);               /* 0 false, else true */
vel_expression_t *vel_make_node_reference(vel_node_t *node);
vel_expression_t *vel_make_operator(int code, vel_expression_t *const *arguments);
/* Frees an expression that has no owner, with its subtree. */
int vel_expression_delete(vel_expression_t *expression);

int vel_expression_get_operator(const vel_expression_t *expression);
int vel_expression_get_type(const vel_expression_t *expression);
/* Operands, by operator: the arguments of an operator (codes 60..113;
 * NULL past the last one), a number (114), a label (115, owned by the
 * expression), a node (116), a truth value (117).  A mismatch between the
 * operator and the accessor is a usage error (NULL, NaN or -1). */
vel_expression_t *vel_expression_get_argument(const vel_expression_t *expression, size_t index);
double vel_expression_get_number(const vel_expression_t *expression);
const char *vel_expression_get_label(const vel_expression_t *expression);
vel_node_t *vel_expression_get_node(const vel_expression_t *expression);
int vel_expression_get_truth(const vel_expression_t *expression);
/* Name of an operator code ("Normal", "state_index", "+"); NULL if unknown. */
const char *vel_operator_name(int code);

/* Parses `text` (see the expression syntax), resolving node names against
 * the parents of `node`.  On a syntax error: NULL, usage error, and
 * vel_error_message()/vel_error_position() tell what and where. */
vel_expression_t *vel_parse_expression(const char *text, vel_node_t *node);
/* Prints the expression into buffer (snprintf semantics: returns the length
 * of the full text, writes at most size bytes including the NUL); (size_t)-1
 * on failure. */
size_t vel_expression_print(const vel_expression_t *expression, char *buffer, size_t size);

/* ------------------------------------------------------------------------ */
/* Tables                                                                    */

/* The largest table the library makes: 2^32 entries (16 GiB of floats). */
static const uint64_t vel_max_table_entries = (uint64_t)1 << 32;

/* The most nodes a table may have (discrete parents, and the node itself
 * when it has states): generation walks them one stack frame each.  Only
 * parents with a single state let a table come near it. */
static const uint64_t vel_max_table_nodes = 1000;

/* The most sample points a generation computes: every configuration of a
 * table's parents averages its rows over each interval parent's sample
 * points (samples_per_interval per bounded state), so a table's points are
 * the product over its parents of their states' point counts.  Beyond it,
 * generation fails with vel_error_too_large before computing anything. */
static const uint64_t vel_max_sample_points = (uint64_t)1 << 40;

/* The node's table, created if needed: its nodes in storage order are the
 * node's discrete parents in parent order, then the node itself when it has
 * states.  NULL for a real-valued function node, and for a table of more
 * than vel_max_table_entries entries or vel_max_table_nodes nodes
 * (vel_error_too_large, refused before anything is allocated). */
vel_table_t *vel_node_get_table(vel_node_t *node);
vel_node_t *const *vel_table_get_nodes(const vel_table_t *table);
size_t vel_table_get_node_count(const vel_table_t *table);
size_t vel_table_get_size(const vel_table_t *table);  /* number of entries */
float *vel_table_get_data(vel_table_t *table);
int vel_table_is_utility(const vel_table_t *table);
/* Copies `count` entries (must equal the table's size) into the node's table. */
int vel_node_set_table_data(vel_node_t *node, const double *entries, size_t count);

/* ------------------------------------------------------------------------ */
/* Table generation                                                          */

int vel_node_generate_table(vel_node_t *node);
int vel_domain_generate_tables(vel_domain_t *domain);
int vel_class_generate_tables(vel_class_t *class_);

/* Runs the checks that precede generation for one node with a model (state
 * values of the node and its parents; every expression present and fitting
 * the node) without touching its table.  Each problem found is reported
 * through `report` (when not NULL): kind is one of vel_check_*, `node` the
 * node concerned, `index` the expression index (state-value problems: the
 * verdict, 1 not increasing, 2 infinities misused).  During the call,
 * vel_error_message() holds the generator's sentence for the problem ("The
 * state values of node Dose do not form an increasing sequence.", "No
 * expression at index 2", "Invalid expression at index 1: " and why, "Model
 * for Wet is unspecified").  Returns 0 when everything passes, else the code
 * generation would fail with (40 or 34). */
enum {
  vel_check_missing_expression = 1,
  vel_check_invalid_expression = 2,
  vel_check_state_values = 3,
  vel_check_unspecified_model = 4
};
typedef void (*vel_check_report_t)(void *context, int kind, vel_node_t *node, size_t index);
int vel_node_check_model(vel_node_t *node, vel_check_report_t report, void *context);

/* Why an expression does not fit the node whose model would hold it (the
 * check behind "Invalid expression at index ..."): writes the reason into
 * buffer with snprintf semantics and returns the length of the whole text;
 * 0 (and "") when the expression fits; (size_t)-1 on a usage error.  For
 * example "argument 2 of Normal must be a number, but \"high\" is a label"
 * or "the expression gives a label, but Wear is a numbered node, which takes
 * a number or a distribution". */
size_t vel_node_explain_expression(vel_node_t *node, vel_expression_t *expression, char *buffer,
                                   size_t size);

/* Generates the node's table from its model exactly as
 * vel_node_generate_table would, whether or not the table is outdated, but
 * into scratch storage: the node's table, its outdated flag and everything
 * that depends on them are left as they were (function-node values it needs
 * are computed and cached as usual).  Returns what generation returns, with
 * vel_error_message() and vel_error_expression_index() as after a
 * generation.  Checks of a whole domain use it to find every failure. */
int vel_node_try_generate_table(vel_node_t *node);

/* ------------------------------------------------------------------------ */
/* Compilation and propagation                                               */

/* Compiles the domain: its discrete nodes (chance, decision, discrete
 * function) form a moral graph (each node married to its discrete parents,
 * and each utility node's discrete parents married), triangulated by
 * min-fill elimination (ties to the smaller clique), with one junction tree
 * per connected component.  Continuous and real-valued function nodes take
 * part in no clique; continuous nodes keep their stated mean and variance.
 * Every outdated table of a model is generated; a decision node without a
 * policy (neither a table nor a model) gets a uniform one.  Then the entered
 * evidence is propagated (sum).  Tables generated from results of inference
 * (models using probability, quantile, variance, aggregate or function-node
 * values; discrete function nodes) are generated after that propagation,
 * from its results, and the domain is propagated once more; no fixed point
 * is sought, and until they have been generated such tables take part as
 * uniform.
 * Fails, leaving the domain uncompiled, with vel_error_usage for a discrete
 * node without states or a chance, function or utility node with neither a
 * table nor a model (vel_domain_get_failed_node names it); with
 * vel_error_too_large when a clique table, or all of them together, would
 * hold more than 2^27 entries (refused before anything is allocated); with
 * the generator's code when a table cannot be generated (the failed node is
 * named); with vel_error_impossible_evidence as vel_domain_propagate.
 * Changing the domain's nodes, parents or numbers of states uncompiles it. */
int vel_domain_compile(vel_domain_t *domain);
/* Propagates the entered evidence through the compiled domain:
 * vel_equilibrium_sum gives beliefs (marginals); vel_equilibrium_max gives
 * max-marginals divided by their largest value as beliefs and the most
 * probable configuration.  Both compute the probability of the evidence and
 * the expected utilities (a max propagation runs a sum pass for them).
 * Tables whose models changed since they were generated are generated again
 * first, except those generated from results of inference, which take part
 * as they stand (uniform when they have never been generated).  Evidence of probability 0 fails with
 * vel_error_impossible_evidence and a message naming it, and leaves every
 * result of the previous propagation in place.  On success the results are
 * written into the nodes (beliefs, evidence states, expected utilities,
 * variances), the junction-tree codes set (the equilibrium, no pending
 * evidence), and the tables and function-node values computed from earlier
 * results marked outdated.  Not compiled by vel_domain_compile:
 * vel_error_not_compiled. */
int vel_domain_propagate(vel_domain_t *domain, int equilibrium);

/* Evidence, kept in the node until retracted and propagated at the next
 * vel_domain_propagate (or vel_domain_compile); entering it sets the
 * junction tree's pending-evidence code in a compiled domain.  Either a state
 * (hard evidence) or one likelihood per state: finite, non-negative, not all
 * zero, not rescaled (the probability of the evidence is the sum over
 * configurations of P(x) times the likelihoods of x's states).  Entering
 * replaces the node's earlier evidence. */
int vel_node_enter_evidence(vel_node_t *node, size_t state);
int vel_node_enter_likelihood(vel_node_t *node, const double *likelihood, size_t count);
int vel_node_retract_evidence(vel_node_t *node);
int vel_domain_retract_evidence(vel_domain_t *domain);

/* Results that only propagation gives; each needs a compiled domain
 * (vel_error_not_compiled) and a propagation of the right kind
 * (vel_error_not_propagated).  Negative on failure. */
/* P(evidence), after either kind of propagation. */
double vel_domain_get_probability_of_evidence(const vel_domain_t *domain);
/* After a max propagation: the most probable configuration of the discrete
 * nodes (ties to the smallest state index, node by node in node order), a
 * node's state in it, and P(configuration, evidence). */
int64_t vel_node_get_most_probable_state(const vel_node_t *node);
double vel_domain_get_probability_of_configuration(const vel_domain_t *domain);
/* Entries of all clique tables of the compiled domain; (size_t)-1 on failure. */
size_t vel_domain_get_clique_table_size(const vel_domain_t *domain);
/* The node that stopped the last vel_domain_compile or vel_domain_propagate
 * (refused, or its table could not be generated); NULL when none did. */
vel_node_t *vel_domain_get_failed_node(const vel_domain_t *domain);

/* ------------------------------------------------------------------------ */
/* Results of inference and configured values                               */

/* Beliefs, evidence states, means, variances and expected utilities are
 * written by propagation; the setters below state them for results computed
 * elsewhere (a model file's inference block).  Each change, and each
 * propagation, writes the node's variance field (read by the variance
 * operator): a numbered node's variance under its beliefs, a continuous
 * node's stated variance, a utility's variance. */

/* Beliefs of a discrete node: `count` must equal its number of states;
 * entries non-negative. */
int vel_node_set_beliefs(vel_node_t *node, const double *beliefs, size_t count);
/* Belief of one state; negative on failure. */
double vel_node_get_belief(const vel_node_t *node, size_t state);
/* Propagated evidence of a discrete node: a state index, or -1 for none. */
int vel_node_set_evidence(vel_node_t *node, int64_t state);
/* Mean and variance of a continuous node after propagation. */
int vel_node_set_mean_and_variance(vel_node_t *node, double mean, double variance);
/* A continuous node's mean; a numbered node's mean state value under its
 * beliefs.  Negative with the error code set on failure. */
double vel_node_get_mean(const vel_node_t *node);
/* Expected utility of a utility node and its variance. */
int vel_node_set_expected_utility(vel_node_t *node, double expected_utility, double variance);
float vel_node_get_expected_utility(const vel_node_t *node, int reserved);
float vel_node_get_variance_of_utility(const vel_node_t *node);
/* Quantile of a discrete node's current distribution (its beliefs) for
 * probability p in [0, 1]: numbered: the smallest state value whose
 * cumulative belief reaches p; interval: the point where the cumulative
 * belief reaches p, linear inside the interval (an unbounded interval gives
 * its finite bound); labeled and boolean: the smallest such state index.
 * Needs a compiled domain and a sum equilibrium.  Sets the error code to 0
 * on success. */
double vel_node_get_quantile(const vel_node_t *node, double p);

/* Configured values, used by function nodes evaluated from configuration:
 * a discrete node's state; a continuous or stateless node's value. */
int vel_node_set_configured_state(vel_node_t *node, int64_t state);
int vel_node_set_configured_value(vel_node_t *node, double value);

/* ------------------------------------------------------------------------ */
/* Function nodes                                                            */

/* Value of a real-valued function node computed from inference results
 * (cached until something it depends on changes).  On failure a negative
 * value with the error code set. */
double vel_node_get_value(vel_node_t *node);
/* Value of a real-valued function node in either mode (vel_mode_inference or
 * vel_mode_configured), cached per mode like vel_node_get_value's.  Stores
 * it in *value and returns 0, or returns the error code (value untouched)
 * with vel_error_message() saying why (the code's description when the
 * evaluation has nothing more to say). */
int vel_node_compute_value(vel_node_t *node, int mode, double *value);

#ifdef __cplusplus
}
#endif

#endif /* VEL_VEL_H */
