// Private routines of the incomplete beta ratio, ACM TOMS 708 (BRATIO),
// under their published names.  Shared auxiliaries (exparg, gam1, rexp,
// rlog, grat1, erf1, erfc1) are declared in toms_shared.h and special.h.
#pragma once

#include "special/min_max.h"

namespace vel::special {

// --- Series (beta_series.cpp) ---

// I_x(a, b) for b < min(eps, eps*a) and x <= 0.5.
double fpser(double a, double b, double x, double eps);
// I_{1-x}(b, a) for a <= min(eps, eps*b), b*x <= 1 and x <= 0.5.
double apser(double a, double b, double x, double eps);
// Power series for I_x(a, b) when b <= 1 or b*x <= 0.7.
double bpser(double a, double b, double x, double eps);
// I_x(a, b) - I_x(a + n, b) for a positive integer n.
double bup(double a, double b, double x, double y, int n, double eps);

// --- Continued fraction (beta_fraction.cpp) ---

// I_x(a, b) for a, b > 1, lambda = (a + b)*y - b.
double bfrac(double a, double b, double x, double y, double lambda, double eps);

// --- Asymptotic expansions (beta_asymptotic.cpp) ---

// Adds the asymptotic expansion of I_x(a, b) (a >= 15, b <= 1) to *w.
// Returns 0, or the error code that grat1 left; when the expansion
// underflows *w is left unchanged and the call succeeds.
int bgrat(double a, double b, double x, double y, double *w, double eps);
// I_x(a, b) for large a and b, lambda = (a + b)*y - b >= 0.
double basym(double a, double b, double lambda, double eps);

// --- Prefactors (beta_prefactors.cpp) ---

// x^a y^b / B(a, b).
double brcomp(double a, double b, double x, double y);
// exp(mu) x^a y^b / B(a, b).
double brcmp1(int mu, double a, double b, double x, double y);
// exp(mu + x), formed without spurious overflow.
double esum(int mu, double x);
// 1/Gamma(a + b + 1), through gam1 at a + b - 1 (summed in 80 bits) when
// a + b > 1; shared by bpser, brcomp and brcmp1.
double reciprocal_gamma_sum(double a, double b);
// For a0 < 1 < *b0 < 8: ln Gamma(1 + a0) minus the logarithm of the
// recurrence product that takes *b0 down by trunc(*b0 - 1); *b0 is reduced
// in place, ending in [1, 2).
double reduce_b(double a0, double *b0);

// --- Logarithms of gamma and beta (log_gamma.cpp) ---

// ln Gamma(a), a > 0.
double gamln(double a);
// ln Gamma(1 + a) for -0.2 <= a <= 1.25.
double gamln1(double a);
// ln(Gamma(b) / Gamma(a + b)) for b >= 8.
double algdiv(double a, double b);
// ln B(a0, b0).
double betaln(double a0, double b0);
// del(a0) + del(b0) - del(a0 + b0) for a0, b0 >= 8, where del is the
// remainder of Stirling's formula for ln Gamma.
double bcorr(double a0, double b0);
// ln Gamma(a + b) for 1 <= a, b <= 2.
double gsumln(double a, double b);

// --- Elementary functions (elementary.cpp) ---

// ln(1 + a).
double alnrel(double a);
// x - ln(1 + x).
double rlog1(double x);
// Digamma function; 0 when it cannot be computed.
double psi(double xx);
// a + b - 1 and a + b - 2 summed in 80-bit precision and rounded once.
double sum_minus_one(double a, double b);
double sum_minus_two(double a, double b);

// a / (a + b) and b / (a + b), formed from the ratio of the smaller
// parameter to the larger as the published routines form them.
inline void parameter_shares(double a, double b, double *a_share, double *b_share) {
  const double h = a > b ? b / a : a / b;
  const double larger = 1.0 / (1.0 + h), smaller = h / (1.0 + h);
  *a_share = a > b ? larger : smaller;
  *b_share = a > b ? smaller : larger;
}

}  // namespace vel::special
