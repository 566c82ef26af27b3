"""The benchmark suite: vel against a NumPy/SciPy script and a bare C++ loop.

    bash bench/run.sh [--runs N] [--model NAME]... [--build-dir DIR] [--no-build] [--markdown] [--check-only]

(run.sh installs what is missing and runs this file with Debian's python3.)
For every model under bench/models/ it
  1. checks: vel's table (--format json) equals the bare loop's bit for bit
     and the SciPy script's within 1e-6 (relative above magnitude 1);
  2. times, in interleaved rounds: `vel generate MODEL --format none --no-log
     --stats` (the generation time --stats reports, wall clock, and the CPU
     time of the whole process), the SciPy script's compute() (CPU time,
     from its built inputs to the finished table) and the bare loop's fill
     (CPU time);
  3. prints the medians, vel/bare and vel/SciPy (from vel's process CPU
     time), their geometric means and the targets of the rewrite.
"""
import argparse
import importlib
import json
import math
import os
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np

BENCH = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(BENCH)
sys.path.insert(0, BENCH)

MODELS = ["utility_expressions", "distribution_weights", "normal_linear", "gamma_truncated",
          "pert", "poisson_interval", "gamma_numbered"]
TOLERANCE = 1e-6
NOISY = 0.25
CPU_TIMINGS = ("vel_process", "scipy", "bare")
# Targets of the generator's rewrite.
BARE_GEOMEAN, BARE_EACH = 1.5, 2.0
SCIPY_GEOMEAN, SCIPY_EACH = 1 / 1.5, 1.0


def build(build_dir):
    cache = os.path.join(build_dir, "CMakeCache.txt")
    if os.path.exists(cache):
        settings = open(cache).read()
        if "VEL_SANITIZE:BOOL=ON" in settings or "CMAKE_BUILD_TYPE:STRING=Debug" in settings:
            sys.exit(f"suite: {build_dir} is a sanitizer or debug build; pass --build-dir for another")
    nice = ["nice", "-n", "10"]
    subprocess.run(nice + ["cmake", "-S", ROOT, "-B", build_dir, "-DVEL_BUILD_BENCH=ON"], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(nice + ["cmake", "--build", build_dir, "--target", "vel_program", "bench_bare", "-j2"],
                   check=True, stdout=subprocess.DEVNULL)


class Programs:
    def __init__(self, build_dir):
        self.vel = os.path.join(build_dir, "bin", "vel")
        self.bare = os.path.join(build_dir, "bench", "bench_bare")

    def vel_table(self, model):
        out = subprocess.run([self.vel, "generate", model_path(model), "--format", "json", "--no-log"],
                             capture_output=True, text=True, check=True).stdout
        data = json.loads(out)["tables"][-1]["data"]
        return np.array([float(x) for x in data], dtype=np.float32)

    def bare_table(self, model):
        with tempfile.NamedTemporaryFile(suffix=".bin") as dump:
            subprocess.run([self.bare, model, "--dump", dump.name], check=True, stdout=subprocess.DEVNULL)
            return np.fromfile(dump.name, dtype=np.float32)

    def time_vel(self, model):
        """(generation ms as --stats reports it, process CPU ms)."""
        process = subprocess.Popen([self.vel, "generate", model_path(model), "--format", "none", "--no-log",
                                    "--stats"], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        err = process.stderr.read()
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            raise RuntimeError(f"vel failed on {model}: {err}")
        generation = sum(float(line.rsplit(",", 1)[1].split()[0]) for line in err.splitlines()
                         if line.endswith(" ms"))
        return generation, (usage.ru_utime + usage.ru_stime) * 1e3

    def time_bare(self, model):
        out = subprocess.run([self.bare, model], capture_output=True, text=True, check=True).stdout
        return float(out.split()[0])


def model_path(model):
    return os.path.join(BENCH, "models", model + ".yaml")


def scipy_module(model):
    return importlib.import_module("scipy_tables." + model)


def time_scipy(module, inputs):
    start = time.process_time()
    module.compute(inputs)
    return (time.process_time() - start) * 1e3


def check(programs, model):
    """Problems with the bare and SciPy tables against vel's, and vel's entry count."""
    vel = programs.vel_table(model)
    problems = []
    bare = programs.bare_table(model)
    if bare.shape != vel.shape:
        problems.append(f"bare loop: {bare.size} entries, vel {vel.size}")
    elif not np.array_equal(bare.view(np.uint32), vel.view(np.uint32)):
        differ = int(np.count_nonzero(bare.view(np.uint32) != vel.view(np.uint32)))
        problems.append(f"bare loop: {differ} entries differ from vel's in their bits")
    module = scipy_module(model)
    table = module.compute(module.build())
    if table.shape != vel.shape:
        problems.append(f"SciPy: {table.size} entries, vel {vel.size}")
    else:
        reference = vel.astype(np.float64)
        error = np.abs(table - reference) / np.maximum(1.0, np.abs(reference))
        if not np.all(error <= TOLERANCE):
            problems.append(f"SciPy: largest difference {np.nanmax(error):.3g} > {TOLERANCE}")
    return vel.size, problems


def spread(values):
    """Interquartile range over the median: how noisy one program's runs were."""
    if len(values) < 4:
        return 0.0
    quartiles = statistics.quantiles(values, n=4)
    return (quartiles[2] - quartiles[0]) / statistics.median(values)


def geometric_mean(values):
    return math.exp(sum(math.log(v) for v in values) / len(values))


def report(rows, markdown):
    ratios_bare = [r["vel_process"] / r["bare"] for r in rows]
    ratios_scipy = [r["vel_process"] / r["scipy"] for r in rows]
    mean_bare, mean_scipy = geometric_mean(ratios_bare), geometric_mean(ratios_scipy)
    if markdown:
        print("| model | entries | vel gen ms | vel process ms | SciPy ms | bare ms | vel/bare | vel/SciPy |")
        print("|---|---:|---:|---:|---:|---:|---:|---:|")
        for r, rb, rs in zip(rows, ratios_bare, ratios_scipy):
            print(f"| {r['model']} | {r['entries']:,} | {r['vel_generation']:.1f} | {r['vel_process']:.1f} | "
                  f"{r['scipy']:.1f} | {r['bare']:.1f} | {rb:.2f} | {rs:.2f} |")
        print(f"| geometric mean | | | | | | {mean_bare:.2f} | {mean_scipy:.2f} |")
        return
    header = (f"{'model':<22}{'entries':>9}{'vel gen':>10}{'vel proc':>10}{'SciPy':>9}{'bare':>9}"
              f"{'vel/bare':>10}{'vel/SciPy':>11}{'spread':>8}")
    print(header)
    print("-" * len(header))
    for r, rb, rs in zip(rows, ratios_bare, ratios_scipy):
        mark_bare = " " if rb <= BARE_EACH else "*"
        mark_scipy = " " if rs <= SCIPY_EACH else "*"
        print(f"{r['model']:<22}{r['entries']:>9,}{r['vel_generation']:>10.1f}{r['vel_process']:>10.1f}"
              f"{r['scipy']:>9.1f}{r['bare']:>9.1f}{rb:>9.2f}{mark_bare}{rs:>10.2f}{mark_scipy}"
              f"{r['spread']:>7.0%}{'!' if r['spread'] > NOISY else ''}")
    print("-" * len(header))
    print(f"{'geometric mean':<69}{mean_bare:>9.2f}{' ' if mean_bare <= BARE_GEOMEAN else '*'}"
          f"{mean_scipy:>10.2f}{' ' if mean_scipy <= SCIPY_GEOMEAN else '*'}")
    print()
    print("Times in ms, medians of interleaved runs: vel gen = generation time as --stats reports it")
    print("(wall clock); vel proc, SciPy and bare = CPU time.  Ratios use vel proc.")
    print(f"Targets: vel/bare <= {BARE_GEOMEAN} in geometric mean and <= {BARE_EACH} on every model;")
    print(f"vel/SciPy <= {SCIPY_GEOMEAN:.2f} (1.5x faster) in geometric mean and <= {SCIPY_EACH} on every model.")
    print("* marks a figure outside its target.  spread: the largest interquartile range over the")
    print(f"median among a model's three CPU timings; ! above {NOISY:.0%}: the machine was busy, re-run.")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=15, help="timed runs per program and model (default 15)")
    parser.add_argument("--model", action="append", choices=MODELS, help="only this model (repeatable)")
    parser.add_argument("--build-dir", default=os.path.join(ROOT, "build"))
    parser.add_argument("--no-build", action="store_true", help="use the programs as built")
    parser.add_argument("--markdown", action="store_true", help="print the table as Markdown")
    parser.add_argument("--check-only", action="store_true", help="check the tables, time nothing")
    args = parser.parse_args()
    models = args.model or MODELS

    if not args.no_build:
        build(args.build_dir)
    programs = Programs(args.build_dir)

    entries, failed = {}, False
    for model in models:
        entries[model], problems = check(programs, model)
        for problem in problems:
            print(f"suite: {model}: {problem}", file=sys.stderr)
            failed = True
    if failed:
        sys.exit(1)
    if args.check_only:
        print(f"suite: {len(models)} models: bare loops bit-identical to vel, SciPy within {TOLERANCE}")
        return

    inputs = {model: scipy_module(model).build() for model in models}
    times = {model: {"vel_generation": [], "vel_process": [], "scipy": [], "bare": []} for model in models}

    def run_vel(model):
        generation, process = programs.time_vel(model)
        times[model]["vel_generation"].append(generation)
        times[model]["vel_process"].append(process)

    def run_scipy(model):
        times[model]["scipy"].append(time_scipy(scipy_module(model), inputs[model]))

    def run_bare(model):
        times[model]["bare"].append(programs.time_bare(model))

    methods = [run_vel, run_scipy, run_bare]
    for run in range(args.runs):
        for model in models:
            # The order rotates so that no program always runs right after another.
            for method in methods[run % 3:] + methods[:run % 3]:
                method(model)

    rows = [dict(model=m, entries=entries[m], spread=max(spread(times[m][k]) for k in CPU_TIMINGS),
                 **{k: statistics.median(v) for k, v in times[m].items()})
            for m in models]
    report(rows, args.markdown)


if __name__ == "__main__":
    main()
