"""Plots drawn without a display: bars that hold the table's row, densities
that integrate to it, heat maps that hold the table."""
import itertools
import math

import matplotlib.pyplot as plt
import numpy as np
import pytest
from scipy import integrate

import vel
import vel.plot
from vel.model_density import NoDensity, row_density
from conftest import GOLDEN, MAINTENANCE, WEATHER

# Every continuous distribution, truncation, shapes below one, and
# parameters read from sampled interval parents.
DENSITY_MODELS = [GOLDEN / f"{name}.yaml" for name in
                  ("beta", "gamma", "pert", "lognormal", "exponential_weibull", "uniform_triangular",
                   "truncation", "normal_sampled_parents")] + [WEATHER]


@pytest.fixture(autouse=True)
def close_figures():
    yield
    plt.close("all")


def rows(table):
    """(parent states as {name: index}, row) for every row of a table."""
    parents = table.nodes[:-1]
    for index in np.ndindex(*table.shape[:-1]):
        yield dict(zip(parents, index)), table.values[index]


@pytest.mark.parametrize("path", DENSITY_MODELS, ids=[p.stem for p in DENSITY_MODELS])
def test_model_densities_integrate_to_the_generated_rows(path):
    checked = 0
    with vel.load(path) as domain:
        for node in domain.generated_nodes():
            if node.type != "interval":
                continue
            for states, row in rows(node.generate()):
                try:
                    density = row_density(node, states)
                except NoDensity as reason:  # a discrete distribution (weather's Poisson)
                    assert "is not a continuous distribution" in str(reason)
                    break
                for (low, high), p in zip(node.states, row):
                    if math.isfinite(low) and math.isfinite(high) and high > low:
                        mass = integrate.quad(lambda x: float(density(np.array([x]))[0]), low, high,
                                              limit=200)[0]
                        assert mass == pytest.approx(p, abs=2e-6), (node.name, states, low, high)
                        checked += 1
    assert checked >= 8


def test_models_without_a_density_say_why():
    with vel.load(GOLDEN / "poisson.yaml") as domain:
        node = next(n for n in domain.generated_nodes() if n.type == "interval")
        with pytest.raises(NoDensity, match="Poisson is not a continuous distribution"):
            row_density(node, {p: 0 for p in node.table.nodes[:-1]})


def test_interval_bars_stand_on_their_intervals_with_the_row_as_area():
    with vel.load(WEATHER) as domain:
        row = domain.table("Temp").values[2].astype(float)  # summer
        ax = vel.plot.distribution(domain, "Temp", {"Season": "summer"}, density=True)
        bars = {p.get_gid(): p for p in ax.patches}
        for i, (low, high) in enumerate(domain["Temp"].states):
            bar = bars[f"state {i}"]
            assert math.isfinite(bar.get_x()) and bar.get_width() > 0
            if math.isfinite(low) and math.isfinite(high):
                assert (bar.get_x(), bar.get_width()) == (low, high - low)
                assert bar.get_height() * bar.get_width() == pytest.approx(row[i], rel=1e-12)
            else:
                assert bar.get_height() * bar.get_width() == pytest.approx(row[i], rel=1e-12)
                assert bar.get_hatch()
        line = next(line for line in ax.lines if line.get_gid() == "density")
        x, y = line.get_data()
        np.testing.assert_allclose(y, row_density(domain["Temp"], {"Season": 2})(x))
        assert ax.get_title() == "Temp | Season = summer"


@pytest.mark.parametrize("node, configuration, positions", [
    ("Wear", {"Age": (2, 5), "Hours": 16}, [0, 1, 2]),
    ("Hours", {"Shifts": 2}, [8, 16, 24]),
])
def test_discrete_bars_hold_the_row(node, configuration, positions):
    with vel.load(MAINTENANCE) as domain:
        table = domain.table(node)
        index = tuple(domain[p].state_index(s) for p, s in configuration.items())
        ax = vel.plot.distribution(domain, node, configuration)
        bars = sorted(ax.patches, key=lambda p: p.get_gid())
        assert [b.get_height() for b in bars] == table.values[index].tolist()
        assert [b.get_x() + b.get_width() / 2 for b in bars] == pytest.approx(positions)
        if node == "Wear":
            assert [t.get_text() for t in ax.get_xticklabels()] == ["low", "medium", "high"]
        with pytest.raises(ValueError, match="only interval nodes"):
            vel.plot.distribution(domain, node, configuration, density=True)


@pytest.mark.parametrize("node", ["Wear", "ServiceCost"])
def test_heat_maps_hold_the_table_with_labelled_axes(node):
    with vel.load(MAINTENANCE) as domain:
        table = domain.table(node)
        ax = vel.plot.table(domain, node)
    image = ax.get_images()[0]
    utility = table.kind == "utility"
    np.testing.assert_array_equal(image.get_array(), table.values.reshape(-1, 1 if utility else table.shape[-1]))
    parent_states = table.states if utility else table.states[:-1]
    expected_rows = [", ".join(c) for c in itertools.product(*parent_states)]
    assert [t.get_text() for t in ax.get_yticklabels()] == expected_rows
    assert [t.get_text() for t in ax.get_xticklabels()] == (["utility"] if utility else list(table.states[-1]))
    assert ax.get_ylabel() == ", ".join(table.nodes if utility else table.nodes[:-1])


def test_configurations_must_name_every_parent():
    with vel.load(MAINTENANCE) as domain:
        with pytest.raises(ValueError, match="missing Hours"):
            vel.plot.distribution(domain, "Wear", {"Age": 1})
        with pytest.raises(ValueError, match="utility node"):
            vel.plot.distribution(domain, "ServiceCost", {"Service": "run", "Hours": 8})
