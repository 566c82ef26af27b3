// State bounds and the sample points of interval parents, formed as the
// generator forms them, and the means over sample points in its order.
#pragma once

#include <cfloat>
#include <cstddef>
#include <vector>

namespace bare {

// The largest finite double stands for an unbounded end, as in the model files.
constexpr double infinity = DBL_MAX;

// count + 1 bounds start, start + step, ...; exact for the dyadic steps of
// bench/make_models.py.
inline std::vector<double> steps(double start, double step, int count) {
  std::vector<double> bounds;
  for (int i = 0; i <= count; ++i) bounds.push_back(start + step * i);
  return bounds;
}

// The points at which an interval state is evaluated.  A bounded state with
// a positive width has `samples` midpoints and is averaged; an unbounded or a
// zero-width state has one point and is not.
struct SampledState {
  std::vector<double> points;
  bool averaged = false;
};

inline std::vector<SampledState> sample_states(const std::vector<double> &bounds, unsigned samples) {
  std::vector<SampledState> states;
  for (size_t i = 0; i + 1 < bounds.size(); ++i) {
    const double lo = bounds[i], hi = bounds[i + 1];
    SampledState state;
    if (lo <= -infinity || hi >= infinity) {
      // 0.1 % inside from the finite end; distance 1 from an end at 0.
      double point = 0.0;
      if (hi >= infinity && lo > -infinity) point = lo == 0.0 ? 1.0 : lo < 0.0 ? lo * 0.999 : lo * 1.001;
      if (lo <= -infinity && hi < infinity) point = hi == 0.0 ? -1.0 : hi < 0.0 ? hi * 1.001 : hi * 0.999;
      state.points.push_back(point);
    } else {
      const double width = (hi - lo) / static_cast<double>(samples);
      state.points.push_back(lo + 0.5 * width);
      state.averaged = width != 0.0;
      for (unsigned k = 1; state.averaged && k < samples; ++k) {
        state.points.push_back(lo + (static_cast<double>(k) + 0.5) * width);
      }
    }
    states.push_back(state);
  }
  return states;
}

// The mean of value(point) over a state's points: the first value, plus each
// later one, divided by the count.
template <typename Value>
inline double mean_value(const SampledState &state, Value value) {
  double sum = value(state.points[0]);
  if (!state.averaged) return sum;
  const size_t count = state.points.size();
  for (size_t k = 1; k < count; ++k) sum += value(state.points[k]);
  return sum / static_cast<double>(count);
}

// The same for rows of n doubles: row(point, out) writes one row; `mean`
// receives the mean, `scratch` (n doubles) holds each later row.
template <typename Row>
inline void mean_row(const SampledState &state, double *mean, double *scratch, size_t n, Row row) {
  row(state.points[0], mean);
  if (!state.averaged) return;
  const size_t count = state.points.size();
  for (size_t k = 1; k < count; ++k) {
    row(state.points[k], scratch);
    for (size_t j = 0; j < n; ++j) mean[j] += scratch[j];
  }
  for (size_t j = 0; j < n; ++j) mean[j] /= static_cast<double>(count);
}

inline void store(const double *row, size_t n, float *&table) {
  for (size_t j = 0; j < n; ++j) *table++ = static_cast<float>(row[j]);
}

}  // namespace bare
