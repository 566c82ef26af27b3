"""Queue's weights over Region x Rush x Staff x Load samples x states,
normalised per sample point and averaged over Load's points."""
import numpy as np

from .sampling import sample_points, steps

STATES = 12


def build():
    return {
        "divisor": np.array([8.0, 12, 16, 20]),
        "rush": np.array([0.0, 1.0]),
        "staff": np.array([1.0, 2, 3, 5, 8]),
        "load": sample_points(steps(0, 0.25, 500), 10),
    }


def compute(inputs):
    k = np.arange(STATES, dtype=float)
    d = inputs["divisor"][:, None, None, None, None, None]
    rush = inputs["rush"][None, :, None, None, None, None]
    staff = inputs["staff"][None, None, :, None, None, None]
    load = inputs["load"][None, None, None, :, :, None]
    rush_term = np.where(rush > 0, k * 0.125, 0.0625)
    w = np.exp(-np.abs(load / d - k / staff)) + rush_term
    w /= w.sum(axis=-1, keepdims=True)
    return w.mean(axis=4).ravel()
