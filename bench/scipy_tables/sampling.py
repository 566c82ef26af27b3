"""State bounds and sample points of interval parents, as arrays."""
import numpy as np


def steps(start, step, count):
    """count + 1 bounds start, start + step, ... (exact for dyadic steps)."""
    return start + step * np.arange(count + 1, dtype=float)


def open_ends(bounds):
    return np.concatenate([[-np.inf], bounds, [np.inf]])


def sample_points(bounds, samples):
    """(states, samples) points: midpoints of equal sub-intervals; an
    unbounded state repeats its one point just inside the finite end, a
    zero-width state its bound, so that every mean over the last axis is
    the generator's value."""
    lo, hi = bounds[:-1], bounds[1:]
    with np.errstate(invalid="ignore"):  # inf - inf in unbounded states, replaced below
        points = lo[:, None] + (np.arange(samples) + 0.5)[None, :] * ((hi - lo) / samples)[:, None]
    for i, (a, b) in enumerate(zip(lo, hi)):
        if np.isinf(a) or np.isinf(b):
            if np.isinf(a) and np.isinf(b):
                point = 0.0
            elif np.isinf(b):
                point = 1.0 if a == 0 else a * 0.999 if a < 0 else a * 1.001
            else:
                point = -1.0 if b == 0 else b * 1.001 if b < 0 else b * 0.999
            points[i, :] = point
    return points
