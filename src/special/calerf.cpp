// erf, erfc and exp(x^2) erfc(x): W. J. Cody's CALERF, rational Chebyshev
// approximations with the published IEEE double-precision constants.
#include <cmath>
#include <cstdint>

#include "special/special.h"

namespace vel::special {

namespace {

constexpr double sqrpi = 5.6418958354775628695E-1;  // 1/sqrt(pi)
constexpr double thresh = 0.46875E0;
constexpr double xinf = 1.79E308;
constexpr double xneg = -26.628E0;
// 2^-53: the published 1.11E-16 taken as the half-ulp of 1 it stands for.
constexpr double xsmall = 1.1102230246251565e-16;
constexpr double xbig = 26.543E0;
constexpr double xhuge = 6.71E7;
constexpr double xmax = 2.53E307;

// |x| <= 0.46875: erf(x) = x * A(x^2) / B(x^2).
constexpr double a[5] = {3.16112374387056560E00, 1.13864154151050156E02,
                         3.77485237685302021E02, 3.20937758913846947E03,
                         1.85777706184603153E-1};
constexpr double b[4] = {2.36012909523441209E01, 2.44024637934444173E02,
                         1.28261652607737228E03, 2.84423683343917062E03};
// 0.46875 < |x| <= 4: exp(x^2) erfc(|x|) = C(|x|) / D(|x|).
constexpr double c[9] = {5.64188496988670089E-1, 8.88314979438837594E0,
                         6.61191906371416295E01, 2.98635138197400131E02,
                         8.81952221241769090E02, 1.71204761263407058E03,
                         2.05107837782607147E03, 1.23033935479799725E03,
                         2.15311535474403846E-8};
constexpr double d[8] = {1.57449261107098347E01, 1.17693950891312499E02,
                         5.37181101862009858E02, 1.62138957456669019E03,
                         3.29079923573345963E03, 4.36261909014324716E03,
                         3.43936767414372164E03, 1.23033935480374942E03};
// |x| > 4: exp(x^2) erfc(|x|) = (1/sqrt(pi) - z P(z) / Q(z)) / |x|, z = 1/x^2.
constexpr double p[6] = {3.05326634961232344E-1, 3.60344899949804439E-1,
                         1.25781726111229246E-1, 1.60837851487422766E-2,
                         6.58749161529837803E-4, 1.63153871373020978E-2};
constexpr double q[5] = {2.56852019228982242E00, 1.87295284992346047E00,
                         5.27905102951428412E-1, 6.05183413124413191E-2,
                         2.33520497626869185E-3};

// exp(-y^2) as exp(-ysq^2) exp(-(y - ysq)(y + ysq)), ysq = trunc(16 y) / 16,
// so that the large exponent is formed without rounding error.
double exp_minus_square(double y) {
  const double ysq = std::trunc(y * 16.0) / 16.0;
  const double del = (y - ysq) * (y + ysq);
  return std::exp(-ysq * ysq) * std::exp(-del);
}

}  // namespace

double calerf(uint32_t jint, double x) {
  const double y = std::fabs(x);
  double result;
  if (y <= thresh) {
    const double ysq = y > xsmall ? x * x : 0.0;
    double xnum = a[4] * ysq;
    double xden = ysq;
    for (int i = 0; i < 3; ++i) {
      xnum = (xnum + a[i]) * ysq;
      xden = (xden + b[i]) * ysq;
    }
    result = x * (xnum + a[3]) / (xden + b[3]);
    if (jint != 0) result = 1.0 - result;
    if (jint == 2) result = std::exp(ysq) * result;
    return result;
  }
  if (y <= 4.0) {
    double xnum = c[8] * y;
    double xden = y;
    for (int i = 0; i < 7; ++i) {
      xnum = (xnum + c[i]) * y;
      xden = (xden + d[i]) * y;
    }
    result = (xnum + c[7]) / (xden + d[7]);
    if (jint != 2) result = exp_minus_square(y) * result;
  } else {
    result = 0.0;
    bool summed = true;
    if (y >= xbig) {
      if (jint != 2 || y >= xmax) {
        summed = false;
      } else if (y >= xhuge) {
        result = sqrpi / y;
        summed = false;
      }
    }
    if (summed) {
      const double ysq = 1.0 / (y * y);
      double xnum = p[5] * ysq;
      double xden = ysq;
      for (int i = 0; i < 4; ++i) {
        xnum = (xnum + p[i]) * ysq;
        xden = (xden + q[i]) * ysq;
      }
      result = ysq * (xnum + p[4]) / (xden + q[4]);
      result = (sqrpi - result) / y;
      if (jint != 2) result = exp_minus_square(y) * result;
    }
  }

  // result is now erfc(|x|) (jint 0, 1) or its scaled form (jint 2).
  if (jint == 0) {
    result = (0.5 - result) + 0.5;
    if (x < 0.0) result = -result;
  } else if (jint == 1) {
    if (x < 0.0) result = 2.0 - result;
  } else if (x < 0.0) {
    if (x < xneg) {
      result = xinf;
    } else {
      const double ysq = std::trunc(x * 16.0) / 16.0;
      const double del = (x - ysq) * (x + ysq);
      const double e = std::exp(ysq * ysq) * std::exp(del);
      result = (e + e) - result;
    }
  }
  return result;
}

}  // namespace vel::special
