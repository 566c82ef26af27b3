// Special functions and interval probabilities.  Depends on nothing but the
// standard library and the thread-local error code.
#pragma once

#include <cstdint>

extern "C" {

// Interval probabilities shared with the rest of the library.
double _vel_Gauss_cdf(double x1, double x2, double mean, double variance);
double _vel_normal_c(double x);
double _vel_chi_square_c(double x, uint64_t df);
double _vel_F_distribution_c(double x, uint64_t d1, double d2);
double _vel_Binomial_cdf(double x1, double x2, double n, double p, double q);
double _vel_Poisson_cdf(double x1, double x2, double lambda);

}  // extern "C"

namespace vel::special {

// Interval probabilities private to the library (interval_cdfs_continuous.cpp,
// interval_cdfs_discrete.cpp).
double LogNormal_cdf(double x1, double x2, double mean, double variance);
double Beta_cdf(double x1, double x2, double alpha, double beta, double lower, double upper);
double Gamma_cdf(double x1, double x2, double shape, double scale);
double Weibull_cdf(double x1, double x2, double k, double lambda);
double Exponential_cdf(double x1, double x2, double scale);
double Uniform_cdf(double x1, double x2, double a, double b);
double Triangular_cdf(double x1, double x2, double a, double m, double b);
double NegativeBinomial_cdf(double x1, double x2, double r, double p, double q);
double Geometric_cdf(double x1, double x2, double p, double q);

// Error functions: Cody's CALERF (calerf.cpp) and the incomplete-beta
// package's pair (erf1.cpp).
double calerf(uint32_t jint, double x);
double erf1(double x);
double erfc1(int ind, double x);

// Incomplete beta ratio I_x(a, b) and its complement (beta_ratio.cpp).
int beta_ratio(double *w, double *w1, double a, double b, double x, double y);
// Incomplete gamma ratio P(a, x), Q(a, x) (gamma_ratio.cpp).
int gamma_ratio(double *p, double *q, double a, double x);
// Gamma function and the extended-precision logarithm it uses (gamma_function.cpp).
double Gamma(double a);
long double glog(double x);

}  // namespace vel::special
