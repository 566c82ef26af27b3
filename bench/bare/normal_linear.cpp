// Y = Normal(2 * A - 0.5 * B + 1, 4) over sampled interval parents A (open
// ends) and B: per sample point one calerf value per bound of Y, shared by
// the two states it separates; the normaliser's ends are Y's open ends.
#include <cmath>

#include "bare_table.h"
#include "gauss_bounds.h"
#include "sampling.h"

namespace {

class NormalLinear : public BareTable {
 public:
  NormalLinear()
      : a_(bare::sample_states(open(bare::steps(-10, 0.5, 40)), 4)),
        b_(bare::sample_states(bare::steps(0, 0.5, 20), 4)),
        y_(open(bare::steps(-32, 0.5, 128))),
        n_(y_.size() - 1),
        bounds_(y_.size()),
        mean_(n_), scratch_a_(n_), scratch_b_(n_) {}

  size_t entries() const override { return a_.size() * b_.size() * n_; }

  void fill(float *table) override {
    const double s = std::sqrt(4.0 + 4.0);
    for (const bare::SampledState &a : a_)
      for (const bare::SampledState &b : b_) {
        bare::mean_row(a, mean_.data(), scratch_a_.data(), n_, [&](double xa, double *outer) {
          const double twice_a = 2 * xa;
          bare::mean_row(b, outer, scratch_b_.data(), n_, [&](double xb, double *row) {
            const double mean = twice_a - 0.5 * xb + 1;
            for (size_t j = 0; j <= n_; ++j) bounds_[j] = bare::gauss_bound(y_[j], mean, s);
            const double z = bare::gauss_interval(bounds_[0], bounds_[n_]);
            for (size_t i = 0; i < n_; ++i) row[i] = bare::gauss_interval(bounds_[i], bounds_[i + 1]) / z;
          });
        });
        bare::store(mean_.data(), n_, table);
      }
  }

 private:
  static std::vector<double> open(std::vector<double> bounds) {
    bounds.insert(bounds.begin(), -bare::infinity);
    bounds.push_back(bare::infinity);
    return bounds;
  }

  std::vector<bare::SampledState> a_, b_;
  std::vector<double> y_;
  size_t n_;
  std::vector<bare::GaussBound> bounds_;
  std::vector<double> mean_, scratch_a_, scratch_b_;
};

}  // namespace

std::unique_ptr<BareTable> make_normal_linear() { return std::make_unique<NormalLinear>(); }
