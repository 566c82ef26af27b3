// A domain built through the public builder, for the table generation and
// inference tests; the generation fixture adds a log in memory.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "common/error.h"
#include "host/records.h"
#include "table_generator/table_generator.h"
#include "vel/vel.h"

namespace gentest {

const double kInf = vel_infinity;

// A domain built through the public builder: discrete nodes of each subtype,
// stateless nodes, parents, models of parsed expressions, and the tables and
// beliefs read back.
class DomainBuilder {
 public:
  vel_domain_t *domain() const { return domain_.get(); }
  // Deletes the domain and starts an empty one.
  void renew() { domain_.reset(vel_domain_new()); }

  vel_node_t *labeled(const char *name, const std::vector<const char *> &labels,
                      int category = vel_category_chance);
  vel_node_t *boolean(const char *name, int category = vel_category_chance);
  vel_node_t *numbered(const char *name, const std::vector<double> &values,
                       int category = vel_category_chance);
  vel_node_t *interval(const char *name, const std::vector<double> &bounds,
                       int category = vel_category_chance);
  vel_node_t *continuous(const char *name, double mean = 0, double variance = 0);
  vel_node_t *utility(const char *name);
  vel_node_t *real_function(const char *name);
  // A discrete node of `states` states (labeled s0, s1, ... unless `subtype`
  // says otherwise) or, with vel_subtype_none, a stateless one; with these
  // parents and, when `table` is not empty, this table.
  vel_node_t *add(const char *name, size_t states, const std::vector<vel_node_t *> &parents = {},
                  const std::vector<double> &table = {}, int category = vel_category_chance,
                  int subtype = vel_subtype_labeled);
  void parents(vel_node_t *node, const std::vector<vel_node_t *> &parents);

  // A model over `model_nodes` whose expressions are parsed from `texts`
  // (nullptr: missing).
  static vel_model_t *model(vel_node_t *node, std::vector<vel_node_t *> model_nodes,
                            const std::vector<const char *> &texts);
  // The node's table entries, widened.
  static std::vector<double> table(vel_node_t *node);
  static std::vector<double> beliefs(const vel_node_t *node);


 private:
  struct Deleter {
    void operator()(vel_domain_t *domain) const { vel_domain_delete(domain); }
  };
  std::unique_ptr<vel_domain_t, Deleter> domain_{vel_domain_new()};
};

class GenerationTest : public ::testing::Test, public DomainBuilder {
 protected:
  ~GenerationTest() override;

  // The domain's log goes to memory; log() reads everything written so far.
  void use_log();
  // Every write to the log fails.
  void use_failing_log();
  std::string log();

  // Compiled, sum equilibrium, normal evidence mode; beliefs on `node`.
  void propagate(vel_node_t *node, const std::vector<double> &beliefs);

 private:
  void close_log();
  FILE *log_file_ = nullptr;
  char *log_buffer_ = nullptr;
  size_t log_size_ = 0;
};

}  // namespace gentest
