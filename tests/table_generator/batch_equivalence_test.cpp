// Batch evaluation against the scalar path: random models over sampled
// interval parents (bounded, unbounded and zero-width states) and discrete
// parents, whose expressions mix every operator the batch evaluator takes
// with failures in branches taken and not taken, are generated both ways.
// The tables must agree to the bit, and the log, the code, the message and
// the failing expression must be the same.
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "generation_test_support.h"

namespace {

using gentest::kInf;

struct Outcome {
  int code;
  std::string log;
  std::string message;
  long expression;
  std::vector<uint32_t> bits;
  std::vector<double> values;  // the parents' values afterwards
};

class Expressions {
 public:
  explicit Expressions(unsigned seed) : random_(seed) {}

  // A number over the parents A, B (interval), N (numbered), F (boolean).
  std::string number(int depth) {
    if (depth <= 0 || pick(4) == 0) return leaf();
    switch (pick(12)) {
      case 0: return "(" + number(depth - 1) + " + " + number(depth - 1) + ")";
      case 1: return "(" + number(depth - 1) + " - " + number(depth - 1) + ")";
      case 2: return "(" + number(depth - 1) + " * " + number(depth - 1) + ")";
      case 3: return "(" + number(depth - 1) + " / " + number(depth - 1) + ")";
      case 4: return "(" + number(depth - 1) + " ^ " + number(depth - 1) + ")";
      case 5: return std::string(pick_of({"log", "sqrt", "exp", "abs", "floor", "log2", "tanh"})) + "(" +
                     number(depth - 1) + ")";
      case 6: return "mod(" + number(depth - 1) + ", " + number(depth - 1) + ")";
      case 7: return std::string(pick(2) ? "min(" : "max(") + number(depth - 1) + ", " + number(depth - 1) +
                     ", " + number(depth - 1) + ")";
      case 8: return "if(" + condition(depth - 1) + ", " + number(depth - 1) + ", " + number(depth - 1) + ")";
      case 9: return "-" + number(depth - 1);
      case 10: return "state_index(A)";
      default: return leaf();
    }
  }

  std::string condition(int depth) {
    switch (pick(6)) {
      case 0: return number(depth) + pick_of({" < ", " >= ", " == ", " != "}) + number(depth);
      case 1: return "and(" + condition(depth - 1) + ", " + condition(depth - 1) + ")";
      case 2: return "or(" + condition(depth - 1) + ", " + condition(depth - 1) + ")";
      case 3: return "not(" + condition(depth - 1) + ")";
      case 4: return "F";
      default: return "(A > " + leaf() + ")";
    }
  }

  // A row of a node with states: plain values, distributions, if and truncate.
  std::string distribution(const std::string &kind, int depth) {
    if (depth > 0 && pick(4) == 0)
      return "if(" + condition(depth - 1) + ", " + distribution(kind, depth - 1) + ", " +
             distribution(kind, depth - 1) + ")";
    if (kind == "interval") {
      switch (pick(6)) {
        case 0: return "Normal(" + number(depth) + ", " + number(depth) + ")";
        case 1: return "truncate(" + number(depth) + ", Gamma(" + number(depth) + ", " + number(depth) + "))";
        case 2: return "truncate(Normal(" + number(depth) + ", 4), " + number(depth) + ")";
        case 3: return "PERT(0, " + number(depth) + ", 12)";
        case 4: return "Poisson(" + number(depth) + ")";
        default: return number(depth);
      }
    }
    if (kind == "numbered") {
      switch (pick(3)) {
        case 0: return "Distribution(" + number(depth) + ", " + number(depth) + ", " + number(depth) + ")";
        case 1: return "Binomial(2, " + number(depth) + ")";
        default: return "floor(" + number(depth) + ")";
      }
    }
    if (kind == "boolean") {
      switch (pick(3)) {
        case 0: return "NoisyOR(" + condition(depth) + ", " + number(depth) + ", F, 0.25)";
        case 1: return condition(depth);
        default: return "Distribution(" + number(depth) + ", " + number(depth) + ")";
      }
    }
    return pick(2) ? "Distribution(" + number(depth) + ", 1)" : "if(" + condition(depth) + ", \"x\", \"y\")";
  }

  unsigned pick(unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(random_); }

 private:
  std::string leaf() {
    switch (pick(6)) {
      case 0: return "A";
      case 1: return "B";
      case 2: return "N";
      case 3: return std::to_string(pick(7)) + ".5";
      case 4: return "A";
      default: return std::to_string(static_cast<int>(pick(9)) - 3);
    }
  }
  const char *pick_of(std::initializer_list<const char *> words) { return words.begin()[pick(words.size())]; }

  std::mt19937 random_;
};

class BatchEquivalence : public gentest::GenerationTest {
 protected:
  Outcome generate(vel_node_t *node, int scalar) {
    domain()->scalar_generation = scalar;
    vel_model_set_tables_outdated(vel_node_get_model(node), 1);
    vel_table_t *table = vel_node_get_table(node);
    std::fill(table->data, table->data + table->size, -7.0f);
    const std::size_t logged = log().size();
    Outcome outcome;
    outcome.code = vel_node_generate_table(node);
    outcome.log = log().substr(logged);
    outcome.message = vel_error_message();
    outcome.expression = vel_error_expression_index();
    outcome.bits.resize(table->size);
    std::memcpy(outcome.bits.data(), table->data, table->size * sizeof(float));
    for (vel_node_t *const *p = vel_node_get_parents(node); *p; ++p) outcome.values.push_back((*p)->value);
    return outcome;
  }
};

TEST_F(BatchEquivalence, RandomModelsAgreeToTheBit) {
  use_log();
  vel_node_t *a = interval("A", {-kInf, -2, 0, 0, 1.5, 4, kInf});
  vel_node_t *b = interval("B", {0, 1, 3, 3});
  vel_node_t *n = numbered("N", {0, 1, 2});
  vel_node_t *f = boolean("F");
  const char *kinds[] = {"utility", "interval", "numbered", "boolean", "labeled"};
  Expressions expressions(20261123);
  int generated = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::string kind = kinds[round % 5];
    const std::string name = "X" + std::to_string(round);
    vel_node_t *x = kind == "utility"    ? utility(name.c_str())
                    : kind == "interval" ? interval(name.c_str(), {-kInf, -1, 0, 2, 5, kInf})
                    : kind == "numbered" ? numbered(name.c_str(), {0, 1, 2})
                    : kind == "boolean"  ? boolean(name.c_str())
                                         : labeled(name.c_str(), {"x", "y"});
    // With B last, rows that differ only in B's state are batched together.
    if (round % 2) parents(x, {a, f, b, n});
    else parents(x, {a, f, n, b});
    const std::string one = kind == "utility" ? expressions.number(3) : expressions.distribution(kind, 3);
    const std::string two = kind == "utility" ? expressions.number(2) : expressions.distribution(kind, 2);
    vel_model_t *m = model(x, {f}, {one.c_str(), two.c_str()});
    // Now and then more sample points than fit in lanes: A is then walked
    // point by point around B's lanes.
    const unsigned samples = 1 + expressions.pick(4);
    vel_model_set_samples_per_interval(m, round % 25 == 24 ? 33 : samples);
    const Outcome batch = generate(x, 0);
    const Outcome scalar = generate(x, 1);
    SCOPED_TRACE(kind + ": " + one + " | " + two);
    EXPECT_EQ(batch.code, scalar.code);
    EXPECT_EQ(batch.log, scalar.log);
    EXPECT_EQ(batch.message, scalar.message);
    EXPECT_EQ(batch.expression, scalar.expression);
    EXPECT_EQ(batch.bits, scalar.bits);
    EXPECT_EQ(batch.values, scalar.values);
    if (batch.code == 0) ++generated;
  }
  EXPECT_GT(generated, 200) << "a fair share of the models generate whole";
}

// More points than fit in lanes: A and B are walked point by point around
// C's lanes, and A's terms must outlast B's steps.
TEST_F(BatchEquivalence, OuterLevelsWalkedPointByPoint) {
  vel_node_t *a = interval("A", {0, 1, 2});
  vel_node_t *b = interval("B", {0, 1, 3});
  vel_node_t *c = interval("C", {-1, 0, 1});
  vel_node_t *u = utility("U");
  parents(u, {a, b, c});
  vel_model_t *m = model(u, {}, {"(A * 2 + 1) * (B - A) + exp(C) * (A + B) - sqrt(A + 1) * C"});
  vel_model_set_samples_per_interval(m, 33);
  const Outcome batch = generate(u, 0);
  const Outcome scalar = generate(u, 1);
  EXPECT_EQ(batch.code, 0);
  EXPECT_EQ(batch.bits, scalar.bits);
}

}  // namespace
