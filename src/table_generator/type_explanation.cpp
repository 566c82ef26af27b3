// Why an expression does not fit a node: the first operator whose arguments
// fail the typing rules, or the mismatch between the expression's type and
// the node.  It replays the typing of typing.cpp and only adds words; the
// verdict itself always comes from node_check_expression.
#include <cstring>
#include <exception>
#include <string>

#include "common/error.h"
#include "table_generator/table_generator.h"

namespace {

// "a number", "a label", ... for the value types 1..9.
const char *type_phrase(uint32_t type) {
  switch (type) {
    case vel_type_number: return "a number";
    case vel_type_label: return "a label";
    case vel_type_boolean: return "a boolean";
    case vel_type_any: return "a state of a node of unknown kind";
    case vel_type_distribution: return "a distribution";
    case vel_type_distribution_or_number: return "a distribution or a number";
    case vel_type_distribution_or_label: return "a distribution or a label";
    case vel_type_distribution_or_boolean: return "a distribution or a boolean";
    default: return "a distribution or a state of a node of unknown kind";
  }
}

std::string text_of(const vel_expression_t *e) {
  char buffer[96];
  const size_t length = vel_expression_print(e, buffer, sizeof buffer);
  if (length == static_cast<size_t>(-1)) return "the expression";
  std::string text = buffer;
  if (length >= sizeof buffer) text += "...";
  return "`" + text + "'";
}

std::string operator_text(const vel_expression_t *e) {
  const char *name = vel_operator_name(static_cast<int>(e->operator_));
  if (e->operator_ < vel_op_add || e->operator_ == vel_op_state_index_of) return name;
  return std::string("operator ") + name;
}

bool is_num(const vel_expression_t *e) {
  return e->type == vel_type_number || e->type == vel_type_any;
}

bool is_bool(const vel_expression_t *e) {
  return e->type == vel_type_boolean || e->type == vel_type_any;
}

std::string must_be(const vel_expression_t *e, size_t i, const char *wanted) {
  const vel_expression_t *argument = e->arguments[i];
  return "argument " + std::to_string(i + 1) + " of " + operator_text(e) + " must be " + wanted +
         ", but " + text_of(argument) + " is " + type_phrase(argument->type);
}

// The first argument failing `test`, or -1.
long first_failing(const vel_expression_t *e, bool (*test)(const vel_expression_t *)) {
  for (size_t i = 0; e->arguments[i]; ++i)
    if (!test(e->arguments[i])) return static_cast<long>(i);
  return -1;
}

std::string explain_reference(const vel_expression_t *e, const char *wanted) {
  const vel_expression_t *ref = e->arguments[0];
  return operator_text(e) + " takes " + wanted + ", and " + text_of(ref) + " is not one";
}

std::string explain_if(const vel_expression_t *e) {
  vel_expression_t *const *args = e->arguments;
  if (!is_bool(args[0])) return must_be(e, 0, "a condition (a boolean)");
  return "the branches of if do not mix: " + text_of(args[1]) + " is " +
         type_phrase(args[1]->type) + " and " + text_of(args[2]) + " is " +
         type_phrase(args[2]->type);
}

// The operator's own rule failed; its arguments are typed.
std::string explain_operator(const vel_expression_t *e) {
  const uint32_t code = e->operator_;
  vel_expression_t *const *args = e->arguments;
  switch (code) {
    case vel_op_NoisyOR:
      for (size_t i = 0; args[i]; i += 2) {
        if (!is_bool(args[i])) return must_be(e, i, "a condition (a boolean)");
        if (!args[i + 1] || !is_num(args[i + 1])) return must_be(e, i + 1, "a probability");
      }
      break;
    case vel_op_truncate:
      return "truncate takes a lower bound, a distribution and an optional upper bound, or a "
             "distribution and an upper bound; " +
             text_of(args[0]) + " is " + type_phrase(args[0]->type) + " and " + text_of(args[1]) +
             " is " + type_phrase(args[1]->type);
    case vel_op_aggregate:
      return "aggregate takes two nodes with states, a count node and an item node";
    case vel_op_probability:
    case vel_op_and:
    case vel_op_or:
    case vel_op_not: {
      const long i = first_failing(e, is_bool);
      if (i >= 0) return must_be(e, static_cast<size_t>(i), "a condition (a boolean)");
      break;
    }
    case vel_op_variance:
      return explain_reference(e, "a node with states, a continuous node or a utility node");
    case vel_op_quantile:
      if (!is_num(args[1])) return must_be(e, 1, "a probability (a number)");
      return explain_reference(e, "a node with states");
    case vel_op_state_index_of:
      return explain_reference(e, "a node with states");
    case vel_op_equals:
    case vel_op_not_equals:
      return text_of(args[0]) + " (" + type_phrase(args[0]->type) + ") and " + text_of(args[1]) +
             " (" + type_phrase(args[1]->type) + ") cannot be compared";
    case vel_op_if:
      return explain_if(e);
    default: {
      const long i = first_failing(e, is_num);
      if (i >= 0) return must_be(e, static_cast<size_t>(i), "a number");
      break;
    }
  }
  return operator_text(e) + " cannot take these arguments";
}

// Why typing fails somewhere in the tree; empty when it does not.
std::string explain_typing(vel_expression_t *e) {
  switch (e->operator_) {
    case vel_op_number:
    case vel_op_label:
    case vel_op_truth:
      return "";
    case vel_op_node:
      if (_vel_assign_types(e, 1)) return "";
      return "node " + text_of(e) + " has states of an unknown kind";
    default:
      break;
  }
  if (e->operator_ < vel_op_Normal || e->operator_ >= vel_op_number)
    return "operator code " + std::to_string(e->operator_) + " is unknown";
  for (vel_expression_t *const *a = e->arguments; *a; ++a) {
    if (!_vel_assign_types(*a, 1)) return explain_typing(*a);
  }
  if (_vel_assign_types(e, 1)) return "";
  return explain_operator(e);
}

const char *node_wants(const vel_node_t *node) {
  if (node->kind != vel_kind_discrete) return "a number";
  switch (node->subtype) {
    case vel_subtype_numbered:
    case vel_subtype_interval: return "a number or a distribution";
    case vel_subtype_labeled: return "a label or a distribution";
    case vel_subtype_boolean: return "a boolean or a distribution";
    default: return "nothing: its states are of an unknown kind";
  }
}

const char *node_kind_phrase(const vel_node_t *node) {
  if (node->kind > 0) return "a continuous node";
  if (node->kind < 0) {
    return node->category == vel_category_utility ? "a utility node"
                                                  : "a real-valued function node";
  }
  switch (node->subtype) {
    case vel_subtype_numbered: return "a numbered node";
    case vel_subtype_interval: return "an interval node";
    case vel_subtype_labeled: return "a labeled node";
    case vel_subtype_boolean: return "a boolean node";
    default: return "a node";
  }
}

std::string explain(vel_node_t *node, vel_expression_t *expression) {
  if (node_check_expression(node, expression)) return "";
  std::string typing = explain_typing(expression);
  if (!typing.empty()) return typing;
  const char *name = vel_node_get_name(node);
  return std::string("the expression gives ") + type_phrase(expression->type) + ", but " +
         (name ? name : "the node") + " is " + node_kind_phrase(node) + ", which takes " +
         node_wants(node);
}

}  // namespace

extern "C" size_t vel_node_explain_expression(vel_node_t *node, vel_expression_t *expression,
                                              char *buffer, size_t size) {
  constexpr size_t failure = static_cast<size_t>(-1);
  if (size > 0 && buffer) buffer[0] = '\0';
  if (!node || !expression || (!buffer && size > 0)) {
    vel::set_error_message(!node         ? "vel_node_explain_expression: node is NULL"
                           : !expression ? "vel_node_explain_expression: expression is NULL"
                                         : "vel_node_explain_expression: buffer is NULL");
    vel::fail(vel_error_usage);
    return failure;
  }
  try {
    const std::string text = explain(node, expression);
    if (size > 0) {
      const size_t copied = text.size() < size ? text.size() : size - 1;
      std::memcpy(buffer, text.data(), copied);
      buffer[copied] = '\0';
    }
    _vel_error_code = 0;
    return text.size();
  } catch (const std::exception &) {
    vel::fail(vel_error_out_of_memory);
    return failure;
  }
}
