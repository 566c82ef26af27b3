// The binomial probability as one running product.
#include "table_generator/binomial.h"

#include "common/error.h"
#include "vel/vel.h"

namespace {

constexpr double two_to_64 = 18446744073709551616.0;

}  // namespace

// The first loop builds C(t, k) together with (pq)^min(k, t - k); the second
// supplies the remaining power of p or q.
double Binomial(double trials, double p, uint64_t k) {
  // The range test first: converting anything outside [0, 2^64) is undefined.
  if (!(trials >= 0 && trials < two_to_64)) {
    vel::fail(vel_error_invalid_argument);
    return -1.0;
  }
  const uint64_t t = static_cast<uint64_t>(trials);
  if (static_cast<double>(t) != trials || !(p >= 0 && p <= 1)) {
    vel::fail(vel_error_invalid_argument);
    return -1.0;
  }
  if (k > t) return 0.0;
  const double q = 1 - p;
  const uint64_t m = k > t - k ? k : t - k;
  double product = 1.0;
  for (uint64_t i = m + 1; i <= t; ++i) {
    product *= static_cast<double>(i) * p * q / static_cast<double>(i - m);
  }
  const double factor = t - k < k ? p : q;
  for (uint64_t i = 0; i < m - (t - m); ++i) product *= factor;
  // NaN (an overflow met by a zero factor) fails too.
  if (!(product <= 1.0)) {
    vel::fail(vel_error_computation);
    return -1.0;
  }
  return product;
}
