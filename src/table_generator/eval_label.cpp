// Label evaluation: the text belongs to the node or the expression.
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

const char *eval_label_expr(const vel_expression_t *expression) {
  switch (expression->operator_) {
    case vel_op_node: {
      const vel_node_t *node = expression->node;
      if (node->state_index < 0) {
        vel::fail(vel_error_computation);
        return nullptr;
      }
      return _vel_node_get_state_label(node, node->state_index);
    }
    case vel_op_label:
      return expression->label;
    case vel_op_if: {
      const int condition = eval_boolean_expr(expression->arguments[0]);
      if (condition < 0) return nullptr;
      return eval_label_expr(expression->arguments[condition ? 1 : 2]);
    }
    default:
      vel::fail(vel_error_unsupported);
      return nullptr;
  }
}
