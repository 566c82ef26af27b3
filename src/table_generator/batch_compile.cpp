// Compiling an expression for batch evaluation.  A subtree that reads no
// interval parent's value becomes one instruction that the scalar evaluator
// computes once per configuration (or once per generation, when it reads no
// node at all); the rest, which varies with sample points, must be made of
// operators the batch evaluator knows, else the expression is left to the
// scalar path.  The program's instructions come in an order in which every
// operand precedes its user.
#include <algorithm>
#include <cstring>

#include "host/record_queries.h"
#include "table_generator/batch_plan.h"
#include "table_generator/numeric_operators.h"
#include "table_generator/table_generator.h"

namespace {

class Compiler {
 public:
  Compiler(batch_plan_t *plan, batch_program_t *program) : plan_(plan), program_(program) {}

  bool failed() const { return failed_; }

  // A number or a condition.
  int32_t value(const vel_expression_t *e) {
    if (failed_) return -1;
    const uint32_t level = value_level(e);
    if (level == 0) {
      if (e->type != vel_type_number && e->type != vel_type_boolean) return fail();
      return emit({op_row, e->type == vel_type_boolean, 0, 0, -1, -1, -1, depth(e), e});
    }
    const uint32_t op = e->operator_;
    vel_expression_t *const *args = op < vel_op_number ? e->arguments : nullptr;
    switch (op) {
      case vel_op_node:
        return emit({op_sample, 0, static_cast<uint16_t>(level), 0, -1, -1, -1, -1, e});
      case vel_op_min:
      case vel_op_max:
      case vel_op_and:
      case vel_op_or: {
        // A chain of steps, each over the value held and the next argument.
        const uint8_t step = op == vel_op_min ? op_min_step
                             : op == vel_op_max ? op_max_step
                             : op == vel_op_and ? op_and
                                                : op_or;
        const bool boolean = op == vel_op_and || op == vel_op_or;
        int32_t held = value(args[0]);
        for (size_t i = 1; args[i] && !failed_; ++i) held = combine(step, op, held, value(args[i]), boolean);
        return held;
      }
      case vel_op_not:
        return combine(op_not, op, value(args[0]), -1, true);
      case vel_op_less_than:
      case vel_op_greater_than:
      case vel_op_less_or_equal:
      case vel_op_greater_or_equal:
        return combine(op_compare, op, value(args[0]), value(args[1]), true);
      case vel_op_equals:
      case vel_op_not_equals:
        if (args[0]->type != vel_type_number && args[0]->type != vel_type_boolean) return fail();
        return combine(op_compare, op, value(args[0]), value(args[1]), true);
      case vel_op_if: {
        if (e->type != vel_type_number && e->type != vel_type_boolean) return fail();
        const int32_t c = value(args[0]), t = value(args[1]), f = value(args[2]);
        if (failed_) return -1;
        return emit({op_if, e->type == vel_type_boolean, max_level({c, t, f}), op, c, t, f, -1, e});
      }
      default:
        if (numeric::is_unary(op)) return combine(op_unary, op, value(args[0]), -1, false);
        if (numeric::is_binary(op)) return combine(op_binary, op, value(args[0]), value(args[1]), false);
        return fail();  // probability, quantile, ... of a sampled value
    }
  }

  // How a row of a probability table comes out of an expression of the
  // node's subtype.
  int32_t shape(const vel_expression_t *e, int32_t subtype) {
    if (failed_) return -1;
    const uint32_t type = e->type;
    if (type >= vel_type_distribution_or_number && type <= vel_type_distribution_or_boolean)
      return conditional_shape(e, [&](const vel_expression_t *branch) { return shape(branch, subtype); });
    switch (type) {
      case vel_type_distribution:
        return distribution(e);
      case vel_type_number:
        return add_shape({shape_number, value(e), -1, -1, -1, 0, 0, e});
      case vel_type_boolean:
        return add_shape({shape_boolean, value(e), -1, -1, -1, 0, 0, e});
      case vel_type_label:
        if (value_level(e) == 0) return add_shape({shape_label, -1, -1, -1, -1, 0, 0, e});
        if (e->operator_ == vel_op_if)
          return conditional_shape(e, [&](const vel_expression_t *branch) { return shape(branch, subtype); });
        return fail();
      default:
        return fail();
    }
  }

 private:
  int32_t fail() {
    failed_ = true;
    return -1;
  }

  // 1..levels for a table's interval parent, 0 for any other node.
  uint32_t level_of(const vel_node_t *node) const {
    for (uint32_t j = 1; j <= plan_->levels; ++j)
      if (plan_->level_node[j] == node) return j;
    return 0;
  }

  // The position of a table node; -1 for a node outside the table, whose
  // value stays the same through the generation.
  int32_t position_of(const vel_node_t *node) const {
    for (uint64_t i = 0; i < plan_->table->node_count; ++i)
      if (plan_->table->nodes[i] == node) return static_cast<int32_t>(i);
    return -1;
  }

  // The innermost interval level whose sample points the subtree reads; 0
  // when it reads none (a state, as state_index and the like read, is not a
  // sample point).
  uint32_t value_level(const vel_expression_t *e) const {
    const uint32_t op = e->operator_;
    if (op == vel_op_node) return level_of(e->node);
    if (op >= vel_op_number || op == vel_op_state_index_of || op == vel_op_aggregate ||
        op == vel_op_variance)
      return 0;
    uint32_t level = 0;
    for (size_t i = op == vel_op_quantile ? 1 : 0; e->arguments[i]; ++i)
      level = std::max(level, value_level(e->arguments[i]));
    return level;
  }

  // The last table position the subtree reads; -1 when it reads none.
  int32_t depth(const vel_expression_t *e) const {
    if (e->operator_ == vel_op_node) return position_of(e->node);
    int32_t deepest = -1;
    if (e->operator_ < vel_op_number)
      for (vel_expression_t *const *a = e->arguments; *a; ++a) deepest = std::max(deepest, depth(*a));
    return deepest;
  }

  uint16_t max_level(std::initializer_list<int32_t> operands) const {
    uint16_t level = 0;
    for (int32_t i : operands)
      if (i >= 0) level = std::max(level, program_->code[i].level);
    return level;
  }

  int32_t combine(uint8_t kind, uint32_t op, int32_t a, int32_t b, bool boolean) {
    if (failed_) return -1;
    return emit({kind, boolean, max_level({a, b}), op, a, b, -1, -1, nullptr});
  }

  // An instruction the program has already is not computed twice (the same
  // subexpression written again, a parent's sample points read again).
  int32_t emit(const batch_instruction_t &instruction) {
    uint64_t slot = hash(instruction) & (plan_->seen_size - 1);
    for (; plan_->seen[slot] >= 0; slot = (slot + 1) & (plan_->seen_size - 1))
      if (same(program_->code[plan_->seen[slot]], instruction)) return plan_->seen[slot];
    if (program_->count >= plan_->capacity) return fail();
    program_->code[program_->count] = instruction;
    plan_->seen[slot] = static_cast<int32_t>(program_->count);
    return static_cast<int32_t>(program_->count++);
  }

  static uint64_t mix(uint64_t h, uint64_t v) { return (h ^ v) * 0x100000001b3ull; }

  static uint64_t tree_hash(const vel_expression_t *e) {
    uint64_t h = mix(0xcbf29ce484222325ull, e->operator_);
    switch (e->operator_) {
      case vel_op_number: {
        uint64_t bits;
        std::memcpy(&bits, &e->number, sizeof bits);
        return mix(h, bits);
      }
      case vel_op_label:
        for (const char *c = e->label; *c; ++c) h = mix(h, static_cast<unsigned char>(*c));
        return h;
      case vel_op_node: return mix(h, reinterpret_cast<uintptr_t>(e->node));
      case vel_op_truth: return mix(h, static_cast<uint64_t>(e->truth));
      default:
        for (vel_expression_t *const *a = e->arguments; *a; ++a) h = mix(h, tree_hash(*a));
        return h;
    }
  }

  static bool same_tree(const vel_expression_t *x, const vel_expression_t *y) {
    if (x->operator_ != y->operator_ || x->type != y->type) return false;
    switch (x->operator_) {
      case vel_op_number: return std::memcmp(&x->number, &y->number, sizeof x->number) == 0;
      case vel_op_label: return std::strcmp(x->label, y->label) == 0;
      case vel_op_node: return x->node == y->node;
      case vel_op_truth: return x->truth == y->truth;
      default: break;
    }
    size_t i = 0;
    for (; x->arguments[i] && y->arguments[i]; ++i)
      if (!same_tree(x->arguments[i], y->arguments[i])) return false;
    return !x->arguments[i] && !y->arguments[i];
  }

  static uint64_t hash(const batch_instruction_t &in) {
    uint64_t h = mix(mix(mix(0xcbf29ce484222325ull, in.kind), in.boolean), in.level);
    if (in.kind == op_row) return mix(h, tree_hash(in.expression));
    return mix(mix(mix(mix(h, in.code), static_cast<uint32_t>(in.a)), static_cast<uint32_t>(in.b)),
               static_cast<uint32_t>(in.c));
  }

  static bool same(const batch_instruction_t &x, const batch_instruction_t &y) {
    if (x.kind != y.kind || x.boolean != y.boolean || x.level != y.level) return false;
    if (x.kind == op_row) return same_tree(x.expression, y.expression);
    return x.code == y.code && x.a == y.a && x.b == y.b && x.c == y.c;
  }

  int32_t add_shape(const batch_shape_t &shape) {
    if (failed_ || program_->shape_count >= plan_->capacity) return fail();
    program_->shapes[program_->shape_count] = shape;
    return static_cast<int32_t>(program_->shape_count++);
  }

  template <typename Branch>
  int32_t conditional_shape(const vel_expression_t *e, Branch branch) {
    const int32_t condition = value(e->arguments[0]);
    const int32_t then_shape = branch(e->arguments[1]);
    const int32_t else_shape = branch(e->arguments[2]);
    return add_shape({shape_if, condition, -1, then_shape, else_shape, 0, 0, e});
  }

  // A distribution: truncations and conditionals around a builder.
  int32_t distribution(const vel_expression_t *e) {
    if (failed_) return -1;
    vel_expression_t *const *args = e->arguments;
    switch (e->operator_) {
      case vel_op_truncate: {
        const bool lower_first = args[0]->type == vel_type_number;
        const int32_t lower = lower_first ? value(args[0]) : -1;
        const vel_expression_t *inner = lower_first ? args[1] : args[0];
        const vel_expression_t *upper_expression = lower_first ? args[2] : args[1];
        const int32_t upper = upper_expression ? value(upper_expression) : -1;
        return add_shape({shape_truncate, lower, upper, distribution(inner), -1, 0, 0, e});
      }
      case vel_op_if:
        return conditional_shape(e, [&](const vel_expression_t *branch) { return distribution(branch); });
      default:
        break;
    }
    if (e->operator_ < vel_op_Normal || e->operator_ > vel_op_NoisyOR) return fail();
    const uint32_t first = program_->argument_count;
    uint32_t count = 0;
    for (; args[count]; ++count) {
      const int32_t argument = value(args[count]);
      if (failed_ || program_->argument_count >= plan_->capacity) return fail();
      program_->arguments[program_->argument_count++] = argument;
    }
    return add_shape({shape_builder, -1, -1, -1, -1, first, count, e});
  }

  batch_plan_t *plan_;
  batch_program_t *program_;
  bool failed_ = false;
};

// Guards, from the last instruction to the first (every user comes after
// its operands): an instruction whose users all hold one guard holds it too;
// the branches of an if are guarded by its condition; a value that a row's
// shape or the root uses, or that users under different guards share, has
// none.  A guard must be computed before the instruction and vary with no
// deeper level, so that its value is there for every lane.
void assign_guards(batch_program_t *program, bool probability) {
  constexpr int32_t unset = -2;
  batch_instruction_t *code = program->code;
  for (uint32_t i = 0; i < program->count; ++i) code[i].guard = unset;
  auto meet = [&](int32_t operand, int32_t guard, uint8_t when) {
    if (operand < 0) return;
    batch_instruction_t &in = code[operand];
    if (in.guard == unset) {
      in.guard = guard;
      in.guard_when = when;
    } else if (in.guard != guard || in.guard_when != when) {
      in.guard = -1;
    }
  };
  if (!probability) {
    meet(program->root, -1, 0);
  } else {
    for (uint32_t s = 0; s < program->shape_count; ++s) {
      meet(program->shapes[s].value, -1, 0);
      meet(program->shapes[s].upper, -1, 0);
    }
    for (uint32_t k = 0; k < program->argument_count; ++k) meet(program->arguments[k], -1, 0);
  }
  for (uint32_t i = program->count; i-- > 0;) {
    batch_instruction_t &in = code[i];
    if (in.guard == unset || (in.guard >= 0 && (static_cast<uint32_t>(in.guard) >= i ||
                                                 code[in.guard].level > in.level)))
      in.guard = -1;
    if (in.kind == op_if) {
      meet(in.a, in.guard, in.guard_when);
      meet(in.b, in.a, 1);
      meet(in.c, in.a, 0);
    } else {
      meet(in.a, in.guard, in.guard_when);
      meet(in.b, in.guard, in.guard_when);
      meet(in.c, in.guard, in.guard_when);
    }
  }
}

// Registers: an instruction read only by later instructions of its own level
// (not by a row's shape or the root, nor by an instruction of another level,
// all of which may read it after its level's pass) hands its register on
// after its last reader to a later instruction of that level, so that the
// lanes of a pass stay in fewer registers, which the cache holds.  An
// instruction never takes a register its own operands hold: no loop writes
// over what it reads.  Works in the plan's `seen`, free after compiling.
void assign_registers(batch_plan_t *plan, batch_program_t *program) {
  constexpr int32_t kept = INT32_MAX;
  batch_instruction_t *code = program->code;
  const uint32_t count = program->count;
  int32_t *last = plan->seen;                     // per instruction: its last reader, or kept
  int32_t *next_free = plan->seen + count;        // per register: the next free one of its level
  int32_t *first_free = plan->seen + 2 * count;   // per level: a free register, or -1
  for (uint32_t i = 0; i < count; ++i) last[i] = code[i].level == 0 ? kept : -1;
  auto keep = [&](int32_t i) {
    if (i >= 0) last[i] = kept;
  };
  if (!plan->probability) keep(program->root);
  for (uint32_t s = 0; s < program->shape_count; ++s) {
    keep(program->shapes[s].value);
    keep(program->shapes[s].upper);
  }
  for (uint32_t k = 0; k < program->argument_count; ++k) keep(program->arguments[k]);
  for (uint32_t r = 0; r < count; ++r)
    for (const int32_t o : {code[r].a, code[r].b, code[r].c, code[r].guard})
      if (o >= 0 && last[o] != kept) last[o] = code[o].level == code[r].level ? static_cast<int32_t>(r) : kept;
  for (uint32_t level = 0; level <= plan->levels; ++level) first_free[level] = -1;
  int32_t registers = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const uint16_t level = code[i].level;
    int32_t reg = first_free[level];
    if (reg >= 0) {
      first_free[level] = next_free[reg];
    } else {
      reg = registers++;
    }
    code[i].reg = static_cast<uint32_t>(reg);
    for (const int32_t o : {code[i].a, code[i].b, code[i].c, code[i].guard}) {
      if (o < 0 || last[o] != static_cast<int32_t>(i)) continue;
      last[o] = -1;  // an operand named twice is freed once
      next_free[code[o].reg] = first_free[level];
      first_free[level] = static_cast<int32_t>(code[o].reg);
    }
  }
}

}  // namespace

int compile_program(batch_plan_t *plan, batch_program_t *program, const vel_expression_t *expression) {
  program->expression = expression;
  program->count = 0;
  program->shape_count = 0;
  program->argument_count = 0;
  for (uint64_t i = 0; i < plan->seen_size; ++i) plan->seen[i] = -1;
  Compiler compiler(plan, program);
  program->root = plan->probability ? compiler.shape(expression, plan->node->subtype)
                                    : compiler.value(expression);
  program->compiled = !compiler.failed() && program->root >= 0;
  if (program->compiled) {
    assign_guards(program, plan->probability);
    assign_registers(plan, program);
  }
  program->block_serial = 0;
  program->reads_block_node = 0;
  const vel_node_t *block_node = plan->block_states ? plan->level_node[plan->levels] : nullptr;
  for (uint32_t i = 0; i < program->count; ++i) {
    program->row_serial[i] = 0;
    if (block_node && program->code[i].kind == op_row && refers_to(program->code[i].expression, block_node))
      program->reads_block_node = 1;
  }
  return program->compiled;
}
