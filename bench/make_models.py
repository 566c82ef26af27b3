"""Writes the benchmark models under bench/models/ (run: python3 bench/make_models.py).

Every state bound is a multiple of a power of two, so that the bare loops
(bench/bare) and the SciPy scripts (bench/scipy_tables) form exactly the
doubles that the model files hold.  The parameters here are the ones those
programs repeat; change them together.
"""
import os

HERE = os.path.dirname(os.path.abspath(__file__))


def steps(start, step, count):
    """count + 1 bounds start, start + step, ..., exact for dyadic steps."""
    return [start + step * i for i in range(count + 1)]


def text(x):
    if x == float("inf"):
        return "inf"
    if x == float("-inf"):
        return "-inf"
    return repr(float(x)) if x != int(x) else str(int(x))


def values(xs):
    return "[" + ", ".join(text(x) for x in xs) + "]"


def uniform(n):
    return values([1.0 / n] * n)


def interval(name, bounds):
    n = len(bounds) - 1
    return f"  - {{name: {name}, type: interval, states: {values(bounds)}, table: {uniform(n)}}}"


def numbered(name, states):
    return f"  - {{name: {name}, type: numbered, states: {values(states)}, table: {uniform(len(states))}}}"


def node(name, kind, states, parents, model_nodes, expressions, samples, category=None):
    lines = [f"  - name: {name}"]
    if category:
        lines.append(f"    category: {category}")
    if kind:
        lines.append(f"    type: {kind}")
    if states is not None:
        lines.append(f"    states: {values(states)}")
    lines.append(f"    parents: [{', '.join(parents)}]")
    lines.append("    model:")
    lines.append(f"      nodes: [{', '.join(model_nodes)}]")
    lines.append(f"      samples_per_interval: {samples}")
    lines.append("      expressions:")
    for e in expressions:
        lines.append(f"        - '{e}'")
    return "\n".join(lines)


INF = float("inf")
MODELS = {}

# (1) A utility over three sampled interval parents (one with unbounded ends,
# one with a zero-width state) and a numbered model node: expressions dominate.
MODELS["utility_expressions"] = (
    "A utility over three sampled interval parents: 134,400 entries, up to 64 evaluations each.",
    [interval("Price", steps(0, 0.5, 40)),
     interval("Volume", [-INF] + steps(0, 2.5, 38) + [INF]),
     interval("Cost", steps(0, 0.5, 20) + [10]),
     numbered("Lines", [1, 2, 3, 4]),
     node("Profit", None, None, ["Price", "Volume", "Cost", "Lines"], ["Lines"], [
         "(Price - Cost) * Volume - 20",
         "(Price - Cost) * min(Volume, 60) * 1.1 - 45",
         "(Price - 0.9 * Cost) * sqrt(max(Volume, 0)) * 10 - 70",
         "if(Price > Cost, (Price - Cost) ^ 1.5 * Volume, -exp(Cost - Price)) - 100",
     ], 4, category="utility")])

# (2) Distribution weights as formulas of labeled, boolean, numbered and
# sampled interval parents.
DIVISORS = [8, 12, 16, 20]
QUEUE_STATES = 12


def weights(divisor):
    return ", ".join(f"exp(-abs(Load / {divisor} - {k} / Staff)) + if(Rush, {k} * 0.125, 0.0625)"
                     for k in range(QUEUE_STATES))


MODELS["distribution_weights"] = (
    "Distribution weights over labeled, boolean, numbered and interval parents: 240,000 entries.",
    ["  - {name: Region, type: labeled, states: [north, east, south, west], table: [0.25, 0.25, 0.25, 0.25]}",
     "  - {name: Rush, type: boolean, table: [0.5, 0.5]}",
     numbered("Staff", [1, 2, 3, 5, 8]),
     interval("Load", steps(0, 0.25, 500)),
     node("Queue", "numbered", list(range(QUEUE_STATES)), ["Region", "Rush", "Staff", "Load"],
          ["Region"], [f"Distribution({weights(d)})" for d in DIVISORS], 10)])

# (3) A Normal whose mean is linear in two interval parents.
MODELS["normal_linear"] = (
    "A Normal whose mean is linear in two interval parents: 109,200 entries.",
    [interval("A", [-INF] + steps(-10, 0.5, 40) + [INF]),
     interval("B", steps(0, 0.5, 20)),
     node("Y", "interval", [-INF] + steps(-32, 0.5, 128) + [INF], ["A", "B"], [],
          ["Normal(2 * A - 0.5 * B + 1, 4)"], 4)])

# (4) A truncated Gamma, the shape from an interval parent and the scale from
# a numbered one; the truncation bounds fall inside states.
MODELS["gamma_truncated"] = (
    "A truncated Gamma over an interval and a numbered parent: 121,000 entries.",
    [interval("Shape", steps(1, 0.25, 100)),
     numbered("Scale", [0.5, 1, 1.5, 2, 2.5, 3, 3.5, 4, 5, 6]),
     node("Y", "interval", steps(0, 0.5, 120) + [INF], ["Shape", "Scale"], [],
          ["truncate(2.25, Gamma(Shape, Scale), 50.25)"], 5)])

# (5) A PERT whose mode is an interval parent and whose maximum is numbered.
MODELS["pert"] = (
    "A PERT over an interval mode and a numbered maximum: 115,200 entries.",
    [interval("Mode", steps(0.5, 0.125, 72)),
     numbered("Top", [10, 12, 14, 16, 20]),
     node("Y", "interval", steps(0, 0.0625, 320), ["Mode", "Top"], [],
          ["PERT(0, Mode, Top)"], 3)])

# (6) A Poisson whose mean is an interval parent, on unit intervals.
MODELS["poisson_interval"] = (
    "A Poisson over an interval parent on 128 interval states: 102,400 entries.",
    [interval("Rate", steps(0, 0.125, 800)),
     node("Count", "interval", steps(0, 1, 127) + [INF], ["Rate"], [], ["Poisson(Rate)"], 5)])

# (7) Special functions dominate: a Gamma over numbered parents only, no
# sampling.
MODELS["gamma_numbered"] = (
    "A Gamma over two numbered parents, no sampling: 402,000 entries.",
    [numbered("Shape", steps(0.5, 0.125, 399)),
     numbered("Scale", [0.5, 1, 2, 4, 8]),
     node("Y", "interval", steps(0, 0.5, 200) + [INF], ["Shape", "Scale"], [],
          ["Gamma(Shape, Scale)"], 1)])


def main():
    out = os.path.join(HERE, "models")
    os.makedirs(out, exist_ok=True)
    for name, (title, nodes) in MODELS.items():
        with open(os.path.join(out, name + ".yaml"), "w") as f:
            f.write(f"# {title}\n# Written by bench/make_models.py; do not edit.\n")
            f.write(f"domain: {name}\nnodes:\n")
            f.write("\n".join(nodes) + "\n")


if __name__ == "__main__":
    main()
