// Values of real-valued function nodes, computed on demand in two modes (from
// inference results, or from configured values) and cached per mode in the
// node.  One computation marks the ancestors it needs, computes each of them
// once, and clears the marks again.
//
// Every walk over the node graph is iterative, so that a chain of function
// nodes as long as memory allows cannot overflow the stack, and none
// allocates: the worklists are linked through the nodes' walk fields, and a
// computation that must wait for another node's value keeps where it stands
// (its stage, the model node or the expression reference it waits at) in its
// own node.  The order of every evaluation and host call is that of the
// recursive definition: a node's model nodes in order, then the references of
// its expression in pre-order, each computed completely before the next.
#include "host/record_queries.h"
#include "common/error.h"
#include "host/host.h"
#include "table_generator/table_generator.h"

namespace {

void initialize_ancestors(vel_node_t *node, uint32_t mode);
void clear_ancestors(vel_node_t *node);
int compute_function_value(vel_node_t *node, uint32_t mode);
vel_expression_t *get_expression(const vel_model_t *model);

double &cached_value(vel_node_t *node, uint32_t mode) {
  return mode == vel_mode_inference ? node->inferred_value : node->configured_value;
}

// Scratch mark of the clearing pass; never a status or -1.
constexpr int64_t being_cleared = INT64_MIN;

// A stack of nodes linked through their walk_next fields.
class NodeStack {
 public:
  void push(vel_node_t *node) {
    node->walk_next = top_;
    top_ = node;
  }
  vel_node_t *pop() {
    vel_node_t *node = top_;
    if (node) top_ = node->walk_next;
    return node;
  }

 private:
  vel_node_t *top_ = nullptr;
};

// The edges that a computation may follow from a node: to its value source,
// or else, from a function node, to its parents.
template <typename Visit>
void for_each_source(vel_node_t *node, Visit visit) {
  if (node->value_source != nullptr) {
    visit(node->value_source);
  } else if (is_real_function(node) && node->parents != nullptr) {
    for (vel_node_t **p = node->parents; *p != nullptr; ++p) visit(*p);
  }
}

// Value and state of a node other than a function node, from its configured
// value or state.
int configured_value(vel_node_t *node) {
  if (node->kind == vel_kind_discrete) {
    const int64_t state = node->configured_state;
    // An interval state has no single value; from configuration that is
    // refused even where only the state would be read.
    if (node->subtype == vel_subtype_interval) return vel::fail(vel_error_invalid_expression);
    if (node->subtype == vel_subtype_numbered) node->value = _vel_node_get_state_value(node, state);
    node->state_index = state;
  } else if (node->kind < 0) {
    node->value = node->configured_value;
  } else {
    node->value = node->evidence.value;
  }
  return vel::fail(vel_error_none);
}

int variance_of(vel_node_t *node, uint32_t mode) {
  if (mode == vel_mode_configured) {
    if (node->kind == vel_kind_discrete && node->subtype != vel_subtype_numbered) {
      return vel::fail(vel_error_invalid_expression);
    }
    node->variance = 0.0;
    return vel::fail(vel_error_none);
  }
  const double x = node->kind < 0 ? static_cast<double>(vel_node_get_variance_of_utility(node))
                                  : _vel_node_get_variance(node, 1);
  if (x < 0.0) {
    if (_vel_error_code == vel_error_usage) return vel::fail(vel_error_invalid_expression);
    return _vel_error_code;
  }
  node->variance = x;
  return 0;
}

// ---- The pre-pass over an expression, as a cursor -------------------------
// Its actions are the node references (whose values are computed) and the
// variance operators (whose argument's variance is fetched; the argument is
// not a reference to compute).  The cursor moves in pre-order without a
// stack: an argument's owner is the expression above it, and its position
// says which argument it is.

bool is_action(const vel_expression_t *e) {
  return e->operator_ == vel_op_node || e->operator_ == vel_op_variance;
}

const vel_expression_t *preorder_next(const vel_expression_t *e, const vel_expression_t *root,
                                      bool descend) {
  if (descend && e->operator_ < vel_op_number && e->arguments[0] != nullptr) return e->arguments[0];
  while (e != root) {
    const auto *above = static_cast<const vel_expression_t *>(e->owner);
    if (const vel_expression_t *sibling = above->arguments[e->position + 1]) return sibling;
    e = above;
  }
  return nullptr;
}

// The next action after `e` (entering e's arguments when `descend`), or nullptr.
const vel_expression_t *next_action(const vel_expression_t *e, const vel_expression_t *root,
                                    bool descend) {
  e = preorder_next(e, root, descend);
  while (e != nullptr && !is_action(e)) e = preorder_next(e, root, true);
  return e;
}

const vel_expression_t *first_action(const vel_expression_t *root) {
  return is_action(root) ? root : next_action(root, root, true);
}

// ---- The computation of one node, in stages -------------------------------

enum Stage : int32_t {
  idle = 0,
  start,
  after_source,       // waits for the value source
  model_nodes,        // goes through the model nodes from walk_index
  after_model_node,   // waits for model node walk_index
  prepass,            // goes through the expression's actions from walk_at
  after_reference,    // waits for the node referenced at walk_at
};

// The end of a computation: the status is cached and becomes the node's mark.
int finish(vel_node_t *node, uint32_t mode, int status) {
  if (is_real_function(node)) {
    node->function_status[mode] = static_cast<int8_t>(status);
    if (status == 0) cached_value(node, mode) = node->value;
  }
  node->mark = status;
  node->walk_stage = idle;
  return status;
}

int finish_from_source(vel_node_t *node, uint32_t mode, int status) {
  const vel_node_t *source = node->value_source;
  if (is_real_function(node)) node->function_status[mode] = static_cast<int8_t>(status);
  node->mark = status;
  node->walk_stage = idle;
  if (status == 0) {
    node->value = source->value;
    if (node->kind == vel_kind_discrete) {
      node->state_index = source->state_index;
    } else if (is_real_function(node)) {
      cached_value(node, mode) = node->value;
    }
  }
  return status;
}

// A step of `node`'s computation: runs it from its stage until it must wait
// for another node, which it returns (with the stage set to resume from), or
// until it is finished (nullptr; its status in *status).  `awaited` is the
// status of the node it waited for, if it did.
vel_node_t *step(vel_node_t *node, uint32_t mode, int awaited, int *status) {
  const vel_model_t *model = node->model;
  switch (node->walk_stage) {
    case start: {
      const vel_domain_t *domain = node->domain;
      if (domain != nullptr && domain->source_domain != nullptr) {
        if (vel_node_t *source = node->value_source) {
          if (source->mark < 0) {
            node->walk_stage = after_source;
            return source;
          }
          *status = finish_from_source(node, mode, vel::fail(static_cast<int>(source->mark)));
          return nullptr;
        }
        if (_vel_node_in_list(node, domain->blocked_nodes) || node->external_link != nullptr) {
          node->mark = vel_error_computation;
          node->walk_stage = idle;
          *status = vel::fail(vel_error_computation);
          return nullptr;
        }
      }
      if (!is_real_function(node)) {
        const int s = mode == vel_mode_inference ? compute_dcu_value(node) : configured_value(node);
        *status = finish(node, mode, s);
        return nullptr;
      }
      if (model == nullptr) {
        *status = finish(node, mode, vel::fail(vel_error_invalid_expression));
        return nullptr;
      }
      node->walk_index = 0;
      node->walk_stage = model_nodes;
      break;
    }
    case after_source:
      *status = finish_from_source(node, mode, awaited);
      return nullptr;
    case after_model_node:
      if (awaited != 0) {
        *status = finish(node, mode, _vel_error_code);
        return nullptr;
      }
      ++node->walk_index;
      node->walk_stage = model_nodes;
      break;
    case after_reference:
      if (awaited != 0) {
        *status = finish(node, mode, _vel_error_code);
        return nullptr;
      }
      node->walk_at = next_action(node->walk_at, node->walk_root, false);
      node->walk_stage = prepass;
      break;
    default:
      break;
  }

  if (node->walk_stage == model_nodes) {
    for (vel_node_t **m = model->nodes + node->walk_index; m != nullptr && *m != nullptr; ++m) {
      if ((*m)->mark < 0) {
        node->walk_index = static_cast<uint64_t>(m - model->nodes);
        node->walk_stage = after_model_node;
        return *m;
      }
      if (vel::fail(static_cast<int>((*m)->mark)) != 0) {
        *status = finish(node, mode, _vel_error_code);
        return nullptr;
      }
    }
    vel_expression_t *expression = get_expression(model);
    if (expression == nullptr || !_vel_assign_types(expression, 1) ||
        expression->type != vel_type_number) {
      *status = finish(node, mode, vel::fail(vel_error_invalid_expression));
      return nullptr;
    }
    node->walk_root = expression;
    node->walk_at = first_action(expression);
    node->walk_stage = prepass;
  }

  // The pre-pass: every action in order, the first failure ending it.
  for (const vel_expression_t *at = node->walk_at; at != nullptr;
       at = next_action(at, node->walk_root, false)) {
    if (at->operator_ == vel_op_variance) {
      if (variance_of(at->arguments[0]->node, mode) != 0) {
        *status = finish(node, mode, _vel_error_code);
        return nullptr;
      }
      continue;
    }
    vel_node_t *referenced = at->node;
    if (referenced->mark < 0) {
      node->walk_at = at;
      node->walk_stage = after_reference;
      return referenced;
    }
    if (vel::fail(static_cast<int>(referenced->mark)) != 0) {
      *status = finish(node, mode, _vel_error_code);
      return nullptr;
    }
  }
  vel::fail(vel_error_none);
  const int s = eval_numeric_expr(node->walk_root, &node->value) != 0 ? _vel_error_code : 0;
  *status = finish(node, mode, s);
  return nullptr;
}

}  // namespace

int model_uses_node(const vel_model_t *model, const vel_node_t *node) {
  if (model == nullptr) return 0;
  return _vel_node_appears_in_model(model, node) || _vel_node_in_list(node, model->nodes);
}

// The host checks the arguments (vel_node_compute_value): a real-valued
// function node and a mode of 0 or 1.
extern "C" int _vel_node_compute_function_value(vel_node_t *node, uint32_t mode) {
  const int status = evaluate_function_node(node, mode);
  // A usage failure inside the computation means the value cannot be
  // produced; to the caller that is a computation error, not a bad argument.
  return vel::fail(status == vel_error_usage ? vel_error_computation : status);
}

int evaluate_function_node(vel_node_t *node, uint32_t mode) {
  if (node->function_status[mode] >= 0) return vel::fail(node->function_status[mode]);
  initialize_ancestors(node, mode);
  const int status = compute_function_value(node, mode);
  clear_ancestors(node);
  return status;
}

namespace {

// Marks every node the computation may reach: -1 for those to compute, the
// cached status for function nodes that hold one (with the cached value).
void initialize_ancestors(vel_node_t *node, uint32_t mode) {
  NodeStack pending;
  // Marks a node on first sight; true when its sources are to be marked too.
  auto reach = [&](vel_node_t *n) {
    if (n->mark != 0) return;
    if (!is_real_function(n)) {
      n->mark = -1;
      if (n->value_source != nullptr) pending.push(n);
      return;
    }
    n->mark = n->function_status[mode];
    if (n->mark == 0) {
      n->value = cached_value(n, mode);
    } else if (n->mark < 0) {
      pending.push(n);
    }
  };
  reach(node);
  while (vel_node_t *n = pending.pop()) {
    if (n->value_source != nullptr) {
      reach(n->value_source);
    } else if (n->parents != nullptr) {
      for (vel_node_t **p = n->parents; *p != nullptr; ++p) {
        if (model_uses_node(n->model, *p)) reach(*p);
      }
    }
  }
}

// Every node reachable along the computation's edges ends with mark 0; each
// is visited once, however many paths lead to it.
void clear_ancestors(vel_node_t *node) {
  NodeStack pending, flagged;
  node->mark = being_cleared;
  pending.push(node);
  while (vel_node_t *n = pending.pop()) {
    flagged.push(n);
    for_each_source(n, [&](vel_node_t *source) {
      if (source->mark == being_cleared) return;
      source->mark = being_cleared;
      pending.push(source);
    });
  }
  while (vel_node_t *n = flagged.pop()) n->mark = 0;
}

// The recursive computation of a node's status, run as a loop over a chain
// of waiting computations: each node that must wait for another keeps its
// stage and links to the one it waits for.
int compute_function_value(vel_node_t *node, uint32_t mode) {
  if (node->mark >= 0) return vel::fail(static_cast<int>(node->mark));
  node->walk_caller = nullptr;
  node->walk_stage = start;
  vel_node_t *current = node;
  int status = 0;
  for (;;) {
    vel_node_t *awaited = step(current, mode, status, &status);
    if (awaited != nullptr) {
      if (awaited->walk_stage != idle) {
        // Already waiting further down: the nodes form a cycle, and no value
        // can be had.
        status = vel::fail(vel_error_computation);
        continue;
      }
      awaited->walk_caller = current;
      awaited->walk_stage = start;
      current = awaited;
      continue;
    }
    if (current == node) return status;
    current = current->walk_caller;
  }
}

vel_expression_t *get_expression(const vel_model_t *model) {
  uint64_t index = 0;
  for (vel_node_t **m = model->nodes; m != nullptr && *m != nullptr; ++m) {
    if ((*m)->state_index < 0) return nullptr;
    index = index * (*m)->state_count + static_cast<uint64_t>((*m)->state_index);
  }
  if (model->expressions == nullptr) return nullptr;
  return model->expressions[index];
}

}  // namespace
