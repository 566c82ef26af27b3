// Generation driver: decides which nodes get a table from their model, runs
// the checks before anything is written, prepares parent values, and hands the
// fill to generate_probability or generate_utility.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "common/error.h"
#include "host/host.h"
#include "table_generator/generation_workspace.h"
#include "table_generator/table_generator.h"

const char *const unspecified_model_format = "Model for %s is unspecified\n";
const char *const missing_expression_format = "No expression at index %s\n";
const char *const invalid_expression_format = "Invalid expression at index %s\n";

size_t size_multiply(size_t a, size_t b) {
  if (a != 0 && b > SIZE_MAX / a) return SIZE_MAX;
  return a * b;
}

namespace {

bool is_real_valued_function(const vel_node_t *node) {
  return node->kind < 0 && node->category == vel_category_function;
}

const char *table_word(const vel_node_t *node) {
  switch (node->category) {
    case vel_category_decision: return "policy";
    case vel_category_utility: return "utility";
    default: return "conditional probability";
  }
}

int report_unspecified(vel_node_t *node) {
  vel_domain_t *domain = node->domain;
  if (domain->log_file != nullptr) {
    const char *name = vel_node_get_name(node);
    if (name == nullptr) return _vel_error_code;
    if (fprintf(domain->log_file, unspecified_model_format, name) < 0) {
      return vel::fail(vel_error_io);
    }
    if (_vel_domain_flush_log_file(domain) != 0) return _vel_error_code;
  }
  return vel::fail(vel_error_invalid_expression);
}

int check_state_values_of_node_and_parents(vel_node_t *node) {
  if (_vel_check_state_values(node) != 0) return _vel_error_code;
  if (node->parents == nullptr) return 0;
  for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
    if (_vel_check_state_values(*p) != 0) return _vel_error_code;
  }
  return 0;
}

int log_expression_problem(void *context, int kind, uint64_t index) {
  vel_domain_t *domain = static_cast<vel_domain_t *>(context);
  if (domain->log_file == nullptr) return 0;
  const char *format =
      kind == vel_check_missing_expression ? missing_expression_format : invalid_expression_format;
  if (fprintf(domain->log_file, format, _vel_print_size(domain, index)) < 0) {
    return vel::fail(vel_error_io);
  }
  return 0;
}

// Writes "<format> with the node's name" after a failed evaluation and puts
// the evaluation's code back, whatever the write gave.
int fail_evaluation(vel_node_t *named, const char *format, int code) {
  FILE *log = named->domain->log_file;
  if (log != nullptr) {
    const char *name = vel_node_get_name(named);
    if (name != nullptr) fprintf(log, format, name);
  }
  return vel::fail(code);
}

// A discrete function node needs the values of its parents from inference;
// its mark tells the parents' computation who is asking.
int prepare_function_node_parents(vel_node_t *node) {
  if (node->category != vel_category_function || node->parents == nullptr) return 0;
  for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
    if (is_real_valued_function(*p)) continue;
    node->mark = -1;
    int result = compute_dcu_value(*p);
    node->mark = 0;
    if (result != 0) return fail_evaluation(*p, "Evaluation of parent %s failed\n", result);
  }
  return 0;
}

int fetch_function_parent_values(vel_node_t *node) {
  if (node->parents == nullptr) return 0;
  for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
    vel_node_t *parent = *p;
    if (!is_real_valued_function(parent) || !_vel_node_appears_in_model(node->model, parent)) {
      continue;
    }
    parent->value = vel_node_get_value(parent);
    // A negative value is an ordinary value unless the error code says otherwise.
    if (parent->value < 0.0 && _vel_error_code != 0) {
      return fail_evaluation(parent, "Evaluation of function node %s failed\n",
                             _vel_error_code);
    }
  }
  return 0;
}

// Every configuration of the table's parents averages its rows over the
// product of its interval parents' sample points (samples per bounded state
// of nonzero width, one per other state), so the points of the whole table
// are the product over parents of their states' point counts.  Counted in
// double, which neither overflows nor misjudges the limit by more than a
// rounding.
int check_sample_points(const vel_node_t *node, const vel_table_t *table, uint64_t samples) {
  double points = 1.0;
  for (uint64_t i = 0; i < table->node_count; ++i) {
    const vel_node_t *parent = table->nodes[i];
    if (parent == node) continue;
    double count = 0.0;
    for (uint64_t s = 0; s < parent->state_count; ++s) {
      double point;
      const bool sampled = parent->subtype == vel_subtype_interval &&
                           !unbounded_interval_point(parent->state_values[s],
                                                     parent->state_values[s + 1], &point) &&
                           parent->state_values[s + 1] != parent->state_values[s];
      count += sampled ? static_cast<double>(samples) : 1.0;
    }
    points *= count;
  }
  if (points <= static_cast<double>(vel_max_sample_points)) return 0;
  char message[200];
  snprintf(message, sizeof message,
           "generating the table of %s would compute %.3g sample points, more than the limit "
           "of 2^40",
           node->name, points);
  vel::set_error_message(message);
  return vel::fail(vel_error_too_large);
}

int fill_table(vel_node_t *node, vel_table_t *table, vel_model_t *model) {
  vel_control_t *control = _vel_create_control_data_for_tg(table, model);
  if (control == nullptr) return _vel_error_code;
  float *data = table->data;
  int result;
  if (node->kind == vel_kind_discrete) {
    // Three rows of state_count doubles per nesting level; only the final
    // multiplication by the element size saturates.
    uint64_t doubles = node->state_count * table->node_count * 3;
    auto *work = static_cast<double *>(_vel_allocate(size_multiply(sizeof(double), doubles)));
    if (work == nullptr) {
      free(control);
      return _vel_error_code;
    }
    result = generate_probability(table, work, &data, model->expressions, control,
                                  workspace_of(control, table, model).batch);
    free(work);
  } else {
    const generation_workspace_t workspace = workspace_of(control, table, model);
    result = generate_utility(table, &data, model->expressions, control, workspace.blocks,
                              workspace.batch);
  }
  free(control);
  return result;
}

int generate_table(vel_node_t *node) {
  if (node == nullptr || node->model == nullptr || is_real_valued_function(node)) {
    return vel::fail(vel_error_usage);
  }
  _vel_error_code = 0;
  vel_model_t *model = node->model;
  if (model->tables_outdated == 0) return 0;
  if (model->expressions == nullptr) return report_unspecified(node);

  vel_table_t *table = vel_node_get_table(node);
  if (table == nullptr) return _vel_error_code;
  vel_domain_t *domain = node->domain;
  if (domain->log_file != nullptr) {
    const char *name = vel_node_get_name(node);
    if (name == nullptr) return _vel_error_code;
    if (fprintf(domain->log_file, "Using model for %s to generate a %s table\n", name,
                table_word(node)) < 0) {
      return vel::fail(vel_error_io);
    }
  }

  if (int code = check_state_values_of_node_and_parents(node)) return code;
  if (int code = scan_model_expressions(node, model, log_expression_problem, domain)) return code;
  if (int code = check_sample_points(node, table, model->samples_per_interval)) return code;
  if (int code = prepare_function_node_parents(node)) return code;
  if (int code = fetch_function_parent_values(node)) return code;
  if (int code = fill_table(node, table, model)) return code;

  model->tables_outdated = 0;
  _vel_node_touch_table(node, 0);
  return vel::fail(_vel_domain_flush_log_file(domain));
}

}  // namespace

extern "C" int vel_node_generate_table(vel_node_t *node) {
  return _vel_generate_explained(node, generate_table);
}

extern "C" int vel_domain_generate_tables(vel_domain_t *domain) {
  if (domain == nullptr) return vel::fail(vel_error_usage);
  _vel_error_code = 0;
  for (vel_node_t *node = domain->first_node; node != nullptr; node = node->next) {
    if (node->model == nullptr || is_real_valued_function(node)) continue;
    if (vel_node_generate_table(node) != 0) return _vel_error_code;
  }
  return 0;
}

extern "C" int vel_class_generate_tables(vel_class_t *class_) {
  return vel_domain_generate_tables(class_);
}

extern "C" int _vel_jt_generate_tables(vel_junction_tree_t *junction_tree) {
  for (vel_node_t *node = junction_tree->domain->first_node; node != nullptr;
       node = node->next) {
    if (node->junction_tree != junction_tree || node->model == nullptr) continue;
    if (vel_node_generate_table(node) != 0) return _vel_error_code;
  }
  return vel::fail(vel_error_none);
}
