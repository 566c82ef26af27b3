// Y = truncate(2.25, Gamma(Shape, Scale), 50.25) over Shape (sampled interval)
// and Scale (numbered): per sample point one gamma_ratio per bound inside
// the truncation and one at each truncation bound, shared by the normaliser
// and the states that the bounds cut.
#include "bare_table.h"
#include "ratio_bounds.h"
#include "sampling.h"
#include "special/interval_difference.h"
#include "special/special.h"

using namespace vel::special;

namespace {

constexpr double kLower = 2.25, kUpper = 50.25;
constexpr double kScales[] = {0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 5, 6};

class GammaTruncated : public BareTable {
 public:
  GammaTruncated() : shape_(bare::sample_states(bare::steps(1, 0.25, 100), 5)), y_(bare::steps(0, 0.5, 120)) {
    y_.push_back(bare::infinity);
    n_ = y_.size() - 1;
    clamped_.resize(y_.size());
    needed_.resize(y_.size());
    p_.resize(y_.size());
    q_.resize(y_.size());
    mean_.resize(n_);
    scratch_.resize(n_);
    bare::clamp_bounds(y_, kLower, kUpper, clamped_, needed_);
  }

  size_t entries() const override { return shape_.size() * std::size(kScales) * n_; }

  void fill(float *table) override {
    for (const bare::SampledState &shape : shape_)
      for (double scale : kScales) {
        bare::mean_row(shape, mean_.data(), scratch_.data(), n_, [&](double a, double *row) {
          double pl, ql, pu, qu;
          gamma_ratio(&pl, &ql, a, kLower / scale);
          gamma_ratio(&pu, &qu, a, kUpper / scale);
          const double z = difference_in_smaller_tail(pl, ql, pu, qu);
          for (size_t j = 0; j <= n_; ++j) {
            if (!needed_[j]) continue;
            if (clamped_[j] == kLower) {
              p_[j] = pl, q_[j] = ql;
            } else if (clamped_[j] == kUpper) {
              p_[j] = pu, q_[j] = qu;
            } else {
              gamma_ratio(&p_[j], &q_[j], a, clamped_[j] / scale);
            }
          }
          for (size_t i = 0; i < n_; ++i) {
            const double d = clamped_[i] < clamped_[i + 1]
                                 ? difference_in_smaller_tail(p_[i], q_[i], p_[i + 1], q_[i + 1])
                                 : 0.0;
            row[i] = d / z;
          }
        });
        bare::store(mean_.data(), n_, table);
      }
  }

 private:
  std::vector<bare::SampledState> shape_;
  std::vector<double> y_, clamped_, p_, q_, mean_, scratch_;
  std::vector<char> needed_;
  size_t n_;
};

}  // namespace

std::unique_ptr<BareTable> make_gamma_truncated() { return std::make_unique<GammaTruncated>(); }
