// A domain built through the public builder, with its log in memory, for the
// table generation tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "common/error.h"
#include "host/records.h"
#include "table_generator/table_generator.h"
#include "vel/vel.h"

namespace gentest {

const double kInf = vel_infinity;

class GenerationTest : public ::testing::Test {
 protected:
  GenerationTest();
  ~GenerationTest() override;

  // The domain's log goes to memory; log() reads everything written so far.
  void use_log();
  // Every write to the log fails.
  void use_failing_log();
  std::string log();

  vel_node_t *labeled(const char *name, const std::vector<const char *> &labels,
                      int category = vel_category_chance);
  vel_node_t *boolean(const char *name, int category = vel_category_chance);
  vel_node_t *numbered(const char *name, const std::vector<double> &values,
                       int category = vel_category_chance);
  vel_node_t *interval(const char *name, const std::vector<double> &bounds,
                       int category = vel_category_chance);
  vel_node_t *utility(const char *name);
  vel_node_t *real_function(const char *name);
  void parents(vel_node_t *node, const std::vector<vel_node_t *> &parents);

  // A model over `model_nodes` whose expressions are parsed from `texts`
  // (nullptr: missing).
  vel_model_t *model(vel_node_t *node, std::vector<vel_node_t *> model_nodes,
                     const std::vector<const char *> &texts);
  // The node's table entries, widened.
  std::vector<double> table(vel_node_t *node);
  // Compiled, sum equilibrium, normal evidence mode; beliefs on `node`.
  void propagate(vel_node_t *node, const std::vector<double> &beliefs);

  vel_domain_t *domain_;

 private:
  void close_log();
  FILE *log_file_ = nullptr;
  char *log_buffer_ = nullptr;
  size_t log_size_ = 0;
};

}  // namespace gentest
