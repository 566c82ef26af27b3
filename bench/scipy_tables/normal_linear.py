"""Normal(2 A - 0.5 B + 1, variance 4): CDF differences at Y's bounds for
every pair of sample points, averaged over B's and A's points."""
import numpy as np
from scipy.special import ndtr

from .sampling import open_ends, sample_points, steps


def build():
    return {
        "a": sample_points(open_ends(steps(-10, 0.5, 40)), 4),
        "b": sample_points(steps(0, 0.5, 20), 4),
        "bounds": open_ends(steps(-32, 0.5, 128)),
    }


def compute(inputs):
    mean = 2 * inputs["a"][:, :, None, None] - 0.5 * inputs["b"][None, None, :, :] + 1
    cdf = ndtr((inputs["bounds"] - mean[..., None]) / 2.0)
    return np.diff(cdf, axis=-1).mean(axis=(1, 3)).ravel()
