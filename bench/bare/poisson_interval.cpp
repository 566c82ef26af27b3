// Count = Poisson(Rate) on unit intervals [0, 1), ..., [127, inf) over Rate
// (sampled interval): per sample point one gamma_ratio per inner bound; the
// bound 0 stands for the whole lower tail and inf for none.
#include <cmath>

#include "bare_table.h"
#include "sampling.h"
#include "special/interval_difference.h"
#include "special/special.h"

using namespace vel::special;

namespace {

class PoissonInterval : public BareTable {
 public:
  PoissonInterval() : rate_(bare::sample_states(bare::steps(0, 0.125, 800), 5)), y_(bare::steps(0, 1, 127)) {
    y_.push_back(bare::infinity);
    n_ = y_.size() - 1;
    for (double x : y_) counts_.push_back(std::ceil(x));
    w_.resize(y_.size());
    v_.resize(y_.size());
    mean_.resize(n_);
    scratch_.resize(n_);
  }

  size_t entries() const override { return rate_.size() * n_; }

  void fill(float *table) override {
    for (const bare::SampledState &rate : rate_) {
      bare::mean_row(rate, mean_.data(), scratch_.data(), n_, [&](double lambda, double *row) {
        // P(X >= c) and its complement at every bound's count c.
        w_[0] = 1.0, v_[0] = 0.0;
        for (size_t j = 1; j < n_; ++j) gamma_ratio(&w_[j], &v_[j], counts_[j], lambda);
        w_[n_] = 0.0, v_[n_] = 1.0;
        for (size_t i = 0; i < n_; ++i) row[i] = difference_in_smaller_tail(w_[i + 1], v_[i + 1], w_[i], v_[i]);
      });
      bare::store(mean_.data(), n_, table);
    }
  }

 private:
  std::vector<bare::SampledState> rate_;
  std::vector<double> y_, counts_, w_, v_, mean_, scratch_;
  size_t n_;
};

}  // namespace

std::unique_ptr<BareTable> make_poisson_interval() { return std::make_unique<PoissonInterval>(); }
