// Distribution of an aggregate: the sum S of N independent copies of an
// interval node X, discretised onto the intervals of an interval node.
//
// The model
//  - N's state i stands for the count i.  Its weights are its beliefs as
//    given, divided by their sum when that is not 1 (a sum of 0 is an error).
//  - X puts the mass of its belief (normalised the same way) uniformly on each
//    of its intervals; an interval with one unbounded end is a point mass at
//    its finite end, the interval (-inf, inf) a point mass at 0, and a
//    zero-width interval a point mass at its bound.
//  - N = 0 gives a point mass at 0.
//  - The node's intervals must hold the whole support of S, as a continuous
//    distribution's support must lie inside the states of its node; otherwise
//    vel_error_state_range.  Nothing is dropped and no row is renormalised.
//    The last interval takes its finite upper bound as well, so an atom of S
//    on the node's last bound is kept.
//
// The method (exact up to rounding, after one controlled approximation)
//  X is split into its atoms A (probability p_a) and its uniform pieces Y
//  (probability p_c).  A sum of k copies is, with binomial weights over the
//  number j of copies that fall in the uniform pieces, an atom sum D_{k-j}
//  (all sums of k - j atoms, enumerated exactly) plus C_j, a sum of j copies
//  of Y.  The bounds of Y's pieces are put on a lattice o + h*i with at most
//  kMaxCells cells; each piece is then a union of whole cells, and Y =
//  o + h (Z + U) with Z the cell (integer) and U ~ U(0, 1) independent.  So
//  C_j = j o + h (T_j + I_j): T_j is the j-fold convolution of Z (computed
//  exactly by discrete convolution) and I_j the sum of j uniforms, whose CDF
//  is evaluated through the uniform B-spline basis of degree j (a recursion
//  of convex combinations, so no cancellation).  P(S < y) is assembled from
//  these pieces for each bound y of the node, and a state's mass is the
//  difference at its two bounds.
//
// Accuracy
//  The only approximation is moving a bound of Y's pieces by at most delta
//  onto the lattice.  Mapping each piece affinely onto its moved copy moves
//  every copy by at most delta, so the sum of k copies moves by at most
//  k delta.  Where at least one copy is continuous, S has a density no larger
//  than g, the largest density of a piece (a sum with one independent summand
//  of density <= g has density <= g); atom-only sums are not moved.  An
//  interval's mass can therefore change by at most 2 * (2 k delta g), and the
//  lattice is accepted only when 4 k_max delta g <= 1e-7.  The remaining
//  error is floating-point rounding in sums of non-negative terms (relative
//  1e-12 or better), far below the 1e-6 required.  A lattice that would need
//  more cells, or work beyond a fixed budget, gives vel_error_computation
//  rather than a less accurate answer.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "special/aggregate_sum.h"
#include "vel/vel.h"

namespace vel::special {

namespace {

constexpr double kInfinite = 1.7976931348623157e308;
constexpr uint64_t kMaxCells = 4096;
constexpr double kLatticeError = 1e-7;
constexpr double kMaxWork = 4e8;
constexpr size_t kMaxAtomSums = 1u << 20;

struct Atom {
  double at;
  double mass;
};

struct Piece {
  double lo, hi, mass;
};

// X as atoms and uniform pieces, each set's masses conditional on the set.
struct Item {
  std::vector<Atom> atoms;
  std::vector<Piece> pieces;
  double atom_mass = 0.0;  // p_a
  double piece_mass = 0.0; // p_c
  double low = kInfinite, high = -kInfinite;  // support
};

bool describe_item(const float *beliefs, const double *bounds, uint64_t states, Item *x) {
  double total = 0.0;
  for (uint64_t i = 0; i < states; ++i) total += beliefs[i];
  if (!(total > 0.0) || !std::isfinite(total)) return false;
  for (uint64_t i = 0; i < states; ++i) {
    double mass = beliefs[i] / total;
    if (!(mass > 0.0)) continue;
    double lo = bounds[i], hi = bounds[i + 1];
    bool lo_infinite = lo <= -kInfinite, hi_infinite = hi >= kInfinite;
    if (lo_infinite || hi_infinite || hi <= lo) {
      double at = lo_infinite && hi_infinite ? 0.0 : lo_infinite ? hi : lo;
      x->atoms.push_back({at, mass});
      x->atom_mass += mass;
      x->low = std::min(x->low, at);
      x->high = std::max(x->high, at);
    } else {
      x->pieces.push_back({lo, hi, mass});
      x->piece_mass += mass;
      x->low = std::min(x->low, lo);
      x->high = std::max(x->high, hi);
    }
  }
  for (Atom &a : x->atoms) a.mass /= x->atom_mass;
  for (Piece &p : x->pieces) p.mass /= x->piece_mass;
  return true;
}

// Y = origin + step (Z + U); cells[i] = P(Z = i).
struct Lattice {
  double origin = 0.0, step = 1.0;
  std::vector<double> cells;
};

// The coarsest lattice (fewest cells) on which every piece bound lies within
// the accuracy budget; false when none has at most kMaxCells cells.
bool find_lattice(const std::vector<Piece> &pieces, uint64_t max_count, Lattice *lattice) {
  double origin = pieces[0].lo, end = pieces[0].hi, density = 0.0;
  for (const Piece &p : pieces) {
    origin = std::min(origin, p.lo);
    end = std::max(end, p.hi);
    density = std::max(density, p.mass / (p.hi - p.lo));
  }
  double span = end - origin;
  for (uint64_t cells = 1; cells <= kMaxCells; ++cells) {
    double step = span / static_cast<double>(cells);
    double delta = 0.0;
    bool fits = true;
    for (const Piece &p : pieces) {
      for (double bound : {p.lo, p.hi}) {
        double at = (bound - origin) / step;
        double snapped = std::nearbyint(at);
        delta = std::max(delta, std::fabs(at - snapped) * step);
      }
      if (std::nearbyint((p.hi - origin) / step) <= std::nearbyint((p.lo - origin) / step)) {
        fits = false;  // the piece would vanish
      }
    }
    if (!fits || 4.0 * static_cast<double>(max_count) * delta * density > kLatticeError) continue;
    lattice->origin = origin;
    lattice->step = step;
    lattice->cells.assign(cells, 0.0);
    for (const Piece &p : pieces) {
      auto first = static_cast<uint64_t>(std::nearbyint((p.lo - origin) / step));
      auto last = static_cast<uint64_t>(std::nearbyint((p.hi - origin) / step));
      for (uint64_t c = first; c < last; ++c) {
        lattice->cells[c] += p.mass / static_cast<double>(last - first);
      }
    }
    return true;
  }
  return false;
}

// A distribution on 0, 1, 2, ... with its running sums: below[i] = P(T < i).
struct Counts {
  std::vector<double> mass;
  std::vector<double> below;
};

Counts with_prefix(std::vector<double> mass) {
  Counts counts;
  counts.below.resize(mass.size() + 1);
  counts.below[0] = 0.0;
  for (size_t i = 0; i < mass.size(); ++i) counts.below[i + 1] = counts.below[i] + mass[i];
  counts.mass = std::move(mass);
  return counts;
}

std::vector<double> convolve(const std::vector<double> &a, const std::vector<double> &b) {
  std::vector<double> sum(a.size() + b.size() - 1, 0.0);
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] == 0.0) continue;
    for (size_t k = 0; k < b.size(); ++k) sum[i + k] += a[i] * b[k];
  }
  return sum;
}

std::vector<Atom> add_atoms(const std::vector<Atom> &sums, const std::vector<Atom> &atoms) {
  std::vector<Atom> out;
  out.reserve(sums.size() * atoms.size());
  for (const Atom &s : sums) {
    for (const Atom &a : atoms) out.push_back({s.at + a.at, s.mass * a.mass});
  }
  std::sort(out.begin(), out.end(), [](const Atom &l, const Atom &r) { return l.at < r.at; });
  std::vector<Atom> merged;
  for (const Atom &a : out) {
    if (!merged.empty() && merged.back().at == a.at) {
      merged.back().mass += a.mass;
    } else {
      merged.push_back(a);
    }
  }
  return merged;
}

// P(I_j < u + l) for l = 0 .. j-1, from the degree-j uniform B-spline basis at
// u in [0, 1): the CDF of a sum of j uniforms at x is the sum of the basis
// values N_{j+1}(u + l) for l <= floor(x).
void uniform_sum_cdf(uint64_t j, double u, std::vector<double> *basis, std::vector<double> *cdf) {
  basis->assign(j + 1, 0.0);
  (*basis)[0] = 1.0;
  for (uint64_t d = 1; d <= j; ++d) {
    for (uint64_t l = d + 1; l-- > 0;) {
      double x = u + static_cast<double>(l);
      double right = l < d ? x * (*basis)[l] : 0.0;
      double left = l > 0 ? (static_cast<double>(d + 1) - x) * (*basis)[l - 1] : 0.0;
      (*basis)[l] = (right + left) / static_cast<double>(d);
    }
  }
  cdf->resize(j);
  double running = 0.0;
  for (uint64_t l = 0; l < j; ++l) (*cdf)[l] = running += (*basis)[l];
}

struct Aggregate {
  std::vector<double> weights;       // of the counts 0 .. max_count
  Item item;
  Lattice lattice;
  std::vector<Counts> cell_sums;     // T_j, j = 0 .. max_count
  std::vector<std::vector<Atom>> atom_sums;  // D_i, i = 0 .. max_count
  std::vector<double> basis, cdf;    // scratch of uniform_sum_cdf

  // P(C_j < z), C_j the sum of j copies of the uniform pieces.
  double continuous_below(uint64_t j, double z) {
    if (j == 0) return z > 0.0 ? 1.0 : 0.0;
    const Counts &t = cell_sums[j];
    double x = (z - static_cast<double>(j) * lattice.origin) / lattice.step;
    double top = static_cast<double>(t.mass.size() - 1 + j);
    if (!(x > 0.0)) return 0.0;
    if (x >= top) return 1.0;
    double f = std::floor(x);
    auto whole = static_cast<int64_t>(f);
    uniform_sum_cdf(j, x - f, &basis, &cdf);
    auto size = static_cast<int64_t>(t.mass.size());
    // Cells at least j below x are entirely below; the j nearer ones partly.
    int64_t full = whole - static_cast<int64_t>(j) + 1;
    double p = t.below[static_cast<size_t>(std::clamp<int64_t>(full, 0, size))];
    for (uint64_t l = 0; l < j; ++l) {
      int64_t cell = whole - static_cast<int64_t>(l);
      if (cell >= 0 && cell < size) p += t.mass[static_cast<size_t>(cell)] * cdf[l];
    }
    return p;
  }

  // P(S < y).
  double below(double y) {
    double pa = item.atom_mass, pc = item.piece_mass;
    double total = 0.0;
    for (uint64_t k = 0; k < weights.size(); ++k) {
      if (weights[k] == 0.0) continue;
      for (uint64_t j = 0; j <= k; ++j) {
        double split = binomial(k, j, pc, pa);
        if (split == 0.0) continue;
        double part = 0.0;
        for (const Atom &d : atom_sums[k - j]) part += d.mass * continuous_below(j, y - d.at);
        total += weights[k] * split * part;
      }
    }
    return total;
  }

  static double binomial(uint64_t k, uint64_t j, double pc, double pa) {
    if (pa == 0.0) return j == k ? 1.0 : 0.0;
    if (pc == 0.0) return j == 0 ? 1.0 : 0.0;
    double kd = static_cast<double>(k), jd = static_cast<double>(j);
    return std::exp(std::lgamma(kd + 1) - std::lgamma(jd + 1) - std::lgamma(kd - jd + 1) +
                    jd * std::log(pc) + (kd - jd) * std::log(pa));
  }
};

int prepare(const float *count_beliefs, uint64_t count_state_count, const float *item_beliefs,
            const double *item_bounds, uint64_t item_states, Aggregate *a) {
  double total = 0.0;
  for (uint64_t i = 0; i < count_state_count; ++i) total += count_beliefs[i];
  if (!(total > 0.0) || !std::isfinite(total)) return vel_error_computation;
  uint64_t max_count = 0;
  for (uint64_t i = 0; i < count_state_count; ++i) {
    if (count_beliefs[i] > 0.0f) max_count = i;
  }
  a->weights.resize(max_count + 1);
  for (uint64_t i = 0; i <= max_count; ++i) a->weights[i] = count_beliefs[i] / total;
  if (!describe_item(item_beliefs, item_bounds, item_states, &a->item)) return vel_error_computation;

  a->atom_sums.push_back({{0.0, 1.0}});
  size_t atom_total = 1;
  for (uint64_t i = 1; i <= max_count && !a->item.atoms.empty(); ++i) {
    a->atom_sums.push_back(add_atoms(a->atom_sums.back(), a->item.atoms));
    atom_total += a->atom_sums.back().size();
    if (atom_total > kMaxAtomSums) return vel_error_computation;
  }
  if (a->item.pieces.empty()) return 0;

  if (!find_lattice(a->item.pieces, std::max<uint64_t>(max_count, 1), &a->lattice)) {
    return vel_error_computation;
  }
  double cells = static_cast<double>(a->lattice.cells.size());
  double maxd = static_cast<double>(max_count);
  if (maxd * maxd * cells * cells / 2.0 > kMaxWork) return vel_error_computation;
  a->cell_sums.push_back(with_prefix({1.0}));
  for (uint64_t j = 1; j <= max_count; ++j) {
    a->cell_sums.push_back(with_prefix(convolve(a->cell_sums.back().mass, a->lattice.cells)));
  }
  return 0;
}

// Whether the intervals hold every value the sum can take.
bool covers_support(const double *bounds, uint64_t n, const Aggregate &a) {
  double low = kInfinite, high = -kInfinite;
  for (uint64_t k = 0; k < a.weights.size(); ++k) {
    if (a.weights[k] == 0.0) continue;
    double kd = static_cast<double>(k);
    low = std::min(low, k == 0 ? 0.0 : kd * a.item.low);
    high = std::max(high, k == 0 ? 0.0 : kd * a.item.high);
  }
  return bounds[0] <= low && high <= bounds[n];
}

}  // namespace

int aggregate_sum(const float *count_beliefs, uint64_t count_states, const float *item_beliefs,
                  const double *item_bounds, uint64_t item_states, const double *bounds, uint64_t n,
                  double *out) {
  Aggregate a;
  if (int code = prepare(count_beliefs, count_states, item_beliefs, item_bounds, item_states, &a)) return code;
  if (!covers_support(bounds, n, a)) return vel_error_state_range;
  double previous = 0.0;
  for (uint64_t i = 0; i < n; ++i) {
    double next = i + 1 < n ? a.below(bounds[i + 1]) : 1.0;
    // Rounding may make the difference of two equal sums slightly negative.
    out[i] = std::max(0.0, next - previous);
    previous = next;
  }
  return 0;
}

}  // namespace vel::special
