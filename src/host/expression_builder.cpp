// Constructors and destructor of expression trees.  The builder refuses every
// shape the evaluators would not survive: wrong arities, non-references where
// a node reference is required, shared subtrees and trees deeper than 1000.
#include <cmath>
#include <cstring>
#include <string>

#include "host/record_queries.h"
#include "host/api_guard_internal.h"
#include "host/expression_internal.h"
#include "host/operators.h"
#include "host/storage_internal.h"

using namespace vel::host;

namespace {

vel_expression_t *new_leaf(uint32_t code, uint32_t type) {
  auto *expression = new vel_expression_s{};
  expression->operator_ = code;
  expression->type = type;
  expression->depth = 1;
  return expression;
}

std::string operator_text(const OperatorInfo &info) {
  return info.is_call ? std::string(info.name) : std::string("operator ") + info.name;
}

// Marks the arguments seen so far, so that a repeated one is found in one
// pass; every mark is taken back when the check ends.
class SeenArguments {
 public:
  SeenArguments(vel_expression_t *const *arguments) : arguments_(arguments) {}
  ~SeenArguments() {
    for (int i = 0; i < marked_; ++i)
      if (arguments_[i]->owner == &mark_) arguments_[i]->owner = nullptr;
  }
  bool seen(const vel_expression_t *argument) const { return argument->owner == &mark_; }
  void add(int i) {
    arguments_[i]->owner = &mark_;
    marked_ = i + 1;
  }

 private:
  vel_expression_t *const *arguments_;
  int marked_ = 0;
  char mark_ = 0;
};

// Why the argument list does not suit the operator; empty when it does.
std::string argument_error(const OperatorInfo &info, vel_expression_t *const *arguments,
                           int count) {
  if (!vel::host::arity_fits(info, count))
    return vel::host::arity_message(info, static_cast<std::size_t>(count));
  SeenArguments seen(arguments);
  for (int i = 0; i < count; ++i) {
    const vel_expression_t *argument = arguments[i];
    if (seen.seen(argument)) {
      int j = 0;
      while (arguments[j] != argument) ++j;
      return "argument " + std::to_string(i + 1) + " of " + operator_text(info) +
             " repeats argument " + std::to_string(j + 1);
    }
    if (argument->owner)
      return "argument " + std::to_string(i + 1) + " of " + operator_text(info) +
             " already belongs to another expression or model";
    seen.add(i);
    if (i < 32 && (info.node_arguments >> i & 1u) && argument->operator_ != vel_op_node)
      return "argument " + std::to_string(i + 1) + " of " + operator_text(info) +
             " must be a node reference";
    if (argument->depth >= vel::host::max_expression_depth)
      return "the expression would be nested deeper than " +
             std::to_string(vel::host::max_expression_depth) + " levels";
  }
  if (info.needs_node && !refers_to(arguments[0], nullptr))
    return "the argument of " + operator_text(info) + " must refer to a node";
  return {};
}

}  // namespace

namespace vel::host {

void delete_tree(vel_expression_t *expression) noexcept {
  if (!expression) return;
  if (expression->operator_ == vel_op_label) {
    delete[] expression->label;
  } else if (expression->operator_ < vel_op_number) {
    for (vel_expression_t **argument = expression->arguments; argument && *argument; ++argument)
      delete_tree(*argument);
    delete[] expression->arguments;
  }
  delete expression;
}

}  // namespace vel::host

extern "C" {

vel_expression_t *vel_make_number(double value) {
  if (!std::isfinite(value)) {
    usage("vel_make_number: the number must be finite");
    return nullptr;
  }
  return guarded<vel_expression_t *>(nullptr, [&] {
    vel_expression_t *expression = new_leaf(vel_op_number, vel_type_number);
    expression->number = value;
    _vel_error_code = 0;
    return expression;
  });
}

vel_expression_t *vel_make_label(const char *label) {
  if (!check_not_null("vel_make_label", "label", label)) return nullptr;
  return guarded<vel_expression_t *>(nullptr, [&] {
    size_t length = std::strlen(label);
    auto text = std::make_unique<char[]>(length + 1);
    std::memcpy(text.get(), label, length + 1);
    vel_expression_t *expression = new_leaf(vel_op_label, vel_type_label);
    expression->label = text.release();
    _vel_error_code = 0;
    return expression;
  });
}

vel_expression_t *vel_make_truth(int truth) {
  return guarded<vel_expression_t *>(nullptr, [&] {
    vel_expression_t *expression = new_leaf(vel_op_truth, vel_type_boolean);
    expression->truth = truth ? 1 : 0;
    _vel_error_code = 0;
    return expression;
  });
}

// The reference does not keep the node alive: deleting the node's domain
// while the expression lives leaves it pointing at freed memory.
vel_expression_t *vel_make_node_reference(vel_node_t *node) {
  if (!check_not_null("vel_make_node_reference", "node", node)) return nullptr;
  return guarded<vel_expression_t *>(nullptr, [&] {
    uint32_t type = vel::host::is_discrete(node) ? vel_type_any : vel_type_number;
    vel_expression_t *expression = new_leaf(vel_op_node, type);
    expression->node = node;
    _vel_error_code = 0;
    return expression;
  });
}

vel_expression_t *vel_make_operator(int code, vel_expression_t *const *arguments) {
  return guarded<vel_expression_t *>(nullptr, [&]() -> vel_expression_t * {
    const OperatorInfo *info = vel::host::find_operator(code);
    if (!info || code >= vel_op_number) {
      usage("vel_make_operator: " + std::to_string(code) + " is not an operator code (60..113)");
      return nullptr;
    }
    int count = 0;
    while (arguments && arguments[count]) ++count;
    std::string error = argument_error(*info, arguments, count);
    if (!error.empty()) {
      usage(error);
      return nullptr;
    }
    auto list = std::make_unique<vel_expression_t *[]>(count + 1);
    uint32_t depth = 0;
    for (int i = 0; i < count; ++i) {
      list[i] = arguments[i];
      if (arguments[i]->depth > depth) depth = arguments[i]->depth;
    }
    list[count] = nullptr;
    vel_expression_t *expression = new_leaf(static_cast<uint32_t>(code), info->result_type);
    expression->depth = depth + 1;
    expression->argument_count = static_cast<uint32_t>(count);
    expression->arguments = list.release();
    for (int i = 0; i < count; ++i) {
      expression->arguments[i]->owner = expression;
      expression->arguments[i]->position = static_cast<uint64_t>(i);
    }
    _vel_error_code = 0;
    return expression;
  });
}

int vel_expression_delete(vel_expression_t *expression) {
  if (!check_not_null("vel_expression_delete", "expression", expression)) return vel_error_usage;
  if (expression->owner)
    return usage("vel_expression_delete: the expression belongs to another expression or model");
  vel::host::delete_tree(expression);
  return _vel_error_code = 0;
}

}  // extern "C"
