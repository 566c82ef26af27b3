// Incomplete beta ratio I_x(a, b), ACM TOMS 708 (BRATIO).
#include <cmath>

#include "common/error.h"
#include "special/beta_internal.h"
#include "special/special.h"

namespace vel::special {

namespace {

// Three times the double-precision epsilon: the tolerance on x + y = 1.
const double sum_tolerance = 6.661338147750939e-16;
// The published max(machine epsilon, 1e-15) with the double epsilon.
const double eps = 1e-15;

struct Roles {
  double a0;
  double b0;
  double x0;
  double y0;
  bool swapped;
};

void swap_roles(Roles *r) {
  double t = r->a0;
  r->a0 = r->b0;
  r->b0 = t;
  t = r->x0;
  r->x0 = r->y0;
  r->y0 = t;
  r->swapped = true;
}

// Writes (value, complement) in the caller's roles.
void store(double *w, double *w1, double value, double complement, bool swapped) {
  *w = swapped ? complement : value;
  *w1 = swapped ? value : complement;
}

// Both parameters above 1: power series and bup for moderate b0, the
// continued fraction or the two-parameter asymptotic expansion otherwise.
// Returns 0 or the error code of grat1 (through bgrat).
int large_parameters(double a, double b, double x, double y, double *w, double *w1) {
  Roles r{a, b, x, y, false};
  double lambda = a > b ? (a + b) * y - b : a - (a + b) * x;
  if (lambda < 0.0) {
    swap_roles(&r);
    lambda = std::fabs(lambda);
  }

  double value;
  if (r.b0 < 40.0 && r.b0 * r.x0 <= 0.7) {
    value = bpser(r.a0, r.b0, r.x0, eps);
  } else if (r.b0 < 40.0) {
    int n = static_cast<int>(r.b0);
    r.b0 -= n;
    if (r.b0 == 0.0) {
      n -= 1;
      r.b0 = 1.0;
    }
    value = bup(r.b0, r.a0, r.y0, r.x0, n, eps);
    if (r.x0 <= 0.7) {
      value += bpser(r.a0, r.b0, r.x0, eps);
    } else {
      if (r.a0 <= 15.0) {
        n = 20;
        value += bup(r.a0, r.b0, r.x0, r.y0, n, eps);
        r.a0 += n;
      }
      const int code = bgrat(r.a0, r.b0, r.x0, r.y0, &value, 15.0 * eps);
      if (code != 0) return code;
    }
  } else {
    const double smaller = min_or_second(r.a0, r.b0);
    if (smaller <= 100.0 || lambda > 0.03 * smaller) {
      value = bfrac(r.a0, r.b0, r.x0, r.y0, lambda, 15.0 * eps);
    } else {
      value = basym(r.a0, r.b0, lambda, 100.0 * eps);
    }
  }
  store(w, w1, value, 0.5 + (0.5 - value), r.swapped);
  return 0;
}

// At least one parameter at most 1.  Returns 0 or the error code of grat1.
int small_parameters(double a, double b, double x, double y, double *w, double *w1) {
  Roles r{a, b, x, y, false};
  if (x > 0.5) swap_roles(&r);
  const double a0 = r.a0;
  const double b0 = r.b0;
  const double x0 = r.x0;
  const double y0 = r.y0;

  // Each branch yields either I_x0 (value) or its complement.
  enum { series, complement_series, complement_bup_bgrat, complement_bgrat } route;
  if (b0 < min_or_second(eps, eps * a0)) {
    const double value = fpser(a0, b0, x0, eps);
    store(w, w1, value, 0.5 + (0.5 - value), r.swapped);
    return 0;
  }
  if (a0 < min_or_second(eps, eps * b0) && b0 * x0 <= 1.0) {
    const double complement = apser(a0, b0, x0, eps);
    store(w, w1, 0.5 + (0.5 - complement), complement, r.swapped);
    return 0;
  }
  if (max_or_second(a0, b0) <= 1.0) {
    if (a0 >= min_or_second(0.2, b0) || std::pow(x0, a0) <= 0.9) {
      route = series;
    } else if (x0 >= 0.3) {
      route = complement_series;
    } else {
      route = complement_bup_bgrat;
    }
  } else if (b0 <= 1.0) {
    route = series;
  } else if (x0 >= 0.3) {
    route = complement_series;
  } else if (x0 < 0.1 && std::pow(x0 * b0, a0) <= 0.7) {
    route = series;
  } else if (b0 > 15.0) {
    route = complement_bgrat;
  } else {
    route = complement_bup_bgrat;
  }

  if (route == series) {
    const double value = bpser(a0, b0, x0, eps);
    store(w, w1, value, 0.5 + (0.5 - value), r.swapped);
    return 0;
  }
  if (route == complement_series) {
    const double complement = bpser(b0, a0, y0, eps);
    store(w, w1, 0.5 + (0.5 - complement), complement, r.swapped);
    return 0;
  }
  double complement = 0.0;
  double b_start = b0;
  if (route == complement_bup_bgrat) {
    const int n = 20;
    complement = bup(b0, a0, y0, x0, n, eps);
    b_start += n;
  }
  const int code = bgrat(b_start, a0, y0, x0, &complement, 15.0 * eps);
  if (code != 0) return code;
  store(w, w1, 0.5 + (0.5 - complement), complement, r.swapped);
  return 0;
}

}  // namespace

int beta_ratio(double *w, double *w1, double a, double b, double x, double y) {
  // Negated tests so that NaN arguments are refused.
  if (!(a >= 0.0) || !(b >= 0.0) || !(x >= 0.0 && x <= 1.0) || !(y >= 0.0 && y <= 1.0) ||
      !(std::fabs(((x + y) - 0.5) - 0.5) <= sum_tolerance)) {
    return vel::fail(vel_error_usage);
  }

  // Zero arguments; a == 0 is tested first, so a == 0 with x == 0 gives 1.
  if (a == 0.0 || y == 0.0) {
    if (b == 0.0) return vel::fail(vel_error_usage);
    *w = 1.0;
    *w1 = 0.0;
    return vel::fail(vel_error_none);
  }
  if (b == 0.0 || x == 0.0) {
    *w = 0.0;
    *w1 = 1.0;
    return vel::fail(vel_error_none);
  }
  vel::fail(vel_error_none);

  if (max_or_second(a, b) < 1e-3 * eps) {
    *w = b / (a + b);
    *w1 = a / (a + b);
    return 0;
  }
  if (min_or_second(a, b) > 1.0) return large_parameters(a, b, x, y, w, w1);
  return small_parameters(a, b, x, y, w, w1);
}

}  // namespace vel::special
