// Evaluating a compiled program's instructions over lanes.  An instruction at
// interval level j holds one value per combination of the sample points of
// the lane levels up to j (one value when j is walked point by point); an
// operand of a lower level is repeated across the lanes of the higher one.
// Each value carries whether its computation failed in that lane; a failure
// counts only where the lane uses the value (a branch not taken, a
// condition after a false one in and, are not used).
#include <cstring>

#include "table_generator/batch_plan.h"
#include "table_generator/numeric_operators.h"
#include "table_generator/table_generator.h"

namespace {

struct Operand {
  const double *value;
  const uint8_t *failed;  // NULL: no lane failed
  uint64_t spread;        // lanes of the result per value of the operand
};

class Evaluation {
 public:
  Evaluation(batch_plan_t *plan, batch_program_t *program) : plan_(plan), program_(program) {}

  void run(uint32_t i) {
    const batch_instruction_t &in = program_->code[i];
    lanes_ = lanes_of(in.level);
    value_ = register_values(plan_, program_, static_cast<int32_t>(i));
    failed_ = register_failures(plan_, program_, static_cast<int32_t>(i));
    const Operand guard = operand(in.guard, in.level);
    guard_ = guard.value;
    guard_spread_ = guard.spread;
    guard_when_ = in.guard_when != 0;
    const Operand a = operand(in.a, in.level), b = operand(in.b, in.level), c = operand(in.c, in.level);
    bool any = false;
    switch (in.kind) {
      case op_sample: sample(in.level); break;
      case op_unary: any = unary(in.code, a); break;
      case op_binary: any = binary(in.code, a, b); break;
      case op_min_step:
      case op_max_step: any = steps(in.kind == op_min_step, a, b); break;
      case op_compare: any = compare(in.code, a, b); break;
      case op_and:
      case op_or: any = logic(in.kind == op_and, a, b); break;
      case op_not: any = negation(a); break;
      case op_if: any = choice(a, b, c); break;
      default: break;
    }
    plan_->any_failed[i] = any;
  }

 private:
  uint64_t lanes_of(uint32_t level) const { return level <= plan_->outer ? 1 : plan_->level_lanes[level]; }

  // Instruction i's values as an operand at `level`; none (no values, a
  // spread of 1) for i < 0.
  Operand operand(int32_t i, uint32_t level) const {
    if (i < 0) return Operand{nullptr, nullptr, 1};
    const uint32_t from = program_->code[i].level;
    return Operand{register_values(plan_, program_, i),
                   plan_->any_failed[i] ? register_failures(plan_, program_, i) : nullptr,
                   plan_->level_spread[from * (plan_->levels + 1) + level]};
  }

  // Walks an operand's values along the result's lanes in order, each value
  // `spread` lanes in a row, without a division per lane.
  struct Cursor {
    const Operand &o;
    uint64_t index = 0, count = 0;
    explicit Cursor(const Operand &operand) : o(operand) {}
    uint64_t next() {
      const uint64_t at = index;
      if (++count == o.spread) count = 0, ++index;
      return at;
    }
    double value(uint64_t at) const { return o.value[at]; }
    uint8_t failed(uint64_t at) const { return o.failed ? o.failed[at] : 0; }
  };

  // The sample points of level j: lo + (k + 0.5) width for its k-th point
  // (as the scalar sampler forms them), or the one point of an unbounded
  // state.  A lane level's point repeats over the levels inside it.
  void sample(uint32_t j) {
    const uint64_t count = plan_->level_count[j];
    const bool unbounded = plan_->level_sampling[j] == sampling_unbounded;
    const double lo = plan_->level_lo[j], width = plan_->level_width[j], one = plan_->level_point[j];
    auto point = [&](uint64_t k) { return unbounded ? one : lo + (static_cast<double>(k) + 0.5) * width; };
    if (j <= plan_->outer) {
      value_[0] = point(plan_->level_index[j]);
      return;
    }
    if (plan_->block_active && j == plan_->levels) {
      for (uint64_t k = 0; k < count; ++k) value_[k] = plan_->block_points[k];
    } else {
      for (uint64_t k = 0; k < count; ++k) value_[k] = point(k);
    }
    for (uint64_t lane = count; lane < lanes_; lane += count)
      for (uint64_t k = 0; k < count; ++k) value_[lane + k] = value_[k];
  }

  // Runs body(lane, a_index, b_index) over the result's lanes; an operand of
  // a lower level keeps each value for `spread` lanes in a row.
  template <typename Body>
  void each(const Operand &a, const Operand &b, Body body) {
    if (a.spread == 1 && b.spread == 1) {
      for (uint64_t lane = 0; lane < lanes_; ++lane) body(lane, lane, lane);
    } else if (b.spread == 1) {
      for (uint64_t lane = 0, ia = 0; lane < lanes_; ++ia)
        for (const uint64_t end = lane + a.spread; lane < end; ++lane) body(lane, ia, lane);
    } else if (a.spread == 1) {
      for (uint64_t lane = 0, ib = 0; lane < lanes_; ++ib)
        for (const uint64_t end = lane + b.spread; lane < end; ++lane) body(lane, lane, ib);
    } else {
      uint64_t ia = 0, ib = 0, ca = 0, cb = 0;
      for (uint64_t lane = 0; lane < lanes_; ++lane) {
        body(lane, ia, ib);
        if (++ca == a.spread) ca = 0, ++ia;
        if (++cb == b.spread) cb = 0, ++ib;
      }
    }
  }

  bool failures(const Operand &a, const Operand &b) {
    if (!a.failed && !b.failed) return false;
    bool any = false;
    Cursor ca(a), cb(b);
    for (uint64_t lane = 0; lane < lanes_; ++lane) {
      failed_[lane] = ca.failed(ca.next()) | cb.failed(cb.next());
      any |= failed_[lane] != 0;
    }
    return any;
  }


  // Runs an operator over the lanes; a library call under a guard only on
  // the lanes that take its branch (the others hold 0, which nothing uses).
  template <uint32_t Op, typename Apply>
  bool apply(const Operand &a, const Operand &b, bool any, Apply op) {
    if constexpr (numeric::calls_library(Op) || numeric::may_fail(Op)) {
      if (!any) std::memset(failed_, 0, lanes_);
      // Whether the lane takes the branch the value is for (always, without
      // a guard); each visits the lanes in order.
      const Operand guard{guard_, nullptr, guard_spread_};
      Cursor cg(guard);
      each(a, b, [&](uint64_t lane, uint64_t ia, uint64_t ib) {
        if constexpr (numeric::calls_library(Op)) {
          if (guard_ && (cg.value(cg.next()) != 0.0) != guard_when_) {
            value_[lane] = 0.0;
            return;
          }
        }
        if (op(ia, ib, &value_[lane])) {
          failed_[lane] = 1;
          any = true;
        }
      });
    } else {
      each(a, b, [&](uint64_t lane, uint64_t ia, uint64_t ib) { op(ia, ib, &value_[lane]); });
    }
    return any;
  }

  bool unary(uint32_t op, const Operand &a) {
    const Operand none{nullptr, nullptr, lanes_};
    const bool any = failures(a, none);
    return numeric::with_unary(op, [&]<uint32_t Op>() {
      return apply<Op>(a, none, any, [&](uint64_t ia, uint64_t, double *r) { return numeric::unary<Op>(a.value[ia], r); });
    });
  }

  bool binary(uint32_t op, const Operand &a, const Operand &b) {
    const bool any = failures(a, b);
    return numeric::with_binary(op, [&]<uint32_t Op>() {
      return apply<Op>(a, b, any, [&](uint64_t ia, uint64_t ib, double *r) {
        return numeric::binary<Op>(a.value[ia], b.value[ib], r);
      });
    });
  }

  bool steps(bool minimum, const Operand &a, const Operand &b) {
    const bool any = failures(a, b);
    if (minimum) {
      each(a, b, [&](uint64_t lane, uint64_t ia, uint64_t ib) { value_[lane] = numeric::min_step(a.value[ia], b.value[ib]); });
    } else {
      each(a, b, [&](uint64_t lane, uint64_t ia, uint64_t ib) { value_[lane] = numeric::max_step(a.value[ia], b.value[ib]); });
    }
    return any;
  }

  bool compare(uint32_t op, const Operand &a, const Operand &b) {
    const bool any = failures(a, b);
    numeric::with_comparison(op, [&]<uint32_t Op>() {
      each(a, b, [&](uint64_t lane, uint64_t ia, uint64_t ib) {
        value_[lane] = numeric::compare<Op>(a.value[ia], b.value[ib]) ? 1.0 : 0.0;
      });
      return 0;
    });
    return any;
  }

  // and / or as the scalar evaluator runs them: the second condition counts
  // only where the first did not already decide.
  bool logic(bool conjunction, const Operand &a, const Operand &b) {
    bool any = false;
    Cursor ca(a), cb(b);
    for (uint64_t lane = 0; lane < lanes_; ++lane) {
      const uint64_t ia = ca.next(), ib = cb.next();
      const bool first = ca.value(ia) != 0.0;
      const bool decided = conjunction ? !first : first;
      const uint8_t failed = ca.failed(ia) | (decided ? 0 : cb.failed(ib));
      value_[lane] = decided ? (first ? 1.0 : 0.0) : (cb.value(ib) != 0.0 ? 1.0 : 0.0);
      failed_[lane] = failed;
      any |= failed != 0;
    }
    return any;
  }

  bool negation(const Operand &a) {
    const Operand none{nullptr, nullptr, lanes_};
    const bool any = failures(a, none);
    Cursor ca(a);
    for (uint64_t lane = 0; lane < lanes_; ++lane) value_[lane] = ca.value(ca.next()) != 0.0 ? 0.0 : 1.0;
    return any;
  }

  // if: only the chosen branch's failure counts.
  bool choice(const Operand &c, const Operand &t, const Operand &f) {
    bool any = false;
    Cursor cc(c), ct(t), cf(f);
    for (uint64_t lane = 0; lane < lanes_; ++lane) {
      const uint64_t ic = cc.next(), it = ct.next(), jf = cf.next();
      const bool yes = cc.value(ic) != 0.0;
      value_[lane] = yes ? ct.value(it) : cf.value(jf);
      const uint8_t failed = cc.failed(ic) | (yes ? ct.failed(it) : cf.failed(jf));
      failed_[lane] = failed;
      any |= failed != 0;
    }
    return any;
  }

  batch_plan_t *plan_;
  batch_program_t *program_;
  uint64_t lanes_ = 1;
  double *value_ = nullptr;
  uint8_t *failed_ = nullptr;
  const double *guard_ = nullptr;  // the guard's condition values; NULL: none
  uint64_t guard_spread_ = 1;
  bool guard_when_ = false;
};

}  // namespace

void evaluate_instructions(batch_plan_t *plan, batch_program_t *program, uint32_t from_level,
                           uint32_t to_level) {
  Evaluation evaluation(plan, program);
  for (uint32_t i = 0; i < program->count; ++i) {
    const uint32_t level = program->code[i].level;
    if (level >= from_level && level <= to_level && program->code[i].kind != op_row) evaluation.run(i);
  }
}
