// The binomial probability as one running product.
#pragma once

#include <cstdint>

// Probability of k successes in `trials` trials of probability p: without
// factorials or logarithms, so it is exact in its structure for whole
// numbers of trials.  -1.0 with error 37 when trials is not a whole number
// that fits 64 bits or p lies outside [0, 1]; 0 when k > trials; -1.0 with
// error 38 when the product cannot be formed (exceeds 1).
double Binomial(double trials, double p, uint64_t k);
