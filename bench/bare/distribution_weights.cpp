// Queue over Region (labeled model node), Rush (boolean), Staff (numbered)
// and Load (sampled interval): twelve weights per sample point, each state
// its weight over their running sum, rows averaged over Load's points.  The
// terms in outer parents (k / Staff, the Rush term) are formed once per
// configuration of those parents.
#include <cmath>

#include "bare_table.h"
#include "sampling.h"

namespace {

constexpr size_t kStates = 12;
constexpr double kDivisors[] = {8, 12, 16, 20};
constexpr double kStaff[] = {1, 2, 3, 5, 8};

class DistributionWeights : public BareTable {
 public:
  DistributionWeights() : load_(bare::sample_states(bare::steps(0, 0.25, 500), 10)) {}

  size_t entries() const override { return 4 * 2 * 5 * load_.size() * kStates; }

  void fill(float *table) override {
    double mean[kStates], scratch[kStates], per_staff[kStates], per_rush[kStates];
    for (double divisor : kDivisors)
      for (int rush = 0; rush < 2; ++rush) {
        for (size_t k = 0; k < kStates; ++k) per_rush[k] = rush ? static_cast<double>(k) * 0.125 : 0.0625;
        for (double staff : kStaff) {
          for (size_t k = 0; k < kStates; ++k) per_staff[k] = static_cast<double>(k) / staff;
          for (const bare::SampledState &load : load_) {
            bare::mean_row(load, mean, scratch, kStates, [&](double x, double *row) {
              const double scaled = x / divisor;
              double sum = 0.0;
              for (size_t k = 0; k < kStates; ++k) {
                row[k] = std::exp(-std::fabs(scaled - per_staff[k])) + per_rush[k];
                sum += row[k];
              }
              for (size_t k = 0; k < kStates; ++k) row[k] /= sum;
            });
            bare::store(mean, kStates, table);
          }
        }
      }
  }

 private:
  std::vector<bare::SampledState> load_;
};

}  // namespace

std::unique_ptr<BareTable> make_distribution_weights() { return std::make_unique<DistributionWeights>(); }
