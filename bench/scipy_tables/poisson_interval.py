"""Poisson(Rate) on [0, 1), ..., [126, 127), [127, inf): CDF differences at
the counts, averaged over Rate's points."""
import numpy as np
from scipy.special import pdtr

from .sampling import sample_points, steps


def build():
    return {"rate": sample_points(steps(0, 0.125, 800), 5), "counts": np.arange(127, dtype=float)}


def compute(inputs):
    lam = inputs["rate"][..., None]
    below = pdtr(inputs["counts"], lam)  # P(X <= k), k = 0 ... 126
    shape = below.shape[:-1] + (1,)
    cdf = np.concatenate([np.zeros(shape), below, np.ones(shape)], axis=-1)
    return np.diff(cdf, axis=-1).mean(axis=1).ravel()
