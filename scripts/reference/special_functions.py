#!/usr/bin/python3
# Reference tables for the special-function tests, computed with mpmath.
#
# Regenerate from the repository root with Debian's python3-mpmath:
#     /usr/bin/python3 scripts/reference/special_functions.py
# It rewrites tests/special/data/*.csv (one to three minutes).
#
# Every value is computed twice, at 50 and at 70 significant digits; a point
# where the two disagree beyond 1e-35 relative is dropped and reported on
# stderr.  Points whose reference lies outside [1e-300, largest double] are
# not written.
#
# Each row holds the double inputs (shortest round-trip text), the reference
# (20 significant digits) and an allowance that the tests add to the
# function's tolerance: 8 u times the relative condition number of the exact
# function in its inputs (u = 2^-53), which is what an ideal evaluation from
# correctly rounded inputs may lose.  For the ratio and error functions that
# is the condition of the call itself; for the interval functions it is
#   kappa = sum_i |x_i dP/dx_i| / |P|
# by central differences over the real inputs (counts the code takes as
# integers, and ends that act only through their ceiling, do not count).
# The interval tables carry a second allowance, the one the formula the code
# must follow admits from its own rounding:
#   8 u * (sum_i |T_i| kappa_i + sum_i |T_i|) / |ref|
# with T_i the terms the formula subtracts and kappa_i the condition number of
# the call that delivers T_i; the tests accept a row between the two
# allowances only for the rows a function's count allows.
import math
import os
import sys

import mpmath as mp
from mpmath import mpf

HIGH_DPS = 70
LOW_DPS = 50
KAPPA_DPS = 25
AGREEMENT = mpf(10) ** -35
UNIT = mpf(2) ** -53
DBL_MAX = sys.float_info.max
DATA_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "special", "data")

dropped = []


# ---------------------------------------------------------------------------
# High-precision functions (at the current mp.dps).

def scaled_erfc_asymptotic(x):
    """exp(x^2) erfc(x) for x > 1e6 by its asymptotic series (mpmath's erfc
    gives up on very large arguments)."""
    total, term, n = mpf(0), mpf(1), 0
    while abs(term) > mpf(10) ** (-mp.mp.dps - 5):
        total += term
        n += 1
        term *= -(2 * n - 1) / (2 * x * x)
    return total / (x * mp.sqrt(mp.pi))


def erf_value(jint, x):
    """erf (jint 0), erfc (1) or exp(x^2) erfc(x) (2)."""
    x = mpf(x)
    if abs(x) > 1e6:
        tail = mp.exp(-x * x) * scaled_erfc_asymptotic(abs(x))
        erfc = tail if x > 0 else 2 - tail
        return [1 - erfc, erfc, mp.exp(x * x) * erfc][jint]
    if jint == 0:
        return mp.erf(x)
    if jint == 1:
        return mp.erfc(x)
    return mp.exp(x * x) * mp.erfc(x)


def erf_kappa(jint, z):
    """Condition number |z f'(z) / f(z)| of erf, erfc or the scaled erfc."""
    z = mpf(z)
    if z == 0:
        return mpf(0)
    # 2 z f - 2 / sqrt(pi) cancels to about 1/z^2 relative for large z.
    with mp.workdps(KAPPA_DPS + 2 * int(mp.log10(abs(z) + 1))):
        f = erf_value(jint, z)
        g = 2 / mp.sqrt(mp.pi) * mp.exp(-z * z)
        if jint == 2:
            return abs(z * (2 * z * f - 2 / mp.sqrt(mp.pi)) / f)
        return abs(z * g / f)


def with_guard(direct):
    """Evaluates direct() -> (s, other = 1 - s) again with more digits when
    1 - s cancels, so that both members keep full relative accuracy."""
    s = direct()
    other = 1 - s
    if other != 0 and abs(other) < mpf(10) ** -8:
        extra = int(-mp.log10(abs(other))) + 10
        with mp.extradps(extra):
            s = direct()
            other = 1 - s
    return s, other


def continued_fraction(d, c, terms, what):
    """d times the product of the modified Lentz steps over the terms
    (a_k, b_k) of b_0 + a_1 / (b_1 + a_2 / (b_2 + ...)), d = 1 / b_0 and c
    its start, until a step changes the product by less than the precision."""
    eps = mpf(10) ** (-mp.mp.dps - 3)
    tiny = mpf(10) ** (-10 * mp.mp.dps)
    h = d
    for a_k, b_k in terms:
        d = b_k + a_k * d
        d = 1 / (d if abs(d) > tiny else tiny)
        c = b_k + a_k / c
        if abs(c) < tiny:
            c = tiny
        delta = d * c
        h *= delta
        if abs(delta - 1) < eps:
            return h
    raise RuntimeError(what + " continued fraction did not converge")


def beta_cf(a, b, x):
    """I_x(a, b) by its continued fraction (modified Lentz); converges fast
    for x < (a + 1) / (a + b + 2)."""
    tiny = mpf(10) ** (-10 * mp.mp.dps)
    qab, qap, qam = a + b, a + 1, a - 1
    d = 1 - qab * x / qap

    def terms():
        for m in range(1, 10 ** 7):
            m2 = 2 * m
            yield m * (b - m) * x / ((qam + m2) * (a + m2)), 1
            yield -(a + m) * (qab + m) * x / ((a + m2) * (qap + m2)), 1

    h = continued_fraction(1 / (d if abs(d) > tiny else tiny), mpf(1), terms(), "beta")
    return x ** a * (1 - x) ** b / (a * mp.beta(a, b)) * h


def beta_pair(a, b, x):
    """(I_x(a, b), 1 - I_x(a, b)) for doubles a, b, x; x in [0, 1]."""
    a, b, x = mpf(a), mpf(b), mpf(x)
    if x == 0:
        return mpf(0), mpf(1)
    if x == 1:
        return mpf(1), mpf(0)
    y = 1 - x
    if a == 0:
        return mpf(1), mpf(0)
    if b == 0:
        return mpf(0), mpf(1)
    if x * (a + b + 2) < a + 1:
        return with_guard(lambda: beta_cf(a, b, x))
    w1, w = with_guard(lambda: beta_cf(b, a, y))
    return w, w1


def gamma_series(a, x):
    """P(a, x) by its power series; terms decrease from the start for x < a + 1."""
    eps = mpf(10) ** (-mp.mp.dps - 3)
    total, term, k = mpf(1), mpf(1), 0
    while term > eps * total:
        k += 1
        term *= x / (a + k)
        total += term
    return mp.exp(a * mp.log(x) - x - mp.loggamma(a + 1)) * total


def gamma_cf(a, x):
    """Q(a, x) by Legendre's continued fraction (modified Lentz), for x > a + 1."""
    tiny = mpf(10) ** (-10 * mp.mp.dps)
    b = x + 1 - a
    terms = ((-i * (i - a), b + 2 * i) for i in range(1, 10 ** 7))
    h = continued_fraction(1 / b, 1 / tiny, terms, "gamma")
    return mp.exp(a * mp.log(x) - x - mp.loggamma(a)) * h


def gamma_pair(a, x):
    """(P(a, x), Q(a, x)) for doubles a, x >= 0."""
    a, x = mpf(a), mpf(x)
    if x == 0:
        return mpf(0), mpf(1)
    if a == 0:
        return mpf(1), mpf(0)
    if x < a + 1:
        return with_guard(lambda: gamma_series(a, x))
    q, p = with_guard(lambda: gamma_cf(a, x))
    return p, q


def log_derivative_sum(f, args, scales, limits=None):
    """sum_i |scale_i df/d arg_i| / |f|, by central differences with steps
    of 1e-9 times scale_i (and times limits_i where an argument must stay
    inside its domain)."""
    f0 = f(*args)
    if f0 == 0:
        return mpf(0)
    total = mpf(0)
    for i, scale in enumerate(scales):
        if scale == 0:
            continue
        h = min(abs(scale), limits[i] if limits else abs(scale)) * mpf(10) ** -9
        up = list(args)
        down = list(args)
        up[i] += h
        down[i] -= h
        total += abs(scale * (f(*up) - f(*down)) / (2 * h))
    return total / abs(f0)


def gamma_kappa(tail, a, x):
    a, x = mpf(a), mpf(x)
    if x == 0 or a == 0:
        return mpf(0)
    with mp.workdps(KAPPA_DPS):
        return log_derivative_sum(lambda s, t: gamma_pair(s, t)[tail], [a, x], [a, x])


def beta_kappa(tail, a, b, x, formed=False):
    """formed: x was rounded as a whole (not only its smaller member of x, y)."""
    a, b, x = mpf(a), mpf(b), mpf(x)
    if x == 0 or x == 1 or a == 0 or b == 0:
        return mpf(0)
    with mp.workdps(KAPPA_DPS):
        return log_derivative_sum(lambda s, t, u: beta_pair(s, t, u)[tail],
                                  [a, b, x], [a, b, x if formed else min(x, 1 - x)],
                                  [a, b, min(x, 1 - x)])


# ---------------------------------------------------------------------------
# Calls: each returns (value, kappa); kappa only when asked for.

def call_erf(jint, z, need_kappa):
    return erf_value(jint, z), (erf_kappa(jint, z) if need_kappa else 0)


def call_gamma(tail, a, x, need_kappa):
    return gamma_pair(a, x)[tail], (gamma_kappa(tail, a, x) if need_kappa else 0)


def call_beta(tail, a, b, x, need_kappa, formed=False):
    return beta_pair(a, b, x)[tail], (beta_kappa(tail, a, b, x, formed) if need_kappa else 0)


# ---------------------------------------------------------------------------
# Interval functions, mirroring the double-precision branch decisions of the
# code.  Each returns (value, terms, single) where terms are (T, kappa) and
# single says the value is one call's result, not a difference.

BREAK = 0.46875


def ref_gauss(k, x1, x2, mean, variance, exact=None, widen=(1, 1)):
    """exact: the bounds in full precision when the double ones were rounded
    (LogNormal); widen: factors on the erf condition numbers for that
    rounding."""
    if x1 >= x2:
        return mpf(0), [], True
    s = math.sqrt(variance + variance)
    z1d, z2d = (x1 - mean) / s, (x2 - mean) / s
    e1, e2 = exact if exact else (mpf(x1), mpf(x2))
    sm = mp.sqrt(2 * mpf(variance))
    z1, z2 = (e1 - mean) / sm, (e2 - mean) / sm
    w1, w2 = widen
    if abs(z1d) > abs(z2d):
        z1d, z2d = -z2d, -z1d
        z1, z2 = -z2, -z1
        w1, w2 = w2, w1

    def erf_call(jint, z, w):
        value, kappa = call_erf(jint, z, k)
        return value, kappa * w

    if z1d >= BREAK:
        terms = [erf_call(1, z1, w1), erf_call(1, z2, w2)]
        value = terms[0][0] - terms[1][0]
    elif z2d <= BREAK:
        terms = [erf_call(0, z2, w2), erf_call(0, z1, w1)]
        value = terms[0][0] - terms[1][0]
    elif z1d < -BREAK:
        terms = [(mpf(2), 0), erf_call(1, -z1, w1), erf_call(1, z2, w2)]
        value = 2 - terms[1][0] - terms[2][0]
    else:
        terms = [erf_call(1, z1, w1), erf_call(1, z2, w2)]
        value = terms[0][0] - terms[1][0]
    return value / 2, [(t / 2, kk) for t, kk in terms], False


def ref_lognormal(k, x1, x2, mean, variance):
    if x1 >= x2 or x2 <= 0:
        return mpf(0), [], True
    # The code rounds ln x to double: an absolute error u |ln x| that the
    # subtraction of the mean may magnify.
    l1 = math.log(x1) if x1 > 0 else -DBL_MAX
    l2 = math.log(x2)
    e1 = mp.log(mpf(x1)) if x1 > 0 else mpf(-DBL_MAX)
    e2 = mp.log(mpf(x2))
    widen = tuple(1 + (abs(l) / abs(l - mean) if l != mean else 0) for l in (l1, l2))
    return ref_gauss(k, l1, l2, mean, variance, (e1, e2), widen)


def smaller_tail(p1, q1, p2, q2):
    """(value, terms) of the smaller-tail difference; p and q are (value, kappa)."""
    if q2[0] >= p1[0]:
        return p2[0] - p1[0], [p2, p1]
    return q1[0] - q2[0], [q1, q2]


def ref_beta_cdf(k, x1, x2, alpha, beta, lower, upper):
    x1, x2 = max(x1, lower), min(x2, upper)
    if x1 >= x2:
        return mpf(0), [], True
    rng = mpf(upper) - lower
    u1, u2 = (mpf(x1) - lower) / rng, (mpf(x2) - lower) / rng
    pair = [[call_beta(t, alpha, beta, u, k, True) for t in (0, 1)] for u in (u1, u2)]
    value, terms = smaller_tail(pair[0][0], pair[0][1], pair[1][0], pair[1][1])
    return value, terms, False


def ref_gamma_cdf(k, x1, x2, shape, scale):
    x1 = max(x1, 0.0)
    t1 = mpf(x1) / scale
    if x2 >= DBL_MAX:
        q1 = call_gamma(1, shape, t1, k)
        return q1[0], [q1], True
    t2 = mpf(x2) / scale
    p1, q1 = call_gamma(0, shape, t1, k), call_gamma(1, shape, t1, k)
    p2, q2 = call_gamma(0, shape, t2, k), call_gamma(1, shape, t2, k)
    value, terms = smaller_tail(p1, q1, p2, q2)
    return value, terms, False


def ref_chi_square_c(k, x, df):
    return ref_gamma_cdf(k, x, DBL_MAX, 0.5 * df, 2.0)


def ref_F_c(k, x, d1, d2):
    t = mpf(d1) * x
    return ref_beta_cdf(k, t / (t + d2), 1.0, 0.5 * d1, 0.5 * d2, 0.0, 1.0)


def ref_normal_c(k, x):
    return ref_gauss(k, x, DBL_MAX, 0.0, 1.0)


def exp_term(x, kshape, lam, need_kappa):
    w = (mpf(x) / lam) ** kshape
    return mp.exp(-w), (w * (abs(kshape) + 1) if need_kappa else 0)


def ref_weibull(k, x1, x2, kshape, lam):
    x1, x2 = max(x1, 0.0), max(x2, 0.0)
    e1 = exp_term(x1, kshape, lam, k)
    if x2 >= DBL_MAX:
        return e1[0], [e1], True
    e2 = exp_term(x2, kshape, lam, k)
    return e1[0] - e2[0], [e1, e2], False


def ref_exponential(k, x1, x2, s):
    return ref_weibull(k, x1, x2, 1.0, s)


def ref_uniform(k, x1, x2, a, b):
    lo, hi = max(a, x1), min(x2, b)
    if lo >= hi:
        return mpf(0), [], True
    # Two subtractions of exact doubles and a division: three roundings.
    value = (mpf(hi) - lo) / (mpf(b) - a)
    return value, [(value, 3)], True


def triangle_piece(x, y, a, m, b):
    x, y, a, m, b = (mpf(v) for v in (x, y, a, m, b))
    # Differences of exact doubles (the mode m may equal y), one sum of
    # like-signed terms, two products and a division: eight roundings.
    value = ((y - a) + (x - a)) * (y - x) / ((b - a) * (m - a))
    return value, 8


def ref_triangular(k, x1, x2, a, m, b):
    lo, hi = max(a, x1), min(x2, b)
    if lo >= hi:
        return mpf(0), [], True
    if m >= hi:
        pieces = [triangle_piece(lo, hi, a, m, b)]
    elif lo < m:
        pieces = [triangle_piece(lo, m, a, m, b), triangle_piece(hi, m, b, m, a)]
    else:
        pieces = [triangle_piece(hi, lo, b, m, a)]
    value = sum(p[0] for p in pieces)
    return value, pieces, True


def discrete_difference(w1, v1, w2, v2):
    if v1[0] >= w2[0]:
        return w1[0] - w2[0], [w1, w2]
    return v2[0] - v1[0], [v2, v1]


EXACT_ONE, EXACT_ZERO = (mpf(1), 0), (mpf(0), 0)


def ref_binomial(k, x1, x2, n, p, q):
    c1, c2 = math.ceil(x1), math.ceil(x2)
    if c1 > n or c2 <= 0 or c1 >= c2:
        return mpf(0), [], True
    b1, b2 = n - c1 + 1, n - c2 + 1
    w1, v1, w2, v2 = EXACT_ONE, EXACT_ZERO, EXACT_ZERO, EXACT_ONE
    if c1 > 0:
        w1, v1 = call_beta(0, c1, b1, p, k), call_beta(1, c1, b1, p, k)
    if b2 > 0:
        w2, v2 = call_beta(0, c2, b2, p, k), call_beta(1, c2, b2, p, k)
    value, terms = discrete_difference(w1, v1, w2, v2)
    return value, terms, False


def ref_poisson(k, x1, x2, lam):
    c1, c2 = math.ceil(x1), math.ceil(x2)
    if c2 <= 0 or c1 >= c2 or lam == 0:
        return mpf(0), [], True
    w1, v1, w2, v2 = EXACT_ONE, EXACT_ZERO, EXACT_ZERO, EXACT_ONE
    if c1 > 0:
        w1, v1 = call_gamma(0, c1, lam, k), call_gamma(1, c1, lam, k)
    if c2 < DBL_MAX:
        w2, v2 = call_gamma(0, c2, lam, k), call_gamma(1, c2, lam, k)
    value, terms = discrete_difference(w1, v1, w2, v2)
    return value, terms, False


def ref_negative_binomial(k, x1, x2, r, p, q):
    # I_q(c, r) is evaluated at the exact 1 - p: q is formed by the caller,
    # and the condition number in x covers that rounding.
    c1, c2 = math.ceil(x1), math.ceil(x2)
    if c2 <= 0 or c1 >= c2:
        return mpf(0), [], True
    qe = 1 - mpf(p)
    w1, v1, w2, v2 = EXACT_ONE, EXACT_ZERO, EXACT_ZERO, EXACT_ONE
    if c1 > 0:
        w1, v1 = call_beta(0, c1, r, qe, k), call_beta(1, c1, r, qe, k)
    if c2 < DBL_MAX:
        w2, v2 = call_beta(0, c2, r, qe, k), call_beta(1, c2, r, qe, k)
    value, terms = discrete_difference(w1, v1, w2, v2)
    return value, terms, False


def ref_geometric(k, x1, x2, p, q):
    return ref_negative_binomial(k, x1, x2, 1.0, p, q)


# ---------------------------------------------------------------------------
# Allowances and output.

def allowance_of(value, terms, single):
    if value == 0:
        return mpf(0)
    if single:
        return 8 * UNIT * sum(abs(t) * kk for t, kk in terms) / abs(value)
    spread = sum(abs(t) * kk for t, kk in terms) + sum(abs(t) for t, _ in terms)
    return 8 * UNIT * spread / abs(value)


def in_range(value):
    return value != 0 and mpf(10) ** -300 <= abs(value) <= DBL_MAX


def agreed(name, inputs, evaluate):
    """evaluate() at both precisions; the high one, or None when they differ."""
    with mp.workdps(LOW_DPS):
        low = evaluate()
    with mp.workdps(HIGH_DPS):
        high = evaluate()
    if high != 0 and abs(low - high) > AGREEMENT * abs(high):
        dropped.append((name, inputs, float(abs(low - high) / abs(high))))
        return None
    return high


def text(x):
    return repr(float(x)) if not isinstance(x, int) else str(x)


def write_table(name, columns, rows):
    """Rows are (inputs, value, allowance) or, for the interval functions,
    (inputs, value, allowance, formula allowance)."""
    path = os.path.join(DATA_DIR, name + ".csv")
    allowances = ["allowance", "formula_allowance"][:len(rows[0]) - 2] if rows else ["allowance"]
    with open(path, "w") as out:
        out.write("# " + name + ": reference values from scripts/reference/special_functions.py\n")
        out.write(",".join(columns + ["reference"] + allowances) + "\n")
        for inputs, value, *allowance in rows:
            out.write(",".join([text(v) for v in inputs]
                               + [mp.nstr(value, 20, strip_zeros=False)]
                               + ["%.3g" % float(a) for a in allowance]) + "\n")
    print("%-24s %5d rows" % (name, len(rows)))


def exact_condition(reference, inputs, value, fixed):
    """The relative condition number of the exact function in its inputs,
    sum over i of |x_i dP/dx_i| / |P|, by central differences.  Inputs in
    `fixed` (counts the code takes as integers, ends that act only through
    their ceiling), zeros and infinite ends (+-DBL_MAX) do not count."""
    total = mpf(0)
    with mp.workdps(KAPPA_DPS + 15):
        for i, x in enumerate(inputs):
            if i in fixed or x == 0 or abs(x) >= DBL_MAX:
                continue
            h = abs(mpf(x)) * mpf(10) ** -12
            up, down = list(inputs), list(inputs)
            up[i], down[i] = mpf(x) + h, mpf(x) - h
            slope = (reference(False, *up)[0] - reference(False, *down)[0]) / (2 * h)
            total += abs(x * slope)
    return total / abs(value)


def interval_table(name, columns, reference, points, fixed=()):
    """Rows with two allowances: the exact function's (8 u times its
    condition number), and the one the prescribed formula's own rounding
    admits (from the terms it subtracts), which the tests hold apart."""
    rows = []
    seen = set()
    fixed = {columns.index(c) for c in fixed}
    for inputs in points:
        inputs = tuple(inputs)
        if inputs in seen:
            continue
        seen.add(inputs)
        value = agreed(name, inputs, lambda: reference(False, *inputs)[0])
        if value is None or value <= 0 or not in_range(value):
            continue
        with mp.workdps(KAPPA_DPS + 10):
            v, terms, single = reference(True, *inputs)
        rows.append((inputs, value, 8 * UNIT * exact_condition(reference, inputs, value, fixed),
                     allowance_of(v, terms, single)))
    write_table(name, columns, rows)


# ---------------------------------------------------------------------------
# Grids.

def around(x):
    """x and its two neighbouring doubles: both sides of a branch threshold."""
    return [math.nextafter(x, -math.inf), x, math.nextafter(x, math.inf)]


def log_grid(lo, hi, count):
    return [float(mpf(lo) * (mpf(hi) / lo) ** (mpf(i) / (count - 1))) for i in range(count)]


def erf_points():
    base = [0.0, 1e-300, 1e-30, 1e-17, 1.1102230246251565e-16, 1e-10, 1e-5, 0.01, 0.1, 0.25,
            0.4, 0.5, 0.75, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 3.999, 4.5, 5.0, 5.5, 5.6,
            5.799, 6.0, 7.0, 8.0, 10.0, 12.5, 15.0, 20.0, 25.0, 26.0, 26.5, 26.54, 26.55,
            26.6, 27.0, 30.0, 50.0, 100.0, 1e3, 1e5, 67099999.0, 67100001.0, 1e9,
            1e100, 2.5e307]
    base += around(0.46875) + around(4.0) + around(0.5) + around(5.8)
    base += log_grid(0.05, 26.0, 40)
    points = sorted(set(base))
    return [-x for x in points if x > 0] + points


def gamma_ratio_points():
    pts = []
    small_a = [1e-20, 1e-10, 1e-3, 0.1, 0.3, 0.5, 0.7, 0.99]
    for a in small_a:
        for x in [1e-300, 1e-100, 1e-10, 1e-3, 0.1, 0.25, 0.5, 1.0, 1.09, 1.1, 1.5, 3.0, 31.0, 100.0]:
            pts.append((a, x))
    for a in [1.0, 2.0, 3.0, 5.0, 10.0, 15.0, 19.0, 1.5, 2.5, 7.5, 12.5, 19.5]:
        for f in [0.01, 0.3, 0.7, 1.0, 1.3, 2.0, 4.0]:
            pts.append((a, a * f))
    for a in [0.3, 2.5, 7.0, 15.3, 25.0, 100.0]:
        for x in [31.0, 50.0, 200.0, 700.0]:
            pts.append((a, x))
    for a in [20.0, 25.0, 50.0, 100.0, 1e3, 1e4, 1e5]:
        for d in [0.0, 1e-10, 1e-6, 1e-3, 0.01, 0.05, 0.1, 0.2, 0.3, 0.39, 0.41, 0.5]:
            pts.append((a, a * (1 + d)))
            if d:
                pts.append((a, a * (1 - d)))
    for a in log_grid(1e-3, 1e5, 9):
        for x in log_grid(1e-3, 1e5, 9):
            pts.append((a, x))
    return pts


def gamma_points():
    pts = [-170.5, -150.25, -100.3, -20.5, -10.5, -2.5, -1.5, -0.5, -1e-10,
           1e-300, 1e-100, 1e-20, 1e-5, 0.1, 0.5, 1.0, 1.5, 2.0, 2.5, 3.7, 10.0, 14.9,
           15.0, 15.1, 20.0, 50.0, 100.0, 150.0, 170.0, 171.6, 171.7]
    pts += log_grid(1e-3, 171.0, 40)
    return sorted(set(pts))


def beta_ratio_points():
    pts = []
    params = [1e-20, 1e-17, 1e-10, 1e-3, 0.1, 0.2, 0.3, 0.5, 0.7, 0.9, 1.0, 1.5, 2.0,
              5.0, 15.0, 39.0, 40.0, 41.0, 100.0, 101.0, 1e3, 1e4, 1e5]
    xs = [1e-300, 1e-10, 1e-3, 0.1, 0.2, 0.3, 0.5, 0.7, 0.9, 0.999, 1 - 2 ** -30]
    # All pairs with a few x values, then the branch-specific regions.
    for i, a in enumerate(params):
        for j, b in enumerate(params):
            pts.append((a, b, (0.1, 0.5, 0.9)[(i + j) % 3]))
    for a, b in [(1e-20, 1e-20), (1e-17, 0.5), (0.5, 1e-17), (0.1, 0.1), (0.3, 0.9),
                 (0.9, 0.3), (0.15, 0.25), (0.5, 1.5), (2.0, 0.5), (0.5, 20.0), (0.7, 1e3),
                 (3.0, 20.0), (20.0, 3.0), (30.0, 35.0)]:
        for x in xs:
            pts.append((a, b, x))
    for a, b in [(50.0, 60.0), (150.0, 120.0), (1e3, 1e3), (1e4, 2e3), (1e5, 1e5),
                 (1e5, 40.0), (45.0, 1e5), (1e5, 1e3)]:
        mean = a / (a + b)
        sd = math.sqrt(a * b / (a + b) ** 2 / (a + b + 1))
        for kdev in (-30, -10, -3, -1, -0.1, 0, 0.1, 1, 3, 10, 30):
            x = mean + kdev * sd
            if 0 < x < 1:
                pts.append((a, b, x))
    # Routes the grids above miss: bup and bup again before bgrat (a0 <= 15,
    # x0 > 0.7 without a swap), and apser with psi's small-argument form
    # (b <= 1e-9) and with the logarithm of b x (b eps > 0.02).
    pts += [(12.0, 3.0, 0.75), (14.0, 2.5, 0.8), (1e-30, 1e-10, 0.5), (1e-30, 1e-10, 0.1),
            (1e-20, 1e14, 1e-15)]
    return pts


def beta_ratio_table():
    rows = []
    for a, b, x in dict.fromkeys(beta_ratio_points()):
        y = 1.0 - x  # exact for x >= 0.5; below, the routine relies on x
        for tail in (0, 1):
            value = agreed("beta_ratio", (tail, a, b, x, y), lambda: beta_pair(a, b, x)[tail])
            if value is None or not in_range(value):
                continue
            rows.append(((tail, a, b, x, y), value, 8 * UNIT * beta_kappa(tail, a, b, x)))
    write_table("beta_ratio", ["tail", "a", "b", "x", "y"], rows)


def gamma_ratio_table():
    rows = []
    for a, x in dict.fromkeys(gamma_ratio_points()):
        for tail in (0, 1):
            value = agreed("gamma_ratio", (tail, a, x), lambda: gamma_pair(a, x)[tail])
            if value is None or not in_range(value):
                continue
            rows.append(((tail, a, x), value, 8 * UNIT * gamma_kappa(tail, a, x)))
    write_table("gamma_ratio", ["tail", "a", "x"], rows)


def error_function_tables():
    rows = []
    for jint in (0, 1, 2):
        for x in erf_points():
            value = agreed("calerf", (jint, x), lambda: erf_value(jint, x))
            if value is not None and in_range(value):
                rows.append(((jint, x), value, 8 * UNIT * erf_kappa(jint, x)))
    write_table("calerf", ["jint", "x"], rows)
    # erf1 is sign(x) from 5.8 on, erfc1(0, x) exactly 2 below -5.6: fixed
    # values, not tested against the reference.
    rows = []
    for x in erf_points():
        if abs(x) >= 5.8:
            continue
        value = agreed("erf1", (x,), lambda: erf_value(0, x))
        if value is not None and in_range(value):
            rows.append(((x,), value, 8 * UNIT * erf_kappa(0, x)))
    write_table("erf1", ["x"], rows)
    rows = []
    for ind in (0, 1):
        jint = 1 if ind == 0 else 2
        for x in erf_points():
            if ind == 0 and (x < -5.6 or x > 100):
                continue
            value = agreed("erfc1", (ind, x), lambda: erf_value(jint, x))
            if value is not None and in_range(value):
                rows.append(((ind, x), value, 8 * UNIT * erf_kappa(jint, x)))
    write_table("erfc1", ["ind", "x"], rows)


def gamma_function_table():
    rows = []
    for a in gamma_points():
        value = agreed("Gamma", (a,), lambda: mp.gamma(mpf(a)))
        if value is not None and in_range(value):
            rows.append(((a,), value, 8 * UNIT * abs(a * mp.digamma(mpf(a)))))
    write_table("Gamma", ["a"], rows)


def interval_tables():
    big = DBL_MAX
    gauss = []
    for mean, var in [(0.0, 1.0), (3.5, 0.25), (-100.0, 1e4)]:
        sd = math.sqrt(var)
        zs = [-37, -8, -3, -0.5, -0.3, -1e-3, 0, 0.3, 0.4, 0.7, 2, 10, 37]
        for i, z1 in enumerate(zs):
            for z2 in zs[i + 1:]:
                gauss.append((mean + z1 * sd, mean + z2 * sd, mean, var))
            gauss.append((mean + z1 * sd, big, mean, var))
            gauss.append((-big, mean + z1 * sd, mean, var))
        gauss.append((mean + 0.1 * sd, mean + (0.1 + 1e-9) * sd, mean, var))
    interval_table("Gauss_cdf", ["x1", "x2", "mean", "variance"], ref_gauss, gauss)
    interval_table("normal_c", ["x"], ref_normal_c,
                   [(x,) for x in [-38.0, -10.0, -1.0, -0.6, -0.5, -0.1, 0.0, 1e-10, 0.3,
                                   0.66, 0.6629126073623883, 1.0, 2.0, 5.0, 10.0, 20.0, 37.0]])
    lognormal = []
    for mean, var in [(0.0, 1.0), (2.0, 0.04), (-5.0, 9.0)]:
        for x1, x2 in [(0.0, 0.5), (-1.0, 1.0), (0.5, 2.0), (1.0, 1e3), (1e-20, 1e-5),
                       (3.0, big), (1e-3, 1.0), (7.0, 8.0), (100.0, 1e5)]:
            lognormal.append((x1, x2, mean, var))
    interval_table("LogNormal_cdf", ["x1", "x2", "mean", "variance"], ref_lognormal, lognormal)
    beta = []
    for alpha, bta, lower, upper in [(2.0, 3.0, 0.0, 1.0), (0.5, 0.5, -1.0, 1.0),
                                     (30.0, 70.0, 10.0, 20.0), (1e3, 2e3, 0.0, 1.0),
                                     (0.2, 5.0, 0.0, 100.0)]:
        for f1, f2 in [(-1.0, 0.01), (0.0, 1e-6), (0.1, 0.2), (0.3, 0.35), (0.33, 0.34),
                       (0.5, 0.9), (0.9, 2.0), (0.999, 1.0), (-big, big), (0.6, big)]:
            x1 = lower + f1 * (upper - lower) if abs(f1) < 10 else f1
            x2 = lower + f2 * (upper - lower) if abs(f2) < 10 else f2
            beta.append((x1, x2, alpha, bta, lower, upper))
    interval_table("Beta_cdf", ["x1", "x2", "alpha", "beta", "lower", "upper"], ref_beta_cdf, beta)
    gamma = []
    for shape, scale in [(0.5, 2.0), (1.0, 1.0), (3.0, 0.5), (25.0, 4.0), (1e-3, 1.0),
                         (1e4, 1e-2), (7.5, 10.0)]:
        mean = shape * scale
        for f1, f2 in [(-1.0, 0.1), (0.0, 1e-3), (0.5, 0.9), (0.9, 1.1), (0.99, 1.01),
                       (1.0, 2.0), (3.0, 10.0), (20.0, 40.0), (2.0, None), (50.0, None),
                       (0.0, None)]:
            gamma.append((f1 * mean, big if f2 is None else f2 * mean, shape, scale))
    interval_table("Gamma_cdf", ["x1", "x2", "shape", "scale"], ref_gamma_cdf, gamma)
    interval_table("chi_square_c", ["x", "df"], ref_chi_square_c, fixed=["df"], points=
                   [(x, df) for df in [1, 2, 3, 10, 41, 100, 1000, 10000]
                    for x in [0.0, 1e-5, 0.5 * df, df - 1.0, float(df), 2.0 * df, 5.0 * df + 30]])
    interval_table("F_distribution_c", ["x", "d1", "d2"], ref_F_c, fixed=["d1"], points=
                   [(x, d1, d2) for d1, d2 in [(1, 1.0), (2, 5.5), (5, 10.0), (30, 0.5),
                                               (100, 200.0), (1000, 1e4)]
                    for x in [0.0, 0.01, 0.5, 1.0, 1.5, 3.0, 10.0, 1e3]])
    weibull = []
    for k, lam in [(1.0, 1.0), (0.5, 2.0), (2.0, 3.0), (5.0, 1.0), (1.0, 1e-3)]:
        for f1, f2 in [(-1.0, 0.5), (0.0, 1e-3), (0.1, 0.2), (1.0, 1.0 + 1e-6), (0.5, 3.0),
                       (2.0, None), (0.0, None), (10.0, 12.0)]:
            weibull.append((f1 * lam, big if f2 is None else f2 * lam, k, lam))
    interval_table("Weibull_cdf", ["x1", "x2", "k", "lambda"], ref_weibull, weibull)
    interval_table("Exponential_cdf", ["x1", "x2", "s"], ref_exponential,
                   [(w[0], w[1], w[3]) for w in weibull if w[2] == 1.0])
    interval_table("Uniform_cdf", ["x1", "x2", "a", "b"], ref_uniform,
                   [(-1.0, 0.5, 0.0, 1.0), (0.25, 0.75, 0.0, 1.0), (0.1, 0.1 + 1e-12, 0.0, 1.0),
                    (-big, big, -3.0, 7.0), (2.0, big, -3.0, 7.0), (1e10, 1e10 + 1.0, 0.0, 1e20)])
    triangular = []
    for a, m, b in [(0.0, 0.5, 1.0), (0.0, 0.0, 2.0), (-1.0, 3.0, 3.0), (10.0, 11.0, 20.0)]:
        w = b - a
        for f1, f2 in [(-1.0, 0.2), (0.1, 0.3), (0.2, 0.8), (0.45, 0.55), (0.7, 0.9),
                       (0.9, 2.0), (-1.0, 2.0), (0.999, 1.0)]:
            triangular.append((a + f1 * w, a + f2 * w, a, m, b))
    interval_table("Triangular_cdf", ["x1", "x2", "a", "m", "b"], ref_triangular, triangular)
    binomial = []
    for n in [1.0, 5.0, 20.0, 100.0, 1e3, 1e4, 1e5, 1e6]:
        for p in [1e-6, 0.01, 0.3, 0.5, 0.9]:
            mean, sd = n * p, math.sqrt(n * p * (1 - p))
            for k1, k2 in [(-30, -10), (-3, -1), (-1, 0), (0, 0.5), (0, 1), (-2, 2), (1, 3),
                           (3, 10), (10, 30), (-1e9, 0), (2, 1e9)]:
                x1 = -big if k1 == -1e9 else math.floor(mean + k1 * sd)
                x2 = big if k2 == 1e9 else math.floor(mean + k2 * sd) + 1
                binomial.append((float(x1), float(x2), n, p, 1.0 - p))
    interval_table("Binomial_cdf", ["x1", "x2", "n", "p", "q"], ref_binomial, binomial,
                   fixed=["x1", "x2", "n", "q"])
    poisson = []
    for lam in [1e-3, 0.5, 1.0, 7.5, 20.0, 100.0, 1e3, 1e4, 1e5]:
        sd = math.sqrt(lam)
        for k1, k2 in [(-30, -10), (-3, -1), (-1, 0), (0, 1), (-2, 2), (1, 3), (3, 10),
                       (10, 30), (-1e9, 0), (2, 1e9), (-1e9, 1e9)]:
            x1 = -big if k1 == -1e9 else float(math.floor(lam + k1 * sd))
            x2 = big if k2 == 1e9 else float(math.floor(lam + k2 * sd) + 1)
            poisson.append((x1, x2, lam))
    interval_table("Poisson_cdf", ["x1", "x2", "lambda"], ref_poisson, poisson, fixed=["x1", "x2"])
    negbin = []
    for r, p in [(1.0, 0.5), (2.5, 0.1), (10.0, 0.9), (100.0, 0.3), (0.5, 0.01), (1e3, 0.5)]:
        q = 1.0 - p
        mean, sd = r * q / p, math.sqrt(r * q) / p
        for k1, k2 in [(-3, -1), (-1, 0), (0, 1), (-2, 2), (1, 3), (3, 10), (10, 30), (2, 1e9)]:
            x1 = float(math.floor(mean + k1 * sd))
            x2 = big if k2 == 1e9 else float(math.floor(mean + k2 * sd) + 1)
            negbin.append((x1, x2, r, p, q))
    interval_table("NegativeBinomial_cdf", ["x1", "x2", "r", "p", "q"], ref_negative_binomial, negbin,
                   fixed=["x1", "x2", "q"])
    interval_table("Geometric_cdf", ["x1", "x2", "p", "q"], ref_geometric, fixed=["x1", "x2", "q"], points=
                   [(x1, x2, p, 1.0 - p) for p in [0.5, 0.01, 0.9]
                    for x1, x2 in [(0.0, 1.0), (1.0, 5.0), (3.0, 4.0), (10.0, big), (0.5, 2.5),
                                   (50.0, 60.0), (500.0, big)]])


def main():
    os.makedirs(DATA_DIR, exist_ok=True)
    error_function_tables()
    gamma_function_table()
    gamma_ratio_table()
    beta_ratio_table()
    interval_tables()
    for name, inputs, diff in dropped:
        print("dropped %s%s: precisions differ by %.3g" % (name, inputs, diff), file=sys.stderr)


if __name__ == "__main__":
    main()
