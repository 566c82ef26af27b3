"""truncate(2.25, Gamma(Shape, Scale), 50.25): regularised incomplete gamma
at the clipped bounds, differences over the mass between the truncation
bounds, averaged over Shape's points."""
import numpy as np
from scipy.special import gammainc

from .sampling import sample_points, steps

LOWER, UPPER = 2.25, 50.25


def build():
    return {
        "shape": sample_points(steps(1, 0.25, 100), 5),
        "scale": np.array([0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 5, 6]),
        "bounds": np.append(steps(0, 0.5, 120), np.inf),
    }


def compute(inputs):
    a = inputs["shape"][:, :, None, None]
    scale = inputs["scale"][None, None, :, None]
    x = np.clip(inputs["bounds"], LOWER, UPPER)
    cdf = gammainc(a, x / scale)
    mass = gammainc(a, UPPER / scale) - gammainc(a, LOWER / scale)
    return (np.diff(cdf, axis=-1) / mass).mean(axis=1).ravel()
