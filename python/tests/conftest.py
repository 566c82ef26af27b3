"""Shared by the package's tests: the program `vel` as the reference, and
the checkout's package on the path.  VEL_LIBRARY and VEL_PROGRAM name the
build's library and program (CTest sets both); without them the checkout's
build/ is used."""
import json
import os
import subprocess
import sys
from pathlib import Path

import matplotlib
import numpy as np

matplotlib.use("Agg")
REPOSITORY = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY / "python"))
PROGRAM = os.environ.get("VEL_PROGRAM", str(REPOSITORY / "build" / "bin" / "vel"))
GOLDEN = REPOSITORY / "tests" / "golden" / "models"
GOLDEN_MODELS = sorted(GOLDEN.glob("*.yaml"))
WEATHER = REPOSITORY / "examples" / "weather.yaml"
MAINTENANCE = REPOSITORY / "examples" / "maintenance.yaml"
EXAMPLES = sorted((REPOSITORY / "examples").glob("*.yaml"))
NETWORKS = sorted((REPOSITORY / "tests" / "data" / "networks").glob("*.bif"))
INFERENCE_MODELS = sorted((REPOSITORY / "tests" / "inference" / "data").glob("*.yaml"))
# The program's addition to the message of a failure for want of results.
RESULTS_HINT = "; use --propagate, or state results in an inference block"


def program_json(*arguments):
    """Runs `vel ARGUMENTS --format json` and returns its document."""
    done = subprocess.run([PROGRAM, *map(str, arguments), "--format", "json"],
                          capture_output=True, text=True, check=False)
    return json.loads(done.stdout)


def entries(data):
    """The program's JSON entries as single-precision numbers."""
    return np.array([float(x) for x in data], dtype=np.float32)


def ids(paths):
    return [p.stem for p in paths]
