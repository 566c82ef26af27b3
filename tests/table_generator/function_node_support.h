// A generation fixture with helpers for function-node tests: function nodes
// of one expression, and the per-mode entry points.
#pragma once

#include <cmath>

#include "generation_test_support.h"

namespace gentest {

class FunctionNodeFixture : public GenerationTest {
 protected:
  // Links to other domains and mirrors set by a test are records the
  // domain does not own.
  ~FunctionNodeFixture() override {
    domain()->source_domain = nullptr;
    domain()->blocked_nodes = nullptr;
    domain()->mirrored_nodes = nullptr;
    domain()->mirror_list = nullptr;
  }

  vel_node_t *function_of(const char *name, const std::vector<vel_node_t *> &inputs, const char *text) {
    vel_node_t *f = real_function(name);
    parents(f, inputs);
    model(f, {}, {text});
    return f;
  }
  static int code(vel_node_t *f, int mode) {
    double value = 0;
    return vel_node_compute_value(f, mode, &value);
  }
  static double value(vel_node_t *f, int mode) {
    double value = NAN;
    EXPECT_EQ(vel_node_compute_value(f, mode, &value), 0) << vel_error_code();
    return value;
  }
  // Computes f in both modes; both must succeed.
  static void compute(vel_node_t *f) {
    for (int mode : {0, 1}) ASSERT_EQ(code(f, mode), 0) << f->name;
  }
};

}  // namespace gentest
