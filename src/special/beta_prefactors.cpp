// Prefactors x^a y^b / B(a, b) of ACM TOMS 708: brcomp, its scaled form
// brcmp1, and esum.
#include <cmath>

#include "special/beta_internal.h"
#include "special/toms_shared.h"

namespace vel::special {

namespace {

const double rt2pin = .398942280401433;  // 1/sqrt(2 pi), published digits

// ln x and ln y, each taken through alnrel where the other is small.
void log_pair(double x, double y, double *lnx, double *lny) {
  if (x <= 0.375) {
    *lnx = std::log(x);
    *lny = alnrel(-x);
  } else if (y <= 0.375) {
    *lnx = alnrel(-y);
    *lny = std::log(y);
  } else {
    *lnx = std::log(x);
    *lny = std::log(y);
  }
}

// Exponent -(a u + b v) of the large-parameter form (a, b >= 8), and the
// factor sqrt(b x0) that goes with it.
double large_exponent(double a, double b, double x, double y, double *root) {
  double x0;
  double y0;
  parameter_shares(a, b, &x0, &y0);
  const double lambda = a > b ? (a + b) * y - b : a - (a + b) * x;
  double e = -lambda / a;
  const double u = std::fabs(e) > 0.6 ? e - std::log(x / x0) : rlog1(e);
  e = lambda / b;
  const double v = std::fabs(e) > 0.6 ? e - std::log(y / y0) : rlog1(e);
  *root = std::sqrt(b * x0);
  return -(a * u + b * v);
}

}  // namespace

double reciprocal_gamma_sum(double a, double b) {
  const double apb = a + b;
  if (apb > 1.0) return (1.0 + gam1(sum_minus_one(a, b))) / apb;
  return 1.0 + gam1(apb);
}

double reduce_b(double a0, double *b0) {
  double u = gamln1(a0);
  const int n = static_cast<int>(*b0 - 1.0);
  if (n >= 1) {
    double c = 1.0;
    for (int i = 1; i <= n; ++i) {
      *b0 -= 1.0;
      c *= *b0 / (a0 + *b0);
    }
    u = std::log(c) + u;
  }
  return u;
}

double esum(int mu, double x) {
  // Form mu + x only when the signs differ, so the sum cannot overflow.
  if (x > 0.0) {
    if (mu <= 0) {
      const double w = mu + x;
      if (w >= 0.0) return std::exp(w);
    }
  } else if (mu >= 0) {
    const double w = mu + x;
    if (w <= 0.0) return std::exp(w);
  }
  return std::exp(static_cast<double>(mu)) * std::exp(x);
}

double brcomp(double a, double b, double x, double y) {
  if (x == 0.0 || y == 0.0) return 0.0;
  const double a0 = min_or_second(a, b);
  if (a0 >= 8.0) {
    double root;
    const double z = std::exp(large_exponent(a, b, x, y, &root));
    return rt2pin * root * z * std::exp(-bcorr(a, b));
  }

  double lnx;
  double lny;
  log_pair(x, y, &lnx, &lny);
  double z = a * lnx + b * lny;
  if (a0 >= 1.0) return std::exp(z - betaln(a, b));

  double b0 = max_or_second(a, b);
  if (b0 >= 8.0) {
    const double u = gamln1(a0) + algdiv(a0, b0);
    return a0 * std::exp(z - u);
  }
  if (b0 > 1.0) {
    z -= reduce_b(a0, &b0);
    b0 -= 1.0;
    const double t = reciprocal_gamma_sum(a0, b0);
    return a0 * std::exp(z) * (1.0 + gam1(b0)) / t;
  }
  const double result = std::exp(z);
  if (result == 0.0) return 0.0;
  const double c = (1.0 + gam1(a)) * (1.0 + gam1(b)) / reciprocal_gamma_sum(a, b);
  return result * (a0 * c) / (1.0 + a0 / b0);
}

double brcmp1(int mu, double a, double b, double x, double y) {
  const double a0 = min_or_second(a, b);
  if (a0 >= 8.0) {
    double root;
    const double z = esum(mu, large_exponent(a, b, x, y, &root));
    return rt2pin * root * z * std::exp(-bcorr(a, b));
  }

  double lnx;
  double lny;
  log_pair(x, y, &lnx, &lny);
  double z = a * lnx + b * lny;
  if (a0 >= 1.0) return esum(mu, z - betaln(a, b));

  double b0 = max_or_second(a, b);
  if (b0 >= 8.0) {
    const double u = gamln1(a0) + algdiv(a0, b0);
    return a0 * esum(mu, z - u);
  }
  if (b0 > 1.0) {
    z -= reduce_b(a0, &b0);
    b0 -= 1.0;
    const double t = reciprocal_gamma_sum(a0, b0);
    return a0 * esum(mu, z) * (1.0 + gam1(b0)) / t;
  }
  const double result = esum(mu, z);
  if (result == 0.0) return 0.0;
  const double c = (1.0 + gam1(a)) * (1.0 + gam1(b)) / reciprocal_gamma_sum(a, b);
  return result * (a0 * c) / (1.0 + a0 / b0);
}

}  // namespace vel::special
