// Asymptotic expansions of ACM TOMS 708 for the incomplete beta ratio:
// bgrat (a large, b <= 1) and basym (a and b both large).
#include <cmath>

#include "common/error.h"
#include "special/beta_internal.h"
#include "special/special.h"
#include "special/toms_shared.h"

namespace vel::special {

int bgrat(double a, double b, double x, double y, double *w, double eps) {
  const double bm1 = (b - 0.5) - 0.5;
  const double nu = a + 0.5 * bm1;
  const double lnx = y > 0.375 ? std::log(x) : alnrel(-y);
  const double z = -nu * lnx;
  // Where a term of the expansion underflows its contribution is
  // negligible: *w stays as it is and the call succeeds.
  if (b * z == 0.0) return vel::fail(vel_error_none);

  // r = exp(-z) z^b / Gamma(b); u = r times the scaling of the expansion.
  double r = b * (1.0 + gam1(b)) * std::exp(b * std::log(z));
  r = r * std::exp(a * lnx) * std::exp(0.5 * bm1 * lnx);
  double u = algdiv(b, a) + b * std::log(nu);
  u = r * std::exp(-u);
  if (u == 0.0) return vel::fail(vel_error_none);

  double p;
  double q;
  const int code = grat1(b, z, r, &p, &q, eps);
  if (code != 0) return code;

  const double v = 0.25 * (1.0 / nu) * (1.0 / nu);
  const double t2 = 0.25 * lnx * lnx;
  const double l = *w / u;
  double j = q / r;
  double sum = j;
  double t = 1.0;
  double cn = 1.0;
  double n2 = 0.0;
  double c[30];
  double d[30];
  for (int n = 1; n <= 30; ++n) {
    const double bp2n = b + n2;
    j = (bp2n * (bp2n + 1.0) * j + (z + bp2n + 1.0) * t) * v;
    n2 += 2.0;
    t *= t2;
    cn /= n2 * (n2 + 1.0);
    c[n - 1] = cn;
    double s = 0.0;
    double coef = b - n;
    for (int i = 1; i <= n - 1; ++i) {
      s += coef * c[i - 1] * d[n - i - 1];
      coef += b;
    }
    d[n - 1] = bm1 * cn + s / n;
    const double dj = d[n - 1] * j;
    sum += dj;
    if (sum <= 0.0) return vel::fail(vel_error_none);
    if (std::fabs(dj) <= eps * (sum + l)) break;
  }
  *w += u * sum;
  return vel::fail(vel_error_none);
}

double basym(double a, double b, double lambda, double eps) {
  static const int num = 20;  // largest n of the expansion; even
  static const double e0 = 1.12837916709551;   // 2/sqrt(pi), published digits
  static const double e1 = .353553390593274;   // 2^(-3/2)

  double h;
  double r0;
  double r1;
  double w0;
  if (a < b) {
    h = a / b;
    r0 = 1.0 / (1.0 + h);
    r1 = (b - a) / b;
    w0 = 1.0 / std::sqrt(a * (1.0 + h));
  } else {
    h = b / a;
    r0 = 1.0 / (1.0 + h);
    r1 = (b - a) / a;
    w0 = 1.0 / std::sqrt(b * (1.0 + h));
  }
  const double f = a * rlog1(-lambda / a) + b * rlog1(lambda / b);
  const double t = std::exp(-f);
  if (t == 0.0) return 0.0;
  const double z0 = std::sqrt(f);
  const double z = 0.5 * (z0 / e1);
  const double z2 = f + f;

  // 1-based as published: index 0 unused.
  double a0[num + 2];
  double b0[num + 2];
  double c[num + 2];
  double d[num + 2];
  a0[1] = (2.0 / 3.0) * r1;
  c[1] = -0.5 * a0[1];
  d[1] = -c[1];
  double j0 = (0.5 / e0) * erfc1(1, z0);
  double j1 = e1;
  double sum = j0 + d[1] * w0 * j1;

  double s = 1.0;
  const double h2 = h * h;
  double hn = 1.0;
  double w = w0;
  double znm1 = z;
  double zn = z2;
  for (int n = 2; n <= num; n += 2) {
    hn = h2 * hn;
    a0[n] = 2.0 * r0 * (1.0 + h * hn) / (n + 2.0);
    const int np1 = n + 1;
    s += hn;
    a0[np1] = 2.0 * r1 * s / (n + 3.0);

    for (int i = n; i <= np1; ++i) {
      const double r = -0.5 * (i + 1.0);
      b0[1] = r * a0[1];
      for (int m = 2; m <= i; ++m) {
        double bsum = 0.0;
        for (int jj = 1; jj <= m - 1; ++jj) {
          const int mmj = m - jj;
          bsum += (jj * r - mmj) * a0[jj] * b0[mmj];
        }
        b0[m] = r * a0[m] + bsum / m;
      }
      c[i] = b0[i] / (i + 1.0);
      double dsum = 0.0;
      for (int jj = 1; jj <= i - 1; ++jj) dsum += d[i - jj] * c[jj];
      d[i] = -(dsum + c[i]);
    }

    j0 = e1 * znm1 + (n - 1.0) * j0;
    j1 = e1 * zn + n * j1;
    znm1 = z2 * znm1;
    zn = z2 * zn;
    w = w0 * w;
    const double t0 = d[n] * w * j0;
    w = w0 * w;
    const double t1 = d[np1] * w * j1;
    sum += t0 + t1;
    if (std::fabs(t0) + std::fabs(t1) <= eps * sum) break;
  }
  const double u = std::exp(-bcorr(a, b));
  return e0 * t * u * sum;
}

}  // namespace vel::special
