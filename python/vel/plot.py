"""Plots of generated tables with matplotlib.

distribution(domain, node, configuration)  one row of a table as bars over
    the node's states; interval states are drawn on the real axis with their
    widths, as a density (bar area = probability), optionally under the
    continuous density the row discretises.
table(domain, node)  a whole table as a heat map, parent configurations by
    states.

Both draw into `ax` when given (else a new pyplot figure) and return the Axes.
"""
import math

import numpy as np

from .model_density import row_density

UNBOUNDED_HATCH = "//"  # unbounded intervals, drawn over a finite stretch
ANNOTATED_CELLS = 200  # heat maps up to this size have their entries written in
MAX_TICKS = 40  # per axis of a heat map; larger tables label every k-th row


def _axes(ax):
    if ax is not None:
        return ax
    import matplotlib.pyplot as plt
    return plt.subplots(layout="constrained")[1]


def _parent_states(node, table, configuration):
    """{parent name: state index} over the table's parents."""
    parents = table.nodes[:-1] if table.kind != "utility" else table.nodes
    if configuration is None:
        configuration = {}
    if not isinstance(configuration, dict):
        configuration = dict(zip(parents, configuration))
    missing = [p for p in parents if p not in configuration]
    extra = [p for p in configuration if p not in parents]
    if missing or extra:
        raise ValueError(f"the configuration of {node.name} gives a state to each of "
                         f"{', '.join(parents) or 'no parents'}" +
                         (f"; missing {', '.join(missing)}" if missing else "") +
                         (f"; {', '.join(extra)} not among them" if extra else ""))
    domain = node.domain
    return {p: domain.node(p).state_index(configuration[p]) for p in parents}


def _row(node, configuration):
    table = node.table
    if table.kind == "utility":
        raise ValueError(f"{node.name} is a utility node: its table holds no distribution")
    states = _parent_states(node, table, configuration)
    return table.values[tuple(states[p] for p in table.nodes[:-1])].astype(float), states


def _title(node, states):
    described = ", ".join(f"{p} = {node.domain.node(p).state_names[i]}" for p, i in states.items())
    return f"{node.name} | {described}" if described else node.name


def _drawn_span(low, high, shown):
    """(start, width) of the stretch an interval is drawn over: itself when
    bounded, else `shown` wide from its finite end (centred on 0 without one)."""
    if math.isfinite(low) and math.isfinite(high):
        return low, high - low
    if math.isfinite(low):
        return low, shown
    if math.isfinite(high):
        return high - shown, shown
    return -shown / 2, shown


def _interval_bars(ax, bounds, row):
    """Bars whose areas are the row's probabilities; returns the x range."""
    intervals = list(zip(bounds[:-1], bounds[1:]))
    widths = [high - low for low, high in intervals if math.isfinite(high - low) and high > low]
    finite = [b for b in bounds if math.isfinite(b)]
    shown = max(widths) if widths else max([1.0] + [abs(b) for b in finite])
    tallest = max([p / (high - low) for (low, high), p in zip(intervals, row)
                   if math.isfinite(high - low) and high > low] or [1.0 / shown])
    for i, ((low, high), p) in enumerate(zip(intervals, row)):
        gid = f"state {i}"
        if low == high:  # a single point: a stem, with its probability written by it
            ax.vlines(low, 0, tallest, colors="C1", linewidth=2, gid=gid)
            ax.plot([low], [tallest], "o", color="C1")
            ax.annotate(f"P = {p:.3g}", (low, tallest), ha="center", va="bottom", fontsize=8)
            continue
        start, width = _drawn_span(low, high, shown)
        if math.isfinite(high - low):
            ax.bar(start, p / width, width=width, align="edge", color="C0", edgecolor="white", gid=gid)
            continue
        ax.bar(start, p / width, width=width, align="edge", color="C0", alpha=0.5,
               hatch=UNBOUNDED_HATCH, edgecolor="C0", gid=gid)
        ax.annotate(f"P = {p:.3g}\n(unbounded)", (start + width / 2, p / width), ha="center",
                    va="bottom", fontsize=8)
    ax.set_ylabel("probability density")
    left = min(finite, default=-shown / 2)
    right = max(finite, default=shown / 2)
    return (left - shown if math.isinf(bounds[0]) else left,
            right + shown if math.isinf(bounds[-1]) else right)


def distribution(domain, node, configuration=None, *, density=False, ax=None):
    """Draws the row of `node`'s table for `configuration` (a dict {parent:
    state}, or the states in parent order; None without parents) as bars
    over the node's states.  For an interval node the bars stand on the
    intervals with their widths, their areas the probabilities; unbounded
    intervals are drawn hatched, as wide as the widest bounded one, with
    their probability written on them.  `density`: True draws the
    continuous density the row discretises, computed from the node's model
    (see vel.model_density; ValueError when the model gives none), or a
    callable x -> density drawn as it is."""
    node = domain.node(node)
    ax = _axes(ax)
    row, states = _row(node, configuration)
    kind = node.type
    if kind == "interval":
        low, high = _interval_bars(ax, node.bounds, row)
        if density:
            function = density if callable(density) else row_density(node, states)
            x = np.linspace(low, high, 1001)
            ax.plot(x, function(x), color="C3", label="density", gid="density")
            ax.legend(loc="upper right")
    elif density:
        raise ValueError(f"{node.name} is a {kind} node: only interval nodes discretise a density")
    elif kind == "numbered":
        values = node.states
        spacing = min(np.diff(sorted(values)), default=1.0) if len(values) > 1 else 1.0
        for i, (value, p) in enumerate(zip(values, row)):
            ax.bar(value, p, width=0.8 * spacing, color="C0", gid=f"state {i}")
        ax.set_ylabel("probability")
    else:
        for i, p in enumerate(row):
            ax.bar(i, p, width=0.8, color="C0", gid=f"state {i}")
        ax.set_xticks(range(len(row)), node.state_names)
        ax.set_ylabel("probability")
    ax.set_xlabel(node.name)
    ax.set_title(_title(node, states))
    return ax


def _ticks(count):
    step = max(1, math.ceil(count / MAX_TICKS))
    return list(range(0, count, step))


def table(domain, node, *, ax=None):
    """Draws `node`'s table as a heat map: one row per configuration of its
    parents (labelled with their states), one column per state of the node
    (a single column for a utility table); entries are written in the cells
    of small tables.  Probabilities are coloured on [0, 1]."""
    node = domain.node(node)
    ax = _axes(ax)
    t = node.table
    own = t.kind != "utility"
    parents = t.nodes[:-1] if own else t.nodes
    parent_states = t.states[:-1] if own else t.states
    columns = list(t.states[-1]) if own else ["utility"]
    values = t.values.reshape(-1, len(columns)).astype(float)
    rows = [", ".join(s[i] for s, i in zip(parent_states, index))
            for index in np.ndindex(*[len(s) for s in parent_states])] or [""]
    limits = {"vmin": 0.0, "vmax": 1.0} if own else {}
    image = ax.imshow(values, aspect="auto", cmap="viridis", interpolation="nearest", **limits)
    ax.figure.colorbar(image, ax=ax, label="utility" if not own else "probability")
    ax.set_xticks(_ticks(len(columns)), [columns[i] for i in _ticks(len(columns))],
                  rotation=45 if max(map(len, columns)) > 6 else 0, ha="right" if max(map(len, columns)) > 6 else "center")
    ax.set_yticks(_ticks(len(rows)), [rows[i] for i in _ticks(len(rows))])
    ax.set_xlabel(node.name if own else "")
    ax.set_ylabel(", ".join(parents))
    ax.set_title(f"{node.name}: {t.kind} table")
    if values.size <= ANNOTATED_CELLS:
        middle = 0.5 if own else (np.nanmin(values) + np.nanmax(values)) / 2
        for (r, col), v in np.ndenumerate(values):
            ax.text(col, r, f"{v:.3g}", ha="center", va="center", fontsize=8,
                    color="black" if v > middle else "white")
    return ax
