"""The weather model from Python: its generated tables as NumPy arrays, a
small domain built node by node, inference with evidence, and pictures.

    .venv/bin/python examples/python/weather.py [--output-dir DIR]

writes temp_summer.png (a row of Temp's table over the density it
discretises) and temp_table.png (Temp's whole table) into DIR (default: the
current directory)."""
import argparse
import math
from pathlib import Path

import matplotlib

matplotlib.use("Agg")  # files only: no display needed

import vel  # noqa: E402
import vel.plot  # noqa: E402

HERE = Path(__file__).resolve().parent


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output-dir", type=Path, default=Path.cwd())
    output = parser.parse_args().output_dir
    output.mkdir(parents=True, exist_ok=True)

    # A model file: every table of a model, generated.
    with vel.load(HERE.parent / "weather.yaml") as domain:
        for name, table in domain.generate().items():
            print(f"{name} ({table.kind}) over {', '.join(table.nodes)}: shape {table.shape}")
        temp = domain.table("Temp")
        print("P(Temp | Season = summer):", dict(zip(temp.states[1], temp.values[2].round(4).tolist())))
        vel.plot.distribution(domain, "Temp", {"Season": "summer"}, density=True).figure.savefig(
            output / "temp_summer.png")
        vel.plot.table(domain, "Temp").figure.savefig(output / "temp_table.png")

    # A domain built node by node, and what a thermometer reading says.
    with vel.Domain("garden") as garden:
        garden.add_node("Season", "labeled", states=["winter", "summer"], table=[0.5, 0.5])
        garden.add_node("Temp", "interval", states=[-math.inf, 0, 10, 20, math.inf], parents=["Season"],
                        model={"nodes": ["Season"],
                               "expressions": ["Normal(0, 25)", "truncate(5, Normal(22, 9))"]})
        garden.add_node("Frost", "boolean", parents=["Temp"],
                        model="if(Temp < 0, Distribution(0.1, 0.9), false)")
        garden.compile()
        garden.set_evidence("Temp", 15)  # a reading of 15 degrees: the state [10;20)
        garden.propagate()
        print("P(Season | Temp = 15):", dict(zip(garden["Season"].states, garden.beliefs("Season").round(4).tolist())))
        print("P(evidence):", round(garden.probability_of_evidence(), 6))
    print(f"wrote {output / 'temp_summer.png'} and {output / 'temp_table.png'}")


if __name__ == "__main__":
    main()
