"""PERT(0, Mode, Top) as the beta distribution on [0, Top]: regularised
incomplete beta at the clipped bounds, averaged over Mode's points."""
import numpy as np
from scipy.special import betainc

from .sampling import sample_points, steps


def build():
    return {
        "mode": sample_points(steps(0.5, 0.125, 72), 3),
        "top": np.array([10.0, 12, 14, 16, 20]),
        "bounds": steps(0, 0.0625, 320),
    }


def compute(inputs):
    m = inputs["mode"][:, :, None, None]
    top = inputs["top"][None, None, :, None]
    alpha = 4 * m / top + 1
    beta = 4 * (top - m) / top + 1
    u = np.clip(inputs["bounds"], 0, top) / top
    cdf = betainc(alpha, beta, u)
    return np.diff(cdf, axis=-1).mean(axis=1).ravel()
