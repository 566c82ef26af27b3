// Where the batch plan of a generation lies in its workspace: one layout
// function measures the plan (with no memory) and lays it out (with the
// memory the host allocated), so the two always agree.
#include <algorithm>
#include <cstring>

#include "table_generator/batch_plan.h"
#include "table_generator/table_generator.h"

namespace {

constexpr uint64_t alignment = 64;
// Lanes of the inner interval levels evaluated together, and values of one
// program's registers at most: enough for the loops to run long, small
// enough to stay in cache.
constexpr uint64_t lane_budget = 1024;
constexpr uint64_t register_budget = uint64_t{1} << 21;
constexpr uint64_t row_budget = uint64_t{1} << 20;
constexpr uint64_t block_lane_budget = uint64_t{1} << 14;
// Programs kept compiled at once, and the largest expression batched.
constexpr uint64_t slot_budget = 16;
constexpr uint64_t instruction_budget = uint64_t{1} << 16;

// Takes aligned arrays one after another from `base`, or only counts the
// bytes when base is NULL.
class Layout {
 public:
  explicit Layout(char *base) : base_(base) {}
  template <typename T>
  T *take(uint64_t count) {
    used_ = (used_ + alignment - 1) / alignment * alignment;
    T *at = base_ ? reinterpret_cast<T *>(base_ + used_) : nullptr;
    used_ += count * sizeof(T);
    return at;
  }
  uint64_t used() const { return used_; }

 private:
  char *base_;
  uint64_t used_ = 0;
};

uint64_t count_nodes(const vel_expression_t *e) {
  uint64_t count = 1;
  if (e->operator_ < vel_op_number)
    for (vel_expression_t *const *a = e->arguments; *a; ++a) count += count_nodes(*a);
  return count;
}

struct Sizes {
  uint32_t levels = 0;
  uint32_t outer = 0;
  uint64_t capacity = 0;
  uint64_t slots = 0;
  uint64_t lanes = 1;
  uint64_t block_states = 0;  // states of the innermost parent batched together; 0: none
};

bool is_model_node(const vel_model_t *model, const vel_node_t *node) {
  for (vel_node_t *const *m = model->nodes; m && *m; ++m)
    if (*m == node) return true;
  return false;
}

// Rows that differ only in the state of the innermost interval parent, which
// selects no expression while every parent after it does, are computed
// together when their lanes fit: the sample points of all its states side by
// side.
uint64_t block_states_of(const vel_table_t *table, const vel_model_t *model, uint64_t parents,
                         uint64_t lanes, uint64_t capacity, uint64_t n) {
  uint64_t position = parents;
  while (position > 0 && table->nodes[position - 1]->subtype != vel_subtype_interval) --position;
  if (position == 0) return 0;
  const vel_node_t *last = table->nodes[position - 1];
  if (last->state_count < 2 || is_model_node(model, last)) return 0;
  for (uint64_t i = position; i < parents; ++i)
    if (!is_model_node(model, table->nodes[i])) return 0;
  const uint64_t states = last->state_count;
  uint64_t block_lanes = 0;
  if (__builtin_mul_overflow(lanes, states, &block_lanes) || block_lanes > block_lane_budget ||
      block_lanes > register_budget / capacity || block_lanes > row_budget / (3 * n) ||
      states > row_budget / (3 * n * slot_budget))
    return 0;
  return states;
}

// What the plan needs, or levels 0 when the table is left to the scalar path.
Sizes sizes_of(const vel_table_t *table, const vel_model_t *model) {
  Sizes sizes;
  const bool probability = table->node->kind == vel_kind_discrete;
  const uint64_t n = probability ? std::max<uint64_t>(table->node->state_count, 1) : 1;
  const uint64_t parents = probability ? table->node_count - 1 : table->node_count;
  for (uint64_t i = 0; i < parents; ++i)
    if (table->nodes[i]->subtype == vel_subtype_interval) ++sizes.levels;
  if (sizes.levels == 0 || model->expressions == nullptr) return Sizes{};
  uint64_t expressions = 0;
  for (uint64_t i = 0; i < model->expression_count; ++i) {
    if (!model->expressions[i]) continue;
    ++expressions;
    sizes.capacity = std::max(sizes.capacity, count_nodes(model->expressions[i]));
    if (sizes.capacity > instruction_budget) return Sizes{};
  }
  if (expressions == 0) return Sizes{};
  sizes.slots = std::min(expressions, slot_budget);
  // The innermost levels go in lanes as far as the budget allows; the
  // levels outside them are walked one point at a time.
  const uint64_t budget = std::max<uint64_t>(
      1, std::min({lane_budget, register_budget / sizes.capacity, row_budget / (3 * n)}));
  const uint64_t samples = model->samples_per_interval;
  sizes.outer = sizes.levels;
  while (sizes.outer > 0 && samples <= budget / sizes.lanes) {
    sizes.lanes *= samples;
    --sizes.outer;
  }
  if (sizes.outer == 0) {
    sizes.block_states = block_states_of(table, model, parents, sizes.lanes, sizes.capacity, n);
    if (sizes.block_states) sizes.lanes *= sizes.block_states;
  }
  return sizes;
}

batch_plan_t *lay_out(Layout &layout, vel_table_t *table, const vel_model_t *model) {
  const Sizes sizes = sizes_of(table, model);
  if (sizes.levels == 0) return nullptr;
  const uint64_t k = sizes.levels, c = sizes.capacity;
  const bool probability = table->node->kind == vel_kind_discrete;
  const uint64_t n = probability ? table->node->state_count : 1;
  batch_plan_t *plan = layout.take<batch_plan_t>(1);
  vel_node_t **level_node = layout.take<vel_node_t *>(k + 1);
  uint32_t *level_position = layout.take<uint32_t>(k + 1);
  double *level_lo = layout.take<double>(k + 1);
  double *level_width = layout.take<double>(k + 1);
  double *level_point = layout.take<double>(k + 1);
  uint64_t *level_count = layout.take<uint64_t>(k + 1);
  uint8_t *level_sampling = layout.take<uint8_t>(k + 1);
  uint64_t *level_index = layout.take<uint64_t>(k + 1);
  uint64_t *level_lanes = layout.take<uint64_t>(k + 1);
  uint64_t *level_spread = layout.take<uint64_t>((k + 1) * (k + 1));
  uint64_t seen_size = 1;
  while (seen_size < 2 * c + k + 1) seen_size *= 2;
  int32_t *seen = layout.take<int32_t>(seen_size);
  batch_program_t *slots = layout.take<batch_program_t>(sizes.slots);
  batch_program_t programs[slot_budget];
  for (uint64_t s = 0; s < sizes.slots; ++s) {
    programs[s] = batch_program_t{};
    programs[s].code = layout.take<batch_instruction_t>(c);
    programs[s].shapes = layout.take<batch_shape_t>(c);
    programs[s].arguments = layout.take<int32_t>(c);
    programs[s].row_value = layout.take<double>(c);
    programs[s].row_failed = layout.take<uint8_t>(c);
    programs[s].row_serial = layout.take<uint64_t>(c);
    programs[s].block_rows = layout.take<double>(3 * n * sizes.block_states);
    programs[s].block_ok = layout.take<uint8_t>(sizes.block_states);
  }
  double *registers = layout.take<double>(c * sizes.lanes);
  uint8_t *failed = layout.take<uint8_t>(c * sizes.lanes);
  uint8_t *any_failed = layout.take<uint8_t>(c);
  uint64_t *changed_at = layout.take<uint64_t>(table->node_count + 1);
  double *lane_rows = layout.take<double>(3 * n * sizes.lanes);
  double *argument_values = layout.take<double>(c);
  bool *argument_failed = layout.take<bool>(c);
  const double **argument_columns = layout.take<const double *>(c);
  uint64_t *argument_steps = layout.take<uint64_t>(c);
  double *lane_sums = layout.take<double>(sizes.lanes);
  double *lane_quotients = layout.take<double>(sizes.lanes);
  const uint64_t b = sizes.block_states;
  uint32_t *block_point_state = layout.take<uint32_t>(b * model->samples_per_interval);
  uint64_t *block_offset = layout.take<uint64_t>(b + 1);
  double *block_points = layout.take<double>(b * model->samples_per_interval);
  double *block_lo = layout.take<double>(b);
  double *block_width = layout.take<double>(b);
  double *block_point = layout.take<double>(b);
  uint8_t *block_sampling = layout.take<uint8_t>(b);
  if (!plan) return nullptr;  // measured only

  *plan = batch_plan_t{};
  plan->table = table;
  plan->node = table->node;
  plan->probability = probability;
  plan->n = n;
  plan->samples = model->samples_per_interval;
  plan->levels = sizes.levels;
  plan->outer = sizes.outer;
  plan->level_node = level_node;
  plan->level_position = level_position;
  uint32_t level = 0;
  for (uint64_t i = 0; i < table->node_count && level < k; ++i) {
    if (table->nodes[i] == table->node || table->nodes[i]->subtype != vel_subtype_interval) continue;
    ++level;
    level_node[level] = table->nodes[i];
    level_position[level] = static_cast<uint32_t>(i);
  }
  plan->capacity = c;
  plan->lane_capacity = sizes.lanes;
  plan->slot_count = static_cast<uint32_t>(sizes.slots);
  plan->slots = slots;
  for (uint64_t s = 0; s < sizes.slots; ++s) slots[s] = programs[s];
  plan->registers = registers;
  plan->failed = failed;
  plan->any_failed = any_failed;
  plan->changed_at = changed_at;
  std::memset(changed_at, 0, (table->node_count + 1) * sizeof(uint64_t));
  plan->level_lo = level_lo;
  plan->level_width = level_width;
  plan->level_point = level_point;
  plan->level_count = level_count;
  plan->level_sampling = level_sampling;
  plan->level_index = level_index;
  plan->level_lanes = level_lanes;
  plan->level_spread = level_spread;
  plan->seen = seen;
  plan->seen_size = seen_size;
  plan->lane_rows = lane_rows;
  plan->argument_values = argument_values;
  plan->argument_failed = argument_failed;
  plan->argument_capacity = c;
  plan->argument_columns = argument_columns;
  plan->argument_steps = argument_steps;
  plan->lane_sums = lane_sums;
  plan->lane_quotients = lane_quotients;
  plan->block_states = b;
  plan->block_point_state = block_point_state;
  plan->block_offset = block_offset;
  plan->block_points = block_points;
  plan->block_lo = block_lo;
  plan->block_width = block_width;
  plan->block_point = block_point;
  plan->block_sampling = block_sampling;
  return plan;
}

}  // namespace

uint64_t batch_plan_bytes(const vel_table_t *table, const vel_model_t *model) {
  Layout layout(nullptr);
  lay_out(layout, const_cast<vel_table_t *>(table), model);
  return layout.used();
}

batch_plan_t *batch_plan_in(void *memory, vel_table_t *table, const vel_model_t *model) {
  Layout layout(static_cast<char *>(memory));
  return lay_out(layout, table, model);
}
