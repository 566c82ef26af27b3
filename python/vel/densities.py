"""Probability density functions of the continuous distributions, with the
parameters as the expression language takes them (docs/expressions.md)."""
import math

import numpy as np


def _on(y, mask, values):
    out = np.zeros_like(y, dtype=float)
    out[mask] = values
    return out


def normal(x, mean, variance):
    return np.exp(-(x - mean) ** 2 / (2 * variance)) / math.sqrt(2 * math.pi * variance)


def lognormal(x, mu, variance, c=0.0):
    y = x - c
    inside = y > 0
    z = y[inside]
    return _on(y, inside, np.exp(-(np.log(z) - mu) ** 2 / (2 * variance)) / (z * math.sqrt(2 * math.pi * variance)))


def beta(x, alpha, beta_, a=0.0, b=1.0):
    t = (x - a) / (b - a)
    inside = (t > 0) & (t < 1)
    s = t[inside]
    log_norm = math.lgamma(alpha + beta_) - math.lgamma(alpha) - math.lgamma(beta_)
    return _on(t, inside, np.exp(log_norm + (alpha - 1) * np.log(s) + (beta_ - 1) * np.log1p(-s)) / (b - a))


def gamma(x, shape, scale, c=0.0):
    y = x - c
    inside = y > 0
    z = y[inside] / scale
    return _on(y, inside, np.exp((shape - 1) * np.log(z) - z - math.lgamma(shape)) / scale)


def exponential(x, scale, c=0.0):
    y = x - c
    inside = y >= 0
    return _on(y, inside, np.exp(-y[inside] / scale) / scale)


def weibull(x, k, lam, c=0.0):
    y = x - c
    inside = y > 0
    z = y[inside] / lam
    return _on(y, inside, k / lam * z ** (k - 1) * np.exp(-z ** k))


def uniform(x, a, b):
    return np.where((x >= a) & (x <= b), 1.0 / (b - a), 0.0)


def triangular(x, a, m, b):
    rising = (x >= a) & (x < m)
    falling = (x >= m) & (x <= b)
    out = np.zeros_like(x, dtype=float)
    if m > a:
        out[rising] = 2 * (x[rising] - a) / ((b - a) * (m - a))
    if b > m:
        out[falling] = 2 * (b - x[falling]) / ((b - a) * (b - m))
    return out


def pert(x, a, m, b, lam=4.0):
    return beta(x, lam * (m - a) / (b - a) + 1, lam * (b - m) / (b - a) + 1, a, b)


FUNCTIONS = {"Normal": normal, "LogNormal": lognormal, "Beta": beta, "Gamma": gamma,
             "Exponential": exponential, "Weibull": weibull, "Uniform": uniform,
             "Triangular": triangular, "PERT": pert}
