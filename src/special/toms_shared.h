// Auxiliary routines shared by the incomplete gamma and incomplete beta
// packages (ACM TOMS 654 and 708), under their published names.
#pragma once

namespace vel::special {

// Largest (l == 0) or most negative (l != 0) w for which exp(w) is finite
// and nonzero in double precision.
double exparg(int l);
// 1/Gamma(a + 1) - 1 for -0.5 <= a <= 1.5.
double gam1(double a);
// exp(x) - 1.
double rexp(double x);
// x - 1 - ln x.
double rlog(double x);
// P(a, x) and Q(a, x) for a <= 1, given r = exp(-x) x^a / Gamma(a).
// Returns 0, or the error code it set.
int grat1(double a, double x, double r, double *p, double *q, double eps);
// P(a, x) and Q(a, x) for a < 1, x < 1.1 by the Taylor series of P(a, x)/x^a,
// summed until a term is below tol.  Returns 0.
int small_x_ratios(double a, double x, double tol, double *p, double *q);
// Q(a, x) / r, r = exp(-x) x^a / Gamma(a), by the continued fraction for
// x >= 1.1, iterated until two successive convergents agree within tol.
double continued_fraction_q_over_r(double a, double x, double tol);

}  // namespace vel::special
