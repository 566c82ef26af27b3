// Time per call of each interval probability over representative
// arguments: central intervals, far tails and unbounded ends.
#include <benchmark/benchmark.h>

#include <cfloat>
#include <cstddef>

#include "special/special.h"

using namespace vel::special;

namespace {

constexpr double max = DBL_MAX;

struct Interval {
  double x1, x2;
};

// Runs probability(interval) over the intervals in turn, one per iteration.
template <size_t N, typename F>
void over(benchmark::State &state, const Interval (&intervals)[N], F probability) {
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(probability(intervals[i]));
    i = i + 1 == N ? 0 : i + 1;
  }
}

const Interval unit_scale[] = {{-1.0, 0.5}, {0.2, 0.9}, {2.5, 4.0}, {6.0, 9.0}, {-max, 0.3}, {1.5, max}};

void Gauss(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return _vel_Gauss_cdf(i.x1, i.x2, 0.5, 2.0); });
}
void LogNormal(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return LogNormal_cdf(i.x1, i.x2, 0.0, 1.0); });
}
void BetaSmallParameters(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Beta_cdf(i.x1, i.x2, 2.0, 3.5, -1.0, 8.0); });
}
void BetaLargeParameters(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Beta_cdf(i.x1, i.x2, 400.0, 700.0, -1.0, 8.0); });
}
void Gamma(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Gamma_cdf(i.x1, i.x2, 2.5, 1.2); });
}
void GammaLargeShape(benchmark::State &s) {
  const Interval near_mean[] = {{90.0, 95.0}, {99.0, 101.0}, {110.0, 130.0}, {50.0, max}};
  over(s, near_mean, [](const Interval &i) { return Gamma_cdf(i.x1, i.x2, 100.0, 1.0); });
}
void Weibull(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Weibull_cdf(i.x1, i.x2, 1.7, 2.0); });
}
void Exponential(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Exponential_cdf(i.x1, i.x2, 2.0); });
}
void Uniform(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Uniform_cdf(i.x1, i.x2, 0.0, 5.0); });
}
void Triangular(benchmark::State &s) {
  over(s, unit_scale, [](const Interval &i) { return Triangular_cdf(i.x1, i.x2, 0.0, 1.0, 5.0); });
}

const Interval counts[] = {{0.0, 1.0}, {3.0, 8.0}, {10.0, 12.0}, {-max, 5.0}, {7.0, max}, {25.0, 40.0}};

void Binomial(benchmark::State &s) {
  over(s, counts, [](const Interval &i) { return _vel_Binomial_cdf(i.x1, i.x2, 30.0, 0.3, 0.7); });
}
void BinomialLargeTrials(benchmark::State &s) {
  const Interval around_mean[] = {{29000.0, 30000.0}, {30000.0, 30100.0}, {31000.0, max}, {-max, 29500.0}};
  over(s, around_mean, [](const Interval &i) { return _vel_Binomial_cdf(i.x1, i.x2, 1e5, 0.3, 0.7); });
}
void Poisson(benchmark::State &s) {
  over(s, counts, [](const Interval &i) { return _vel_Poisson_cdf(i.x1, i.x2, 6.5); });
}
void NegativeBinomial(benchmark::State &s) {
  over(s, counts, [](const Interval &i) { return NegativeBinomial_cdf(i.x1, i.x2, 4.0, 0.35, 0.65); });
}
void Geometric(benchmark::State &s) {
  over(s, counts, [](const Interval &i) { return Geometric_cdf(i.x1, i.x2, 0.2, 0.8); });
}

const double points[] = {0.0, 0.3, 1.0, 2.5, 6.0, 15.0};

template <typename F>
void over_points(benchmark::State &state, F tail) {
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(tail(points[i]));
    i = i + 1 == std::size(points) ? 0 : i + 1;
  }
}

void NormalUpperTail(benchmark::State &s) {
  over_points(s, [](double x) { return _vel_normal_c(x); });
}
void ChiSquareUpperTail(benchmark::State &s) {
  over_points(s, [](double x) { return _vel_chi_square_c(x, 4); });
}
void FUpperTail(benchmark::State &s) {
  over_points(s, [](double x) { return _vel_F_distribution_c(x, 5, 12.0); });
}

BENCHMARK(Gauss);
BENCHMARK(LogNormal);
BENCHMARK(BetaSmallParameters);
BENCHMARK(BetaLargeParameters);
BENCHMARK(Gamma);
BENCHMARK(GammaLargeShape);
BENCHMARK(Weibull);
BENCHMARK(Exponential);
BENCHMARK(Uniform);
BENCHMARK(Triangular);
BENCHMARK(Binomial);
BENCHMARK(BinomialLargeTrials);
BENCHMARK(Poisson);
BENCHMARK(NegativeBinomial);
BENCHMARK(Geometric);
BENCHMARK(NormalUpperTail);
BENCHMARK(ChiSquareUpperTail);
BENCHMARK(FUpperTail);

}  // namespace

BENCHMARK_MAIN();
