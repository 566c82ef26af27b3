// Y = PERT(0, Mode, Top) over Mode (sampled interval) and Top (numbered): the
// beta shapes once per sample point, one beta_ratio per bound inside [0, Top];
// the normaliser's ends 0 and Top are bounds of Y, so it costs no call.
#include "bare_table.h"
#include "ratio_bounds.h"
#include "sampling.h"
#include "special/interval_difference.h"
#include "special/special.h"

using namespace vel::special;

namespace {

constexpr double kTops[] = {10, 12, 14, 16, 20};

class Pert : public BareTable {
 public:
  Pert() : mode_(bare::sample_states(bare::steps(0.5, 0.125, 72), 3)), y_(bare::steps(0, 0.0625, 320)) {
    n_ = y_.size() - 1;
    for (double top : kTops) {
      Clamp clamp{std::vector<double>(y_.size()), std::vector<char>(y_.size()), 0, 0};
      bare::clamp_bounds(y_, 0.0, top, clamp.at, clamp.needed);
      for (size_t j = 0; j < y_.size(); ++j) {
        if (clamp.at[j] == 0.0) clamp.first = j;
        if (clamp.at[j] == top && clamp.last == 0) clamp.last = j;
      }
      clamps_.push_back(clamp);
    }
    p_.resize(y_.size());
    q_.resize(y_.size());
    mean_.resize(n_);
    scratch_.resize(n_);
  }

  size_t entries() const override { return mode_.size() * std::size(kTops) * n_; }

  void fill(float *table) override {
    const double a = 0;
    const double lambda = 4.0;
    for (const bare::SampledState &mode : mode_)
      for (size_t t = 0; t < std::size(kTops); ++t) {
        const double b = kTops[t];
        const Clamp &clamp = clamps_[t];
        const double range = b - a;
        bare::mean_row(mode, mean_.data(), scratch_.data(), n_, [&](double m, double *row) {
          const double alpha = lambda * (m - a) / (b - a) + 1;
          const double beta = lambda * (b - m) / (b - a) + 1;
          for (size_t j = 0; j <= n_; ++j) {
            if (!clamp.needed[j]) continue;
            const double u = (clamp.at[j] - a) / range;
            beta_ratio(&p_[j], &q_[j], alpha, beta, u, 1.0 - u);
          }
          const double z = difference_in_smaller_tail(p_[clamp.first], q_[clamp.first], p_[clamp.last],
                                                      q_[clamp.last]);
          for (size_t i = 0; i < n_; ++i) {
            const double d = clamp.at[i] < clamp.at[i + 1]
                                 ? difference_in_smaller_tail(p_[i], q_[i], p_[i + 1], q_[i + 1])
                                 : 0.0;
            row[i] = d / z;
          }
        });
        bare::store(mean_.data(), n_, table);
      }
  }

 private:
  // Y's bounds clamped to [0, Top]; first and last: the bounds at 0 and Top.
  struct Clamp {
    std::vector<double> at;
    std::vector<char> needed;
    size_t first, last;
  };

  std::vector<bare::SampledState> mode_;
  std::vector<double> y_, p_, q_, mean_, scratch_;
  std::vector<Clamp> clamps_;
  size_t n_;
};

}  // namespace

std::unique_ptr<BareTable> make_pert() { return std::make_unique<Pert>(); }
