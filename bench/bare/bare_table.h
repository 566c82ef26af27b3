// A benchmark model's table computed by a bare loop: only the arithmetic the
// table needs, in the generator's order of operations, so that the result is
// bit-identical to the program's while nothing else is done.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

class BareTable {
 public:
  virtual ~BareTable() = default;
  virtual size_t entries() const = 0;
  // Writes the whole table in storage order; allocates nothing.
  virtual void fill(float *table) = 0;
};

// The table of bench/models/NAME.yaml, or nullptr for an unknown name.
std::unique_ptr<BareTable> make_bare_table(std::string_view name);

std::unique_ptr<BareTable> make_utility_expressions();
std::unique_ptr<BareTable> make_distribution_weights();
std::unique_ptr<BareTable> make_normal_linear();
std::unique_ptr<BareTable> make_gamma_truncated();
std::unique_ptr<BareTable> make_pert();
std::unique_ptr<BareTable> make_poisson_interval();
std::unique_ptr<BareTable> make_gamma_numbered();
