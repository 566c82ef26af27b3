// The ends of intervals, evaluated once each.  An interval function needs
// the values of special functions at its two ends; when a distribution is
// spread over the states of a node, neighbouring states share an end (and
// the first and last states may share the truncation bounds' ends), so the
// interval functions here take a cache of ends and compute each end the
// first time it is asked for.  The arithmetic is that of the plain interval
// functions, which are built on the same routines, so results are the same
// to the bit whichever way an end was obtained.
#pragma once

#include <cstdint>
#include <cstring>

namespace vel::special {

// A few ends, found again by the exact bits of their point.  The first two
// ends stored stay (a row's normaliser asks first, for the truncation
// bounds, which the first and last states may reach); later ones take turns
// in the other slots.  Only the end stored last (where a row's next state
// starts) and the two pinned ones are looked for: an end made again gives
// the same bits, so a miss costs time, never a difference.
template <typename End>
class EndCache {
 public:
  // The end at `point`, made by make(end) when it is not found.
  template <typename Make>
  End &at(double point, Make make) {
    uint64_t bits;
    std::memcpy(&bits, &point, sizeof bits);
    if (used_ > 0) {
      if (slots_[last_].bits == bits) return slots_[last_].end;
      if (slots_[0].bits == bits) return slots_[0].end;
      if (used_ > 1 && slots_[1].bits == bits) return slots_[1].end;
    }
    last_ = used_ < size ? used_++ : pinned + (turn_++ % (size - pinned));
    slots_[last_].bits = bits;
    make(slots_[last_].end);
    return slots_[last_].end;
  }

 private:
  static constexpr unsigned size = 4;
  static constexpr unsigned pinned = 2;
  struct Slot {
    uint64_t bits;
    End end;
  };
  Slot slots_[size];
  unsigned used_ = 0;
  unsigned turn_ = 0;
  unsigned last_ = 0;
};

// An end of a normal interval: the standardised point and the values of
// Cody's erf and erfc at it and at its negative, each computed when first
// needed.
struct GaussEnd {
  double z;
  double value[4];  // calerf(0, z), calerf(0, -z), calerf(1, z), calerf(1, -z)
  unsigned known;   // bit i: value[i] is computed
};

// An end of an interval of a ratio function: the lower and upper tails
// there, or the failure code of the ratio function.
struct RatioEnd {
  double lower;
  double upper;
  int code;
};

using GaussEnds = EndCache<GaussEnd>;
using RatioEnds = EndCache<RatioEnd>;
using TailEnds = EndCache<double>;

// The interval functions of special.h, with their ends taken from a cache
// that lives as long as the parameters stay the same.
double gauss_interval(double x1, double x2, double mean, double variance, GaussEnds &ends);
double log_normal_interval(double x1, double x2, double mean, double variance, GaussEnds &ends);
double beta_interval(double x1, double x2, double alpha, double beta, double lower, double upper,
                     RatioEnds &ends);
double gamma_interval(double x1, double x2, double shape, double scale, RatioEnds &ends);
double weibull_interval(double x1, double x2, double k, double lambda, TailEnds &ends);
double binomial_interval(double x1, double x2, double n, double p, double q, RatioEnds &ends);
double poisson_interval(double x1, double x2, double lambda, RatioEnds &ends);
double negative_binomial_interval(double x1, double x2, double r, double p, double q, RatioEnds &ends);

}  // namespace vel::special
