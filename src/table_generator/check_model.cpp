// The checks that precede generation, shared by the driver (which logs each
// problem) and vel_node_check_model (which reports each through a callback).
#include <cstdio>
#include <string>

#include "common/error.h"
#include "table_generator/table_generator.h"

int scan_model_expressions(vel_node_t *node, const vel_model_t *model,
                           expression_problem_t problem, void *context) {
  bool any_bad = false;
  for (uint64_t i = 0; i < model->expression_count; ++i) {
    vel_expression_t *expression = model->expressions[i];
    int kind = 0;
    if (expression == nullptr) {
      kind = vel_check_missing_expression;
    } else if (node_check_expression(node, expression) == 0) {
      kind = vel_check_invalid_expression;
    }
    if (kind == 0) continue;
    any_bad = true;
    if (int code = problem(context, kind, i)) return code;
  }
  return any_bad ? vel::fail(vel_error_invalid_expression) : 0;
}

namespace {

struct Reporter {
  vel_check_report_t report;
  void *context;
  vel_node_t *node;
};

// Hands one problem to the caller with the generator's sentence for it in
// vel_error_message(), as the generation's log would have it.
void hand_over(const Reporter &reporter, int kind, vel_node_t *node, size_t index,
               const std::string &text) {
  if (!reporter.report) return;
  vel::set_error_message(text.c_str());
  reporter.report(reporter.context, kind, node, index);
}

std::string formatted(const char *format, const char *a, const char *b = "") {
  char text[512];
  std::snprintf(text, sizeof text, format, a, b);
  std::string line = text;
  if (!line.empty() && line.back() == '\n') line.pop_back();
  return line;
}

int report_expression(void *context, int kind, uint64_t index) {
  auto *reporter = static_cast<Reporter *>(context);
  if (!reporter->report) return 0;
  try {
    const std::string number = std::to_string(index);
    std::string text = formatted(kind == vel_check_missing_expression ? missing_expression_format
                                                                       : invalid_expression_format,
                                 number.c_str());
    if (kind == vel_check_invalid_expression) {
      vel_expression_t *expression = reporter->node->model->expressions[index];
      char reason[512];
      if (vel_node_explain_expression(reporter->node, expression, reason, sizeof reason) > 0)
        text += std::string(": ") + reason;
    }
    hand_over(*reporter, kind, reporter->node, index, text);
  } catch (...) {
    hand_over(*reporter, kind, reporter->node, index, "");
  }
  return 0;
}

// Reports a bad verdict on the node's state values; true when there was one.
bool report_state_values(const Reporter &reporter, vel_node_t *node) {
  int verdict = state_values_verdict(node);
  if (verdict == 0) return false;
  try {
    hand_over(reporter, vel_check_state_values, node, static_cast<size_t>(verdict),
              formatted(state_values_format, node->name, state_values_word(verdict)));
  } catch (...) {
    hand_over(reporter, vel_check_state_values, node, static_cast<size_t>(verdict), "");
  }
  return true;
}

}  // namespace

// Every problem is reported; the result is the code generation would stop
// with: an unspecified model first, then state values, then expressions.
extern "C" int vel_node_check_model(vel_node_t *node, vel_check_report_t report,
                                    void *context) {
  if (node == nullptr || node->model == nullptr) return vel::fail(vel_error_usage);
  vel_model_t *model = node->model;
  Reporter reporter{report, context, node};

  bool bad_values = report_state_values(reporter, node);
  if (node->parents != nullptr) {
    for (vel_node_t **p = node->parents; *p != nullptr; ++p) {
      if (report_state_values(reporter, *p)) bad_values = true;
    }
  }

  if (model->expressions == nullptr) {
    try {
      hand_over(reporter, vel_check_unspecified_model, node, 0,
                formatted(unspecified_model_format, node->name));
    } catch (...) {
      hand_over(reporter, vel_check_unspecified_model, node, 0, "");
    }
    return vel::fail(vel_error_invalid_expression);
  }
  int expressions = scan_model_expressions(node, model, report_expression, &reporter);
  if (bad_values) return vel::fail(vel_error_invalid_state_values);
  return vel::fail(expressions);
}
