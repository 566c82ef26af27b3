// Y = Gamma(Shape, Scale) over two numbered parents, no sampling: one
// gamma_ratio per finite bound; the normaliser is the upper tail at the
// bound 0, which the first state shares.
#include "bare_table.h"
#include "sampling.h"
#include "special/interval_difference.h"
#include "special/special.h"

using namespace vel::special;

namespace {

constexpr double kScales[] = {0.5, 1, 2, 4, 8};

class GammaNumbered : public BareTable {
 public:
  GammaNumbered() : shapes_(bare::steps(0.5, 0.125, 399)), y_(bare::steps(0, 0.5, 200)) {
    y_.push_back(bare::infinity);
    n_ = y_.size() - 1;
    p_.resize(y_.size());
    q_.resize(y_.size());
    row_.resize(n_);
  }

  size_t entries() const override { return shapes_.size() * std::size(kScales) * n_; }

  void fill(float *table) override {
    for (double shape : shapes_)
      for (double scale : kScales) {
        for (size_t j = 0; j < n_; ++j) gamma_ratio(&p_[j], &q_[j], shape, y_[j] / scale);
        const double z = q_[0];
        for (size_t i = 0; i + 1 < n_; ++i) row_[i] = difference_in_smaller_tail(p_[i], q_[i], p_[i + 1], q_[i + 1]) / z;
        row_[n_ - 1] = q_[n_ - 1] / z;
        bare::store(row_.data(), n_, table);
      }
  }

 private:
  std::vector<double> shapes_, y_, p_, q_, row_;
  size_t n_;
};

}  // namespace

std::unique_ptr<BareTable> make_gamma_numbered() { return std::make_unique<GammaNumbered>(); }
