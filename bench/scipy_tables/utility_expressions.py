"""Profit over Price, Volume, Cost (sampled) and Lines: each expression on the
grid of sample points, averaged over the three sample axes."""
import numpy as np

from .sampling import open_ends, sample_points, steps


def build():
    return {
        "price": sample_points(steps(0, 0.5, 40), 4),
        "volume": sample_points(open_ends(steps(0, 2.5, 38)), 4),
        "cost": sample_points(np.append(steps(0, 0.5, 20), 10.0), 4),
    }


def compute(inputs):
    p = inputs["price"][:, :, None, None, None, None]
    v = inputs["volume"][None, None, :, :, None, None]
    c = inputs["cost"][None, None, None, None, :, :]
    margin = p - c
    tables = [
        margin * v - 20,
        margin * np.minimum(v, 60) * 1.1 - 45,
        (p - 0.9 * c) * np.sqrt(np.maximum(v, 0)) * 10 - 70,
        np.where(margin > 0, np.power(np.maximum(margin, 0), 1.5) * v, -np.exp(-margin)) - 100,
    ]
    means = [t.mean(axis=(1, 3, 5)) for t in tables]
    return np.stack(means, axis=-1).ravel()
