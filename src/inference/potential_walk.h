// The walk over the entries of a potential in storage order that keeps the
// matching index into a smaller table over some of its variables: the one
// loop under initialisation, marginalisation, absorption and results.
#pragma once

#include <cstdint>
#include <vector>

namespace vel::inference {

// Calls f(i, j) for every entry i of a potential with these state counts
// (the last varying fastest), j being the matching entry of the table that
// `strides` reach.  Allocates one odometer per walk, nothing per entry.
template <class F>
void walk(const std::vector<uint64_t> &counts, const std::vector<uint64_t> &strides, F &&f) {
  const std::size_t m = counts.size();
  if (m == 0) {
    f(uint64_t{0}, uint64_t{0});
    return;
  }
  uint64_t total = 1;
  for (uint64_t count : counts) total *= count;
  if (total == 0) return;
  std::vector<uint64_t> state(m, 0);
  const uint64_t inner = counts[m - 1], step = strides[m - 1];
  uint64_t j = 0;
  for (uint64_t i = 0; i < total;) {
    for (uint64_t k = 0; k < inner; ++k, ++i, j += step) f(i, j);
    j -= step * inner;
    for (std::size_t d = m - 1; d-- > 0;) {
      if (++state[d] < counts[d]) {
        j += strides[d];
        break;
      }
      j -= strides[d] * (counts[d] - 1);
      state[d] = 0;
    }
  }
}

}  // namespace vel::inference
