// One row by batch evaluation: the program of the row's expression (compiled
// when first met), its values for the configuration and every sample point,
// the row of each lane, and their means in the order of the scalar sampler.
#include <cfloat>
#include <cstring>

#include "common/error.h"
#include "table_generator/batch_plan.h"
#include "table_generator/sampler.h"
#include "table_generator/table_generator.h"

namespace {

// The row must be computed on the scalar path.
constexpr int unusual = -1;

batch_program_t *program_for(batch_plan_t *plan, const vel_expression_t *expression) {
  for (uint32_t s = 0; s < plan->slot_count; ++s)
    if (plan->slots[s].expression == expression) return &plan->slots[s];
  batch_program_t *program = &plan->slots[plan->next_slot];
  plan->next_slot = (plan->next_slot + 1) % plan->slot_count;
  compile_program(plan, program, expression);
  return program;
}

// Values of the configuration: a kept one stays while the table positions it
// reads keep their states.
void evaluate_configuration(batch_plan_t *plan, batch_program_t *program) {
  for (uint32_t i = 0; i < program->count; ++i) {
    const batch_instruction_t &in = program->code[i];
    if (in.kind != op_row) continue;
    const uint64_t serial = program->row_serial[i];
    const bool kept = serial != 0 && (in.depth < 0 || serial >= plan->changed_at[in.depth]);
    if (!kept) {
      double value = 0.0;
      bool failed;
      if (in.boolean) {
        const int truth = eval_boolean_expr(in.expression);
        failed = truth < 0;
        value = truth > 0 ? 1.0 : 0.0;
      } else {
        failed = eval_numeric_expr(in.expression, &value) != 0;
      }
      program->row_value[i] = value;
      program->row_failed[i] = failed;
      program->row_serial[i] = plan->serial;
    }
    *register_values(plan, program, static_cast<int32_t>(i)) = program->row_value[i];
    *register_failures(plan, program, static_cast<int32_t>(i)) = program->row_failed[i];
    plan->any_failed[i] = program->row_failed[i];
  }
}

void prepare_spreads(batch_plan_t *plan);

// The sample points of each interval parent in its current state.
void prepare_levels(batch_plan_t *plan) {
  plan->level_lanes[plan->outer] = 1;
  for (uint32_t j = 1; j <= plan->levels; ++j) {
    const vel_node_t *parent = plan->level_node[j];
    const double lo = parent->state_values[parent->state_index];
    const double hi = parent->state_values[parent->state_index + 1];
    double point;
    if (unbounded_interval_point(lo, hi, &point)) {
      plan->level_sampling[j] = sampling_unbounded;
      plan->level_point[j] = point;
      plan->level_count[j] = 1;
    } else {
      const double width = (hi - lo) / static_cast<double>(plan->samples);
      plan->level_lo[j] = lo;
      plan->level_width[j] = width;
      plan->level_sampling[j] = width == 0.0 ? sampling_single : sampling_averaged;
      plan->level_count[j] = width == 0.0 ? 1 : plan->samples;
    }
    plan->level_index[j] = 0;
    if (j > plan->outer) plan->level_lanes[j] = plan->level_lanes[j - 1] * plan->level_count[j];
  }
  prepare_spreads(plan);
}

// The lanes of each level per value of each lower one.
void prepare_spreads(batch_plan_t *plan) {
  const uint32_t k = plan->levels;
  for (uint32_t from = 0; from <= k; ++from) {
    uint64_t spread = 1;
    for (uint32_t to = from; to <= k; ++to) {
      if (to > from && to > plan->outer) spread *= plan->level_count[to];
      plan->level_spread[from * (k + 1) + to] = spread;
    }
  }
}

double value_at(const batch_plan_t *plan, const batch_program_t *program, int32_t i, uint64_t lane,
                bool *failed) {
  const uint32_t level = program->code[i].level;
  const uint64_t spread = plan->level_spread[level * (plan->levels + 1) + plan->levels];
  const uint64_t at = spread == 1 ? lane : level == 0 ? 0 : lane / spread;
  *failed = plan->any_failed[i] && register_failures(plan, program, i)[at];
  return register_values(plan, program, i)[at];
}

// The row of one lane of a probability table, as distribution_of_node makes
// it from the expression.
int lane_row(batch_plan_t *plan, const batch_program_t *program, uint64_t lane, double *row) {
  double lower = -DBL_MAX, upper = DBL_MAX;
  bool failed = false;
  for (int32_t s = program->root;;) {
    const batch_shape_t &shape = program->shapes[s];
    switch (shape.kind) {
      case shape_if: {
        const double condition = value_at(plan, program, shape.value, lane, &failed);
        if (failed) return unusual;
        s = condition != 0.0 ? shape.first : shape.second;
        continue;
      }
      case shape_truncate:
        if (shape.value >= 0) {
          const double bound = value_at(plan, program, shape.value, lane, &failed);
          if (failed) return unusual;
          if (bound > lower) lower = bound;
        }
        if (shape.upper >= 0) {
          const double bound = value_at(plan, program, shape.upper, lane, &failed);
          if (failed) return unusual;
          if (upper > bound) upper = bound;
        }
        s = shape.first;
        continue;
      case shape_number: {
        const double value = value_at(plan, program, shape.value, lane, &failed);
        if (failed) return unusual;
        return place_value(plan->node, row, plan->n, value);
      }
      case shape_boolean: {
        const double truth = value_at(plan, program, shape.value, lane, &failed);
        if (failed) return unusual;
        return place_state(row, plan->n, truth != 0.0 ? 1 : 0);
      }
      case shape_label: {
        const char *label = eval_label_expr(shape.expression);
        if (!label) return unusual;
        return place_label(plan->node, row, plan->n, label);
      }
      default: {  // a builder
        for (uint32_t a = 0; a < shape.argument_count; ++a) {
          plan->argument_values[a] = value_at(plan, program, program->arguments[shape.arguments + a], lane, &failed);
          plan->argument_failed[a] = failed;
        }
        return distribution_row(builder_arguments_t{shape.expression, plan->argument_values, plan->argument_failed},
                                plan->node, row, plan->n, lower, upper);
      }
    }
  }
}

// The rows of every lane: three rows of n each, one after another.
int lane_rows(batch_plan_t *plan, const batch_program_t *program, uint64_t lanes) {
  double *rows = plan->lane_rows;
  if (plan->probability) {
    for (uint64_t lane = 0; lane < lanes; ++lane)
      if (lane_row(plan, program, lane, rows + 3 * plan->n * lane) != 0) return unusual;
    return 0;
  }
  const int32_t root = program->root;
  if (program->code[root].level == plan->levels && plan->levels > plan->outer) {
    // One value per lane already: copied as it stands.
    const double *value = register_values(plan, program, root);
    const uint8_t *failed = register_failures(plan, program, root);
    if (plan->any_failed[root])
      for (uint64_t lane = 0; lane < lanes; ++lane)
        if (failed[lane]) return unusual;
    for (uint64_t lane = 0; lane < lanes; ++lane)
      rows[3 * lane] = rows[3 * lane + 1] = rows[3 * lane + 2] = value[lane];
    return 0;
  }
  for (uint64_t lane = 0; lane < lanes; ++lane) {
    bool failed = false;
    const double value = value_at(plan, program, root, lane, &failed);
    if (failed) return unusual;
    rows[3 * lane] = rows[3 * lane + 1] = rows[3 * lane + 2] = value;
  }
  return 0;
}

// Averages the lane rows over the lane levels, innermost first, as the
// scalar sampler's nesting does: a level's first point starts the mean,
// later points are folded in, and the mean of the level's points takes the
// place of its group.  Leaves the one row of the lane levels first.
void reduce_lanes(batch_plan_t *plan) {
  const uint64_t n = plan->n, width = 3 * n;
  double *rows = plan->lane_rows;
  for (uint32_t j = plan->levels; j > plan->outer; --j) {
    const uint64_t count = plan->level_count[j];
    if (count == 1) continue;  // one point, nothing to average
    const uint64_t groups = plan->level_lanes[j - 1];
    if (n == 1) {
      // A utility: the same steps with the row's three values at hand.
      for (uint64_t g = 0; g < groups; ++g) {
        const double *first = rows + 3 * g * count;
        double mean = first[0], low = first[1], high = first[2];
        for (uint64_t k = 1; k < count; ++k) {
          const double *next = first + 3 * k;
          mean += next[0];
          if (next[1] < low) low = next[1];
          if (high < next[2]) high = next[2];
        }
        rows[3 * g] = per_sample(mean, plan->samples);
        rows[3 * g + 1] = low;
        rows[3 * g + 2] = high;
      }
      continue;
    }
    for (uint64_t g = 0; g < groups; ++g) {
      double *mean = rows + width * g;
      const double *first = rows + width * g * count;
      if (g > 0)
        for (uint64_t x = 0; x < width; ++x) mean[x] = first[x];
      for (uint64_t k = 1; k < count; ++k) fold_sample(mean, first + width * k, n);
      for (uint64_t x = 0; x < n; ++x) mean[x] = per_sample(mean[x], plan->samples);
    }
  }
}

// Folds the row of the lane levels into the means of the levels walked one
// point at a time: a level's first point starts its block, later points are
// folded in, and the last completes the mean, which goes on outward.
void fold_outer(batch_plan_t *plan, double *out, double *accumulators) {
  const uint64_t width = 3 * plan->n;
  const double *value = plan->lane_rows;
  for (uint32_t j = plan->outer; j >= 1; --j) {
    double *block = accumulators + width * j;
    const uint64_t index = plan->level_index[j];
    if (index == 0) {
      for (uint64_t x = 0; x < width; ++x) block[x] = value[x];
    } else {
      fold_sample(block, value, plan->n);
    }
    if (index + 1 < plan->level_count[j]) return;
    if (plan->level_sampling[j] == sampling_averaged)
      for (uint64_t x = 0; x < plan->n; ++x) block[x] = per_sample(block[x], plan->samples);
    value = block;
  }
  for (uint64_t x = 0; x < width; ++x) out[x] = value[x];
}

// The next point of the levels walked one point at a time; the first level
// that moved, or 0 when all are done.
uint32_t next_outer(batch_plan_t *plan) {
  for (uint32_t j = plan->outer; j >= 1; --j) {
    if (plan->level_index[j] + 1 < plan->level_count[j]) {
      ++plan->level_index[j];
      for (uint32_t i = j + 1; i <= plan->outer; ++i) plan->level_index[i] = 0;
      return j;
    }
  }
  return 0;
}

// Leaves the parents' values as the scalar sampler leaves them: each interval
// parent at its last sample point.
void leave_last_points(batch_plan_t *plan) {
  for (uint32_t j = 1; j <= plan->levels; ++j) {
    const uint64_t last = plan->level_count[j] - 1;
    plan->level_node[j]->value = plan->level_sampling[j] == sampling_unbounded
                                     ? plan->level_point[j]
                                     : plan->level_lo[j] + (static_cast<double>(last) + 0.5) * plan->level_width[j];
  }
}

int lanes_of_row(batch_plan_t *plan, batch_program_t *program, double *out, double *accumulators) {
  prepare_levels(plan);
  const uint64_t lanes = plan->level_lanes[plan->levels];
  for (uint32_t from = 1; from != 0; from = next_outer(plan)) {
    evaluate_instructions(plan, program, from, plan->levels);
    if (lane_rows(plan, program, lanes) != 0) return unusual;
    reduce_lanes(plan);
    fold_outer(plan, out, accumulators);
  }
  leave_last_points(plan);
  return 0;
}

// ---- Rows across the states of the innermost parent --------------------

// The innermost level as the sample points of all its parent's states side
// by side, each state's points where its offset says.
void prepare_block_level(batch_plan_t *plan) {
  const uint32_t k = plan->levels;
  const vel_node_t *parent = plan->level_node[k];
  uint64_t total = 0;
  for (uint64_t s = 0; s < plan->block_states; ++s) {
    const double lo = parent->state_values[s], hi = parent->state_values[s + 1];
    double point;
    uint64_t count = 1;
    plan->block_offset[s] = total;
    if (unbounded_interval_point(lo, hi, &point)) {
      plan->block_sampling[s] = sampling_unbounded;
      plan->block_point[s] = point;
      plan->block_points[total] = point;
    } else {
      const double width = (hi - lo) / static_cast<double>(plan->samples);
      plan->block_lo[s] = lo;
      plan->block_width[s] = width;
      plan->block_sampling[s] = width == 0.0 ? sampling_single : sampling_averaged;
      count = width == 0.0 ? 1 : plan->samples;
      for (uint64_t i = 0; i < count; ++i)
        plan->block_points[total + i] = lo + (static_cast<double>(i) + 0.5) * width;
    }
    for (uint64_t i = 0; i < count; ++i) plan->block_point_state[total + i] = static_cast<uint32_t>(s);
    total += count;
  }
  plan->block_offset[plan->block_states] = total;
  plan->level_count[k] = total;
  plan->level_lanes[k] = plan->level_lanes[k - 1] * total;
  prepare_spreads(plan);
}

// Averages the rows of the items first, first + stride, ... (count of them)
// into the row at `to`, as the scalar sampler averages a level's points.
void average_items(double *rows, uint64_t n, uint64_t to, uint64_t first, uint64_t stride, uint64_t count,
                   bool averaged, uint64_t samples) {
  const uint64_t width = 3 * n;
  double *mean = rows + width * to;
  if (to != first)
    for (uint64_t x = 0; x < width; ++x) mean[x] = rows[width * first + x];
  for (uint64_t i = 1; i < count; ++i) fold_sample(mean, rows + width * (first + i * stride), n);
  if (averaged)
    for (uint64_t x = 0; x < n; ++x) mean[x] = per_sample(mean[x], samples);
}

// The innermost averages of the block: the mean, minimum and maximum over
// each state's points of the lanes' values (value j of lane l at
// values[l * stride + j]; one lane's minimum and maximum are its value),
// folded in fold_sample's order.  State s of prefix p (the lanes of the
// levels outside) goes to item p * states + s of the lane rows, which may
// hold the values themselves: an item is written after its lanes are read,
// over no lane still to be read.
void average_block_points(batch_plan_t *plan, const double *values, uint64_t stride) {
  const uint64_t n = plan->n, states = plan->block_states, total = plan->level_count[plan->levels];
  const uint64_t prefixes = plan->level_lanes[plan->levels - 1];
  for (uint64_t p = 0; p < prefixes; ++p)
    for (uint64_t s = 0; s < states; ++s) {
      const double *first = values + (p * total + plan->block_offset[s]) * stride;
      const uint64_t count = plan->block_offset[s + 1] - plan->block_offset[s];
      const bool averaged = plan->block_sampling[s] == sampling_averaged;
      double *row = plan->lane_rows + 3 * n * (p * states + s);
      for (uint64_t j = 0; j < n; ++j) {
        double mean = first[j], low = mean, high = mean;
        for (uint64_t i = 1; i < count; ++i) {
          const double v = first[i * stride + j];
          mean += v;
          if (v < low) low = v;
          if (high < v) high = v;
        }
        if (averaged) mean = per_sample(mean, plan->samples);
        row[j] = mean;
        row[n + j] = low;
        row[2 * n + j] = high;
      }
    }
}
// The block's rows of a model whose expression is Distribution(w1, ..., wn)
// itself, argument by argument over the lanes: each lane's weights summed in
// argument order, each divided by the sum (as explicit_distribution makes
// them), and the quotients averaged over each state's points as
// average_block_points averages them.  Within the lanes of one prefix an
// argument either varies with every lane (the innermost level) or is one
// value, so it is read with a step of 1 or 0.  A lane with a failed,
// negative or all-zero weight leaves its state to the scalar path, which
// reports it.  Leaves state s of prefix p at item p * states + s; false: not
// such a model.
bool distribution_block(batch_plan_t *plan, batch_program_t *program) {
  const batch_shape_t &shape = program->shapes[program->root];
  const uint64_t n = plan->n, states = plan->block_states, total = plan->level_count[plan->levels];
  if (shape.kind != shape_builder || shape.expression->operator_ != vel_op_Distribution ||
      shape.argument_count != n)
    return false;
  const uint64_t prefixes = plan->level_lanes[plan->levels - 1];
  const double **column = plan->argument_columns;
  uint64_t *step = plan->argument_steps;
  double *sum = plan->lane_sums, *quotient = plan->lane_quotients;
  uint8_t *ok = program->block_ok;
  for (uint64_t p = 0; p < prefixes; ++p) {
    const uint64_t base = p * total;
    for (uint64_t a = 0; a < n; ++a) {
      const int32_t i = program->arguments[shape.arguments + a];
      const uint32_t level = program->code[i].level;
      const double *value = register_values(plan, program, i);
      const uint8_t *failed = register_failures(plan, program, i);
      const bool inner = level == plan->levels;
      const uint64_t at = level == 0 ? 0 : base / plan->level_spread[level * (plan->levels + 1) + plan->levels];
      column[a] = inner ? value + base : value + at;
      step[a] = inner ? 1 : 0;
      if (plan->any_failed[i]) {
        if (!inner && failed[at])
          for (uint64_t s = 0; s < states; ++s) ok[s] = 0;
        if (inner)
          for (uint64_t k = 0; k < total; ++k)
            if (failed[base + k]) ok[plan->block_point_state[k]] = 0;
      }
    }
    // Each lane's sum, and its lowest weight (or zero) in `quotient` for now.
    double *lowest = quotient;
    for (uint64_t k = 0; k < total; ++k) sum[k] = lowest[k] = 0.0;
    for (uint64_t a = 0; a < n; ++a) {
      const double *w = column[a];
      if (step[a]) {
        for (uint64_t k = 0; k < total; ++k) {
          sum[k] += w[k];
          lowest[k] = w[k] < lowest[k] ? w[k] : lowest[k];
        }
      } else {
        const double c = w[0];
        for (uint64_t k = 0; k < total; ++k) {
          sum[k] += c;
          lowest[k] = c < lowest[k] ? c : lowest[k];
        }
      }
    }
    for (uint64_t k = 0; k < total; ++k)
      if (lowest[k] < 0.0 || sum[k] == 0.0) ok[plan->block_point_state[k]] = 0;
    for (uint64_t j = 0; j < n; ++j) {
      // The quotients first, in a loop the compiler vectorises; then each
      // state's mean, minimum and maximum in order.
      if (step[j]) {
        for (uint64_t k = 0; k < total; ++k) quotient[k] = column[j][k] / sum[k];
      } else {
        for (uint64_t k = 0; k < total; ++k) quotient[k] = column[j][0] / sum[k];
      }
      for (uint64_t s = 0; s < states; ++s) {
        const uint64_t first = plan->block_offset[s], last = plan->block_offset[s + 1];
        double mean = quotient[first], low = mean, high = mean;
        for (uint64_t k = first + 1; k < last; ++k) {
          const double v = quotient[k];
          mean += v;
          if (v < low) low = v;
          if (high < v) high = v;
        }
        if (plan->block_sampling[s] == sampling_averaged) mean = per_sample(mean, plan->samples);
        double *row = plan->lane_rows + 3 * n * (p * states + s);
        row[j] = mean;
        row[n + j] = low;
        row[2 * n + j] = high;
      }
    }
  }
  return true;
}
// Every state's row of the block, its innermost averages made: averaged over
// the levels outside it.  Leaves state s's row at item s.
void average_outer_levels(batch_plan_t *plan) {
  const uint64_t states = plan->block_states;
  for (uint32_t j = plan->levels - 1; j >= 1; --j) {
    const uint64_t count = plan->level_count[j];
    if (count == 1) continue;
    const uint64_t groups = plan->level_lanes[j - 1];
    for (uint64_t g = 0; g < groups; ++g)
      for (uint64_t s = 0; s < states; ++s)
        average_items(plan->lane_rows, plan->n, g * states + s, g * count * states + s, states, count, true,
                      plan->samples);
  }
}
// Computes the rows of every state of the innermost parent at once.
void compute_block(batch_plan_t *plan, batch_program_t *program) {
  prepare_levels(plan);
  plan->block_active = 1;
  prepare_block_level(plan);
  evaluate_instructions(plan, program, 1, plan->levels);
  plan->block_active = 0;
  const uint64_t lanes = plan->level_lanes[plan->levels], total = plan->level_count[plan->levels];
  for (uint64_t s = 0; s < plan->block_states; ++s) program->block_ok[s] = 1;
  const int32_t root = program->root;
  if (!plan->probability && program->code[root].level == plan->levels) {
    // A utility whose value varies over every lane: its values are the rows.
    if (plan->any_failed[root])
      for (uint64_t lane = 0; lane < lanes; ++lane)
        if (register_failures(plan, program, root)[lane]) program->block_ok[plan->block_point_state[lane % total]] = 0;
    average_block_points(plan, register_values(plan, program, root), 1);
  } else if (!plan->probability || !distribution_block(plan, program)) {
    for (uint64_t lane = 0; lane < lanes; ++lane) {
      double *row = plan->lane_rows + 3 * plan->n * lane;
      int code;
      if (plan->probability) {
        code = lane_row(plan, program, lane, row);
      } else {
        bool failed = false;
        row[0] = value_at(plan, program, root, lane, &failed);
        code = failed ? unusual : 0;
      }
      if (code != 0) program->block_ok[plan->block_point_state[lane % total]] = 0;
    }
    average_block_points(plan, plan->lane_rows, 3 * plan->n);
  }
  average_outer_levels(plan);
  const uint64_t width = 3 * plan->n;
  for (uint64_t x = 0; x < width * plan->block_states; ++x) program->block_rows[x] = plan->lane_rows[x];
  program->block_serial = plan->serial;
}

// A row of the block held: state s's, with the parents' values left as the
// scalar sampler leaves them.
int row_of_block(batch_plan_t *plan, const batch_program_t *program, uint64_t s, double *out) {
  if (!program->block_ok[s]) return unusual;
  const double *row = program->block_rows + 3 * plan->n * s;
  for (uint64_t x = 0; x < 3 * plan->n; ++x) out[x] = row[x];
  for (uint32_t j = 1; j < plan->levels; ++j) {
    const uint64_t last = plan->level_count[j] - 1;
    plan->level_node[j]->value = plan->level_sampling[j] == sampling_unbounded
                                     ? plan->level_point[j]
                                     : plan->level_lo[j] + (static_cast<double>(last) + 0.5) * plan->level_width[j];
  }
  const uint64_t last = plan->block_offset[s + 1] - 1;
  plan->level_node[plan->levels]->value = plan->block_points[last];
  return 0;
}

}  // namespace

int batch_row(batch_plan_t *plan, const vel_expression_t *expression, uint64_t changed, double *out,
              double *accumulators) {
  ++plan->serial;
  for (uint64_t i = changed; i <= plan->table->node_count; ++i) plan->changed_at[i] = plan->serial;
  batch_program_t *program = program_for(plan, expression);
  if (!program->compiled) return unusual;
  // Numbered parents' values, which the configuration's terms read.
  for (uint64_t i = 0; i < plan->table->node_count; ++i) {
    vel_node_t *parent = plan->table->nodes[i];
    if (parent != plan->node && parent->subtype == vel_subtype_numbered)
      parent->value = parent->state_values[parent->state_index];
  }
  // What the row's leaves refuse is refused again on the scalar path, which
  // writes the messages: nothing is written here.
  vel_domain_t *domain = plan->node->domain;
  FILE *log = domain->log_file;
  domain->log_file = nullptr;
  // A block holds while no table node before the block parent has changed
  // since it was computed.
  const uint32_t position = plan->level_position[plan->levels];
  const bool block = plan->block_states && !program->reads_block_node;
  const bool held = block && program->block_serial != 0 &&
                    (position == 0 || plan->changed_at[position - 1] <= program->block_serial);
  if (!held) {
    evaluate_configuration(plan, program);
    // Steps of min, max, and, or over values of the configuration alone.
    evaluate_instructions(plan, program, 0, 0);
  }
  int code;
  if (block) {
    if (!held) compute_block(plan, program);
    code = row_of_block(plan, program, static_cast<uint64_t>(plan->level_node[plan->levels]->state_index), out);
  } else {
    code = lanes_of_row(plan, program, out, accumulators);
  }
  domain->log_file = log;
  return code;
}
