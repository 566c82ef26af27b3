// Profit over Price, Volume, Cost (sampled interval parents) and Lines (the
// numbered model node): each entry the nested mean of its expression, Price
// outermost, as the utility generator averages.
#include <cmath>

#include "bare_table.h"
#include "sampling.h"

namespace {

using bare::SampledState;

class UtilityExpressions : public BareTable {
 public:
  UtilityExpressions()
      : price_(bare::sample_states(bare::steps(0, 0.5, 40), 4)),
        volume_(bare::sample_states(with_open_ends(bare::steps(0, 2.5, 38)), 4)),
        cost_(bare::sample_states(with_zero_width_end(bare::steps(0, 0.5, 20)), 4)) {}

  size_t entries() const override { return price_.size() * volume_.size() * cost_.size() * 4; }

  void fill(float *table) override {
    for (const SampledState &p : price_)
      for (const SampledState &v : volume_)
        for (const SampledState &c : cost_) {
          *table++ = static_cast<float>(nested(p, v, c, [](double price, double volume, double cost) {
            return (price - cost) * volume - 20;
          }));
          *table++ = static_cast<float>(nested(p, v, c, [](double price, double volume, double cost) {
            const double capped = volume > 60 ? 60 : volume;  // min(Volume, 60)
            return (price - cost) * capped * 1.1 - 45;
          }));
          *table++ = static_cast<float>(nested(p, v, c, [](double price, double volume, double cost) {
            const double floor0 = 0 > volume ? 0 : volume;  // max(Volume, 0)
            return (price - 0.9 * cost) * std::sqrt(floor0) * 10 - 70;
          }));
          *table++ = static_cast<float>(nested(p, v, c, [](double price, double volume, double cost) {
            const double t = price > cost ? std::pow(price - cost, 1.5) * volume : -std::exp(cost - price);
            return t - 100;
          }));
        }
  }

 private:
  static std::vector<double> with_open_ends(std::vector<double> bounds) {
    bounds.insert(bounds.begin(), -bare::infinity);
    bounds.push_back(bare::infinity);
    return bounds;
  }
  static std::vector<double> with_zero_width_end(std::vector<double> bounds) {
    bounds.push_back(bounds.back());
    return bounds;
  }

  template <typename F>
  static double nested(const SampledState &p, const SampledState &v, const SampledState &c, F f) {
    return bare::mean_value(p, [&](double price) {
      return bare::mean_value(v, [&](double volume) {
        return bare::mean_value(c, [&](double cost) { return f(price, volume, cost); });
      });
    });
  }

  std::vector<SampledState> price_, volume_, cost_;
};

}  // namespace

std::unique_ptr<BareTable> make_utility_expressions() { return std::make_unique<UtilityExpressions>(); }
