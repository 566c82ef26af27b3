// Questions asked of records (expression trees, node classes), answered in
// one place for the host, the module and inference.
#pragma once

#include "host/records.h"

// Operators 60..113 carry a null-terminated argument array; leaves (114 and
// up) and codes outside the known range do not.
inline bool has_arguments(const vel_expression_t *e) {
  return e->operator_ >= vel_op_Normal && e->operator_ < vel_op_number && e->arguments != nullptr;
}

// Whether test(e) holds for the expression or any expression below it.
template <typename Test>
bool any_subexpression(const vel_expression_t *e, Test test) {
  if (test(e)) return true;
  if (!has_arguments(e)) return false;
  for (vel_expression_t *const *a = e->arguments; *a; ++a)
    if (any_subexpression(*a, test)) return true;
  return false;
}

// Whether the expression reads `node` (any node when NULL).
inline bool refers_to(const vel_expression_t *e, const vel_node_t *node) {
  return any_subexpression(e, [node](const vel_expression_t *x) {
    return x->operator_ == vel_op_node && (node == nullptr || x->node == node);
  });
}

// A function node with a real value rather than states.
inline bool is_real_function(const vel_node_t *node) {
  return node->category == vel_category_function && node->kind < 0;
}
