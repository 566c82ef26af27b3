#!/usr/bin/python3
# Model files and expected tables for the parametric distributions, computed
# with mpmath.
#
# Regenerate from the repository root with Debian's python3-mpmath:
#     /usr/bin/python3 scripts/reference/distribution_tables.py
# It rewrites tests/cli/data/distributions/*.yaml (the models) and
# tests/cli/data/distributions/expected.csv (file, node, entry, value: every
# entry of every generated table in storage order, 20 significant digits),
# and tests/cli/data/distributions/binomial.csv (trials, p, k, probability)
# for the unit tests of the binomial running product.
#
# Each node below is described once: the expression that the model file
# gives to vel, and the same distribution built here from its definition
# (cumulative distribution functions and probability masses in mpmath at 60
# digits).  Parameters that depend on parents are computed in double
# precision, as the generator does, from the parents' sample points:
# midpoints of `samples` equal parts of a bounded interval, or the single
# point just inside the finite end of an unbounded one.
import math
import os

import mpmath as mp
from mpmath import mpf

mp.mp.dps = 60
INF = math.inf
OUT_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tests", "cli", "data", "distributions")


def big(x):
    """A bound as mpmath sees it: the stored infinities are true infinities."""
    return mp.inf if x == INF else -mp.inf if x == -INF else mpf(x)


# ---------------------------------------------------------------------------
# Continuous distributions: cdf and upper tail without cancellation.

class Continuous:
    def __init__(self, cdf, sf):
        self.cdf, self.sf = cdf, sf

    def mass(self, x1, x2):
        """P(x1 < X < x2), taken in the smaller tail."""
        x1, x2 = big(x1), big(x2)
        if x1 >= x2:
            return mpf(0)
        if self.sf(x1) > 0.5:
            return self.cdf(x2) - self.cdf(x1)
        return self.sf(x1) - self.sf(x2)


def normal(mean, variance):
    sd = mp.sqrt(mpf(variance))
    mean = mpf(mean)
    return Continuous(lambda x: mp.ncdf((x - mean) / sd), lambda x: mp.ncdf((mean - x) / sd))


def log_normal(mu, variance, c=0.0):
    sd, mu, c = mp.sqrt(mpf(variance)), mpf(mu), mpf(c)

    def z(x):
        return -mp.inf if x <= c else (mp.log(x - c) - mu) / sd
    return Continuous(lambda x: mp.ncdf(z(x)), lambda x: mp.ncdf(-z(x)))


def beta(alpha, beta_, lo=0.0, hi=1.0):
    alpha, beta_, lo, hi = mpf(alpha), mpf(beta_), mpf(lo), mpf(hi)

    def u(x):
        return min(max((x - lo) / (hi - lo), mpf(0)), mpf(1)) if mp.isfinite(x) else (
            mpf(0) if x < 0 else mpf(1))
    return Continuous(lambda x: mp.betainc(alpha, beta_, 0, u(x), regularized=True),
                      lambda x: mp.betainc(alpha, beta_, u(x), 1, regularized=True))


def pert(a, m, b, lam=4.0):
    a, m, b, lam = mpf(a), mpf(m), mpf(b), mpf(lam)
    return beta(1 + lam * (m - a) / (b - a), 1 + lam * (b - m) / (b - a), a, b)


def gamma(shape, scale, c=0.0):
    shape, scale, c = mpf(shape), mpf(scale), mpf(c)

    def t(x):
        return max((x - c) / scale, mpf(0))
    return Continuous(lambda x: mp.gammainc(shape, 0, t(x), regularized=True),
                      lambda x: mp.gammainc(shape, t(x), mp.inf, regularized=True))


def weibull(k, lam, c=0.0):
    k, lam, c = mpf(k), mpf(lam), mpf(c)

    def t(x):
        return mpf(0) if x <= c else ((x - c) / lam) ** k
    return Continuous(lambda x: -mp.expm1(-t(x)), lambda x: mp.exp(-t(x)))


def exponential(scale, c=0.0):
    return weibull(1.0, scale, c)


def uniform(a, b):
    a, b = mpf(a), mpf(b)

    def cdf(x):
        return min(max((x - a) / (b - a), mpf(0)), mpf(1)) if mp.isfinite(x) else (
            mpf(0) if x < 0 else mpf(1))
    return Continuous(cdf, lambda x: 1 - cdf(x))


def triangular(a, m, b):
    a, m, b = mpf(a), mpf(m), mpf(b)

    def cdf(x):
        if x <= a:
            return mpf(0)
        if x >= b:
            return mpf(1)
        if x <= m:
            return (x - a) ** 2 / ((b - a) * (m - a))
        return 1 - (b - x) ** 2 / ((b - a) * (b - m))
    return Continuous(cdf, lambda x: 1 - cdf(x))


class Truncated:
    """The distribution restricted to (lower, upper) and renormalised."""

    def __init__(self, law, lower, upper):
        self.law, self.lower, self.upper = law, lower, upper
        self.z = law.mass(lower, upper)

    def mass(self, x1, x2):
        return self.law.mass(max(self.lower, x1), min(self.upper, x2)) / self.z


def truncate(law, lower=-INF, upper=INF):
    return Truncated(law, lower, upper)


def continuous_row(law, bounds):
    return [law.mass(bounds[i], bounds[i + 1]) for i in range(len(bounds) - 1)]


# ---------------------------------------------------------------------------
# Discrete distributions: masses of the counts.

class Discrete:
    def __init__(self, pmf, last=None):
        self.pmf, self.last = pmf, last  # last: largest count with mass, None unbounded

    def tail(self, c):
        """P(X >= c) for a whole c."""
        c = max(c, 0)
        if self.last is not None:
            return mp.fsum(self.pmf(k) for k in range(c, self.last + 1))
        return 1 - mp.fsum(self.pmf(k) for k in range(c))

    def counts(self, x1, x2):
        """Mass of the counts k with x1 <= k < x2; x2 = inf is the whole tail."""
        c1 = max(math.ceil(x1), 0) if x1 != -INF else 0
        if x2 == INF:
            return self.tail(c1)
        c2 = math.ceil(x2)
        top = c2 - 1 if self.last is None else min(c2 - 1, self.last)
        return mp.fsum(self.pmf(k) for k in range(c1, top + 1))


def binomial(n, p):
    n, p = int(n), mpf(p)
    return Discrete(lambda k: mp.binomial(n, k) * p ** k * (1 - p) ** (n - k) if k <= n else mpf(0), n)


def poisson(mean):
    mean = mpf(mean)
    return Discrete(lambda k: mp.exp(-mean) * mean ** k / mp.factorial(k))


def negative_binomial(r, p):
    r, p = mpf(r), mpf(p)
    return Discrete(lambda k: mp.binomial(k + r - 1, k) * p ** r * (1 - p) ** k)


def geometric(p):
    return negative_binomial(1.0, p)


def numbered_row(law, n):
    """States 0 ... n-1; the last state takes the counts from n-1 upward
    (a binomial's counts end at its number of trials)."""
    if law.last is not None:
        return [law.pmf(k) for k in range(n)]
    return [law.pmf(k) for k in range(n - 1)] + [law.tail(n - 1)]


def interval_row(law, bounds):
    """Each state takes the counts that a running point passes through it; a
    zero-width state takes the single count at a whole running point."""
    n = len(bounds) - 1
    end = n - 1 if law.last is not None else n
    x, row = bounds[0], []
    for i in range(end):
        if bounds[i + 1] <= bounds[i]:
            if x != -INF and math.floor(x) == x:
                x = x + 1
                row.append(law.counts(bounds[i], x))
            else:
                row.append(mpf(0))
        else:
            row.append(law.counts(x, bounds[i + 1]))
            x = bounds[i + 1]
    if law.last is not None:
        row.append(law.counts(x, INF))
    return row


# ---------------------------------------------------------------------------
# Parents and their sample points.

def sample_points(lo, hi, samples):
    if lo == -INF and hi == INF:
        return [0.0]
    if hi == INF:
        return [1.0 if lo == 0 else lo * 0.999 if lo < 0 else lo * 1.001]
    if lo == -INF:
        return [-1.0 if hi == 0 else hi * 1.001 if hi < 0 else hi * 0.999]
    width = (hi - lo) / samples
    if width == 0:
        return [lo + 0.5 * width]
    return [lo + (i + 0.5) * width for i in range(samples)]


class Parent:
    def __init__(self, name, type_, states):
        self.name, self.type, self.states = name, type_, states

    def count(self):
        return len(self.states) - (1 if self.type == "interval" else 0)

    def points(self, state, samples):
        if self.type == "numbered":
            return [self.states[state]]
        return sample_points(self.states[state], self.states[state + 1], samples)


class Node:
    """A node with a model: its states, the expression for vel, and `law`,
    a function of the parents' values giving the row's distribution."""

    def __init__(self, name, type_, states, expression, law, parents=(), samples=None):
        self.name, self.type, self.states = name, type_, states
        self.expression, self.law = expression, law
        self.parents, self.samples = list(parents), samples

    def row(self, values):
        law = self.law(values)
        if self.type == "numbered":
            return numbered_row(law, len(self.states))
        if isinstance(law, Discrete):
            return interval_row(law, self.states)
        return continuous_row(law, self.states)

    def table(self):
        entries = []
        for configuration in configurations(self.parents):
            grids = [p.points(s, self.samples) for p, s in zip(self.parents, configuration)]
            rows = [self.row(dict(zip((p.name for p in self.parents), point)))
                    for point in product(grids)]
            entries += [mp.fsum(column) / len(rows) for column in zip(*rows)]
        return entries


def configurations(parents):
    if not parents:
        return [()]
    return [(s,) + rest for s in range(parents[0].count()) for rest in configurations(parents[1:])]


def product(grids):
    if not grids:
        return [()]
    return [(v,) + rest for v in grids[0] for rest in product(grids[1:])]


# ---------------------------------------------------------------------------
# The model files.

def number(x):
    return "inf" if x == INF else "-inf" if x == -INF else repr(x)


def write_model(file_name, domain, parents, nodes):
    lines = [f"# Written by scripts/reference/distribution_tables.py; do not edit.",
             f"domain: {domain}", "nodes:"]
    for p in parents:
        k = p.count()
        lines += [f"  - name: {p.name}", f"    type: {p.type}",
                  f"    states: [{', '.join(number(v) for v in p.states)}]",
                  f"    table: [{', '.join(repr(1.0 / k) for _ in range(k))}]"]
    for node in nodes:
        lines += [f"  - name: {node.name}", f"    type: {node.type}",
                  f"    states: [{', '.join(number(v) for v in node.states)}]"]
        if node.parents:
            lines.append(f"    parents: [{', '.join(p.name for p in node.parents)}]")
        lines += ["    model:", "      nodes: []"]
        if node.samples is not None:
            lines.append(f"      samples_per_interval: {node.samples}")
        lines.append(f"      expressions: [\"{node.expression}\"]")
    with open(os.path.join(OUT_DIR, file_name), "w") as out:
        out.write("\n".join(lines) + "\n")


def continuous_nodes():
    I = INF
    return [
        Node("N1", "interval", [-I, -2.0, -1.0, 0.0, 0.5, 1.0, 2.0, I], "Normal(0, 1)",
             lambda v: normal(0.0, 1.0)),
        Node("N2", "interval", [-I, 9.5, 9.9, 10.0, 10.3, I], "Normal(10, 0.04)",
             lambda v: normal(10.0, 0.04)),
        Node("N3", "interval", [-I, 0.0, 2.0, 4.0, 5.0, 7.0, I], "truncate(1, Normal(3, 4), 6)",
             lambda v: truncate(normal(3.0, 4.0), 1.0, 6.0)),
        Node("N4", "interval", [-I, 8.0, 8.5, 9.0, 10.0, I], "truncate(8, Normal(0, 1))",
             lambda v: truncate(normal(0.0, 1.0), 8.0)),
        Node("N5", "interval", [-I, -6.0, -3.0, -1.0, 0.0, I], "truncate(Normal(-1, 9), 0)",
             lambda v: truncate(normal(-1.0, 9.0), upper=0.0)),
        Node("L1", "interval", [0.0, 0.5, 1.0, 1.5, 2.0, 4.0, I], "LogNormal(0, 0.25)",
             lambda v: log_normal(0.0, 0.25)),
        Node("L2", "interval", [-I, 2.0, 3.0, 5.0, 10.0, I], "LogNormal(1, 0.5, 2)",
             lambda v: log_normal(1.0, 0.5, 2.0)),
        Node("B1", "interval", [0.0, 0.25, 0.5, 0.75, 1.0], "Beta(2, 3)",
             lambda v: beta(2.0, 3.0)),
        Node("B2", "interval", [-I, -1.0, 0.0, 1.0, 2.0, 3.0, I], "Beta(0.5, 0.5, -1, 3)",
             lambda v: beta(0.5, 0.5, -1.0, 3.0)),
        Node("B3", "interval", [0.0, 0.1, 0.3, 0.5, 0.7, 1.0], "truncate(0.2, Beta(2, 5), 0.6)",
             lambda v: truncate(beta(2.0, 5.0), 0.2, 0.6)),
        Node("G1", "interval", [0.0, 1.0, 2.0, 4.0, 8.0, I], "Gamma(2, 1.5)",
             lambda v: gamma(2.0, 1.5)),
        Node("G2", "interval", [1.0, 1.1, 2.0, 5.0, I], "Gamma(0.5, 2, 1)",
             lambda v: gamma(0.5, 2.0, 1.0)),
        Node("G3", "interval", [0.0, 1.0, 2.0, 5.0], "truncate(Gamma(3, 1), 5)",
             lambda v: truncate(gamma(3.0, 1.0), upper=5.0)),
        Node("G4", "interval", [0.0, 10.0, 15.0, 20.0, 25.0, 30.0, I], "Gamma(40, 0.5)",
             lambda v: gamma(40.0, 0.5)),
        Node("E1", "interval", [0.0, 1.0, 2.0, 4.0, I], "Exponential(2)",
             lambda v: exponential(2.0)),
        Node("E2", "interval", [-I, 1.0, 1.5, 3.0, I], "Exponential(0.5, 1)",
             lambda v: exponential(0.5, 1.0)),
        Node("E3", "interval", [0.0, 1.0, 2.0, 3.0, I], "truncate(1, Exponential(1), 3)",
             lambda v: truncate(exponential(1.0), 1.0, 3.0)),
        Node("W1", "interval", [0.0, 1.0, 2.0, 3.0, I], "Weibull(1.5, 2)",
             lambda v: weibull(1.5, 2.0)),
        Node("W2", "interval", [-1.0, 0.0, 1.0, I], "Weibull(0.7, 1, -1)",
             lambda v: weibull(0.7, 1.0, -1.0)),
        Node("U1", "interval", [-2.0, 0.0, 1.0, 3.0, 4.0], "Uniform(-1, 3)",
             lambda v: uniform(-1.0, 3.0)),
        Node("U2", "interval", [-1.0, 0.5, 1.0, 3.0], "truncate(0, Uniform(-1, 3), 2.5)",
             lambda v: truncate(uniform(-1.0, 3.0), 0.0, 2.5)),
        Node("T1", "interval", [0.0, 0.5, 1.0, 2.0, 4.0], "Triangular(0, 1, 4)",
             lambda v: triangular(0.0, 1.0, 4.0)),
        Node("T2", "interval", [0.0, 0.25, 0.5, 1.0], "Triangular(0, 0, 1)",
             lambda v: triangular(0.0, 0.0, 1.0)),
        Node("T3", "interval", [-I, 0.5, 0.9, I], "Triangular(0, 1, 1)",
             lambda v: triangular(0.0, 1.0, 1.0)),
        Node("P1", "interval", [0.0, 1.0, 2.0, 3.0, 4.0], "PERT(0, 1, 4)",
             lambda v: pert(0.0, 1.0, 4.0)),
        Node("P2", "interval", [2.0, 3.0, 5.0, 10.0], "PERT(2, 3, 10, 2)",
             lambda v: pert(2.0, 3.0, 10.0, 2.0)),
        Node("P3", "interval", [0.0, 1.0, 2.0, 3.0, 4.0], "truncate(1, PERT(0, 1, 4), 3)",
             lambda v: truncate(pert(0.0, 1.0, 4.0), 1.0, 3.0)),
        # Nested truncations intersect.
        Node("NT1", "interval", [-I, -2.0, 0.0, 2.0, 4.0, I],
             "truncate(-1, truncate(Normal(1, 2), 3), 5)",
             lambda v: truncate(normal(1.0, 2.0), -1.0, 3.0)),
        Node("NT2", "interval", [0.0, 1.0, 2.0, 4.0], "truncate(0.5, truncate(-1, Gamma(2, 1), 4))",
             lambda v: truncate(gamma(2.0, 1.0), 0.5, 4.0)),
        Node("NT3", "interval", [0.0, 1.0, 2.0, 3.0, I], "truncate(truncate(1, Exponential(2), 6), 3)",
             lambda v: truncate(exponential(2.0), 1.0, 3.0)),
    ]


def discrete_nodes():
    I = INF
    counts = lambda n: [float(k) for k in range(n)]
    return [
        Node("KB1", "numbered", counts(4), "Binomial(3, 0.5)", lambda v: binomial(3, 0.5)),
        Node("KB2", "numbered", counts(13), "Binomial(10, 0.3)", lambda v: binomial(10, 0.3)),
        Node("KB3", "numbered", counts(1), "Binomial(0, 0.4)", lambda v: binomial(0, 0.4)),
        Node("KP1", "numbered", counts(6), "Poisson(2.5)", lambda v: poisson(2.5)),
        Node("KP2", "numbered", counts(3), "Poisson(0)", lambda v: poisson(0.0)),
        Node("KP3", "numbered", counts(40), "Poisson(30)", lambda v: poisson(30.0)),
        Node("KN1", "numbered", counts(7), "NegativeBinomial(2.5, 0.4)",
             lambda v: negative_binomial(2.5, 0.4)),
        Node("KN2", "numbered", counts(5), "NegativeBinomial(1, 0.5)",
             lambda v: negative_binomial(1.0, 0.5)),
        Node("KN3", "numbered", counts(3), "NegativeBinomial(2, 0)",
             lambda v: negative_binomial(2.0, 0.0)),
        Node("KG1", "numbered", counts(6), "Geometric(0.3)", lambda v: geometric(0.3)),
        Node("KG2", "numbered", counts(4), "Geometric(1)", lambda v: geometric(1.0)),
        Node("KG3", "numbered", counts(4), "Geometric(0)", lambda v: geometric(0.0)),
        Node("IP1", "interval", [0.0, 0.0, 1.0, 2.5, 5.0, I], "Poisson(3)", lambda v: poisson(3.0)),
        Node("IP2", "interval", [-I, 0.5, 2.0, I], "Poisson(1.5)", lambda v: poisson(1.5)),
        Node("IB1", "interval", [0.0, 1.5, 3.0, 5.0], "Binomial(5, 0.3)", lambda v: binomial(5, 0.3)),
        Node("IB2", "interval", [-I, 0.0, 0.0, 2.0, 10.0], "Binomial(4, 0.5)",
             lambda v: binomial(4, 0.5)),
        Node("IN1", "interval", [0.0, 0.0, 1.0, 1.0, 3.0, I], "NegativeBinomial(3, 0.6)",
             lambda v: negative_binomial(3.0, 0.6)),
        Node("IG1", "interval", [0.0, 0.5, 2.0, 2.0, 4.0, I], "Geometric(0.25)",
             lambda v: geometric(0.25)),
        Node("IG2", "interval", [0.0, 0.5, 0.5, I], "Geometric(0.5)", lambda v: geometric(0.5)),
    ]


def parent_models():
    I = INF
    a = Parent("A", "interval", [-I, -2.0, 0.0, 2.0, 5.0, I])
    b = Parent("B", "numbered", [1.0, 2.0])
    c = Parent("C", "interval", [0.0, 1.0, 3.0, I])
    nodes = [
        Node("Y", "interval", [-I, -2.0, 0.0, 1.0, 3.0, I], "Normal(A, B)",
             lambda v: normal(v["A"], v["B"]), [a, b], 4),
        # The truncation bound moves with the parent's sample point.
        Node("Z", "interval", [-I, -1.0, 0.0, 2.0, 4.0, I], "truncate(A - 1, Normal(A, 1))",
             lambda v: truncate(normal(v["A"], 1.0), v["A"] - 1.0), [a], 3),
        Node("D", "numbered", [float(k) for k in range(7)], "Poisson(C)",
             lambda v: poisson(v["C"]), [c], 5),
        Node("F", "interval", [0.0, 1.0, 2.0, 4.0, I], "Gamma(1 + C, B)",
             lambda v: gamma(1.0 + v["C"], v["B"]), [c, b], 3),
        Node("H", "interval", [-I, 0.0, 2.0, I], "Normal(A + C, 1)",
             lambda v: normal(v["A"] + v["C"], 1.0), [a, c], 3),
        Node("J", "interval", [0.0, 0.0, 1.0, 2.0, I], "Geometric(1 / (1 + C))",
             lambda v: geometric(1.0 / (1.0 + v["C"])), [c], 2),
    ]
    return [a, b, c], nodes


BINOMIAL_CASES = [
    (3, 0.5, 0), (3, 0.5, 1), (3, 0.5, 2), (3, 0.5, 3), (10, 0.3, 0), (10, 0.3, 3),
    (10, 0.3, 10), (0, 0.4, 0), (20, 0.0, 0), (20, 1.0, 20), (20, 0.0, 3), (50, 0.001, 2),
    (1000, 0.3, 300), (1000, 0.3, 0), (1000, 0.999, 1000), (1000, 0.999, 990), (997, 0.5, 498),
    (5000, 0.01, 37),
]


def write_binomial():
    rows = ["trials,p,k,probability"]
    for n, p, k in BINOMIAL_CASES:
        value = mp.binomial(n, k) * mpf(p) ** k * (1 - mpf(p)) ** (n - k)
        rows.append(f"{n},{repr(p)},{k},{mp.nstr(value, 20)}")
    with open(os.path.join(OUT_DIR, "binomial.csv"), "w") as out:
        out.write("\n".join(rows) + "\n")


def main():
    os.makedirs(OUT_DIR, exist_ok=True)
    parents, with_parents = parent_models()
    files = [("continuous.yaml", "continuous", [], continuous_nodes()),
             ("discrete.yaml", "discrete", [], discrete_nodes()),
             ("parents.yaml", "parents", parents, with_parents)]
    rows = ["file,node,entry,value"]
    for file_name, domain, file_parents, nodes in files:
        write_model(file_name, domain, file_parents, nodes)
        for node in nodes:
            for i, value in enumerate(node.table()):
                rows.append(f"{file_name},{node.name},{i},{mp.nstr(value, 20)}")
    with open(os.path.join(OUT_DIR, "expected.csv"), "w") as out:
        out.write("\n".join(rows) + "\n")
    write_binomial()


if __name__ == "__main__":
    main()
