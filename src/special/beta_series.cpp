// Series of ACM TOMS 708 for the incomplete beta ratio: fpser, apser,
// bpser and bup.
#include <cmath>

#include "special/beta_internal.h"
#include "special/toms_shared.h"

namespace vel::special {

double fpser(double a, double b, double x, double eps) {
  double result = 1.0;
  if (a > 1e-3 * eps) {
    const double t = a * std::log(x);
    if (t < exparg(1)) return 0.0;
    result = std::exp(t);
  }
  // 1/B(a, b) ~ b for b this small.
  result = (b / a) * result;
  const double tol = eps / a;
  double an = a + 1.0;
  double t = x;
  double s = t / an;
  double c;
  do {
    an += 1.0;
    t *= x;
    c = t / an;
    s += c;
  } while (std::fabs(c) > tol);
  return result * (1.0 + a * s);
}

double apser(double a, double b, double x, double eps) {
  static const double g = .577215664901533;  // Euler's constant

  const double bx = b * x;
  double t = x - bx;
  double c;
  if (b * eps <= 2e-2) {
    c = std::log(x) + psi(b) + g + t;
  } else {
    c = std::log(bx) + g + t;
  }
  const double tol = 5.0 * eps * std::fabs(c);
  double j = 1.0;
  double s = 0.0;
  double aj;
  do {
    j += 1.0;
    t *= x - bx / j;
    aj = t / j;
    s += aj;
  } while (std::fabs(aj) > tol);
  return -a * (c + s);
}

double bpser(double a, double b, double x, double eps) {
  if (x == 0.0) return 0.0;

  // Prefactor x^a / (a B(a, b)).
  double result;
  const double a0 = min_or_second(a, b);
  if (a0 >= 1.0) {
    const double z = a * std::log(x) - betaln(a, b);
    result = std::exp(z) / a;
  } else {
    double b0 = max_or_second(a, b);
    if (b0 >= 8.0) {
      const double u = gamln1(a0) + algdiv(a0, b0);
      const double z = a * std::log(x) - u;
      result = (a0 / a) * std::exp(z);
    } else if (b0 > 1.0) {
      const double z = a * std::log(x) - reduce_b(a0, &b0);
      b0 -= 1.0;
      const double t = reciprocal_gamma_sum(a0, b0);
      result = std::exp(z) * (a0 / a) * (1.0 + gam1(b0)) / t;
    } else {
      result = std::pow(x, a);
      if (result == 0.0) return 0.0;
      const double apb = a + b;
      const double c = (1.0 + gam1(a)) * (1.0 + gam1(b)) / reciprocal_gamma_sum(a, b);
      result = result * c * (b / apb);
    }
  }
  if (result == 0.0 || a <= 0.1 * eps) return result;

  const double tol = eps / a;
  double n = 0.0;
  double sum = 0.0;
  double c = 1.0;
  double w;
  do {
    n += 1.0;
    c *= (0.5 + (0.5 - b / n)) * x;
    w = c / (a + n);
    sum += w;
  } while (std::fabs(w) > tol);
  return result * (1.0 + a * sum);
}

double bup(double a, double b, double x, double y, int n, double eps) {
  // Scaling factor exp(-mu) and exp(mu) x^a y^b / (a B(a, b)).
  const double apb = a + b;
  const double ap1 = a + 1.0;
  int mu = 0;
  double d = 1.0;
  if (n != 1 && a >= 1.0 && apb >= 1.1 * ap1) {
    mu = static_cast<int>(std::fabs(exparg(1)));
    const int k = static_cast<int>(exparg(0));
    if (k < mu) mu = k;
    d = std::exp(-static_cast<double>(mu));
  }
  const double result = brcmp1(mu, a, b, x, y) / a;
  if (n == 1 || result == 0.0) return result;

  const int nm1 = n - 1;
  double w = d;
  // k: index of the largest term.
  int k = 0;
  if (b > 1.0) {
    if (y <= 1e-4) {
      k = nm1;
    } else {
      const double r = (b - 1.0) * x / y - a;
      if (r >= 1.0) k = r < static_cast<double>(nm1) ? static_cast<int>(r) : nm1;
    }
  }
  // The increasing terms are all added; the rest until they are negligible.
  for (int i = 1; i <= k; ++i) {
    const double l = i - 1;
    d = ((apb + l) / (ap1 + l)) * x * d;
    w += d;
  }
  for (int i = k + 1; i <= nm1; ++i) {
    const double l = i - 1;
    d = ((apb + l) / (ap1 + l)) * x * d;
    w += d;
    if (d <= eps * w) break;
  }
  return result * w;
}

}  // namespace vel::special
