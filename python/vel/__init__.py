"""vel: Bayesian networks and influence diagrams whose tables are generated
from models, over the library's C API.

    import vel
    domain = vel.load("examples/weather.yaml")
    table = domain.table("Temp")        # a vel.Table: .values, .nodes, .states

Plots are in vel.plot (matplotlib); `python3 -m vel report FILE -o OUT.html`
writes every generated table of a file into one HTML page.
"""
from .domain import Domain, load
from .errors import (Error, ExpressionSyntaxError, GenerationError, InferenceError, LoadError,
                     ResourceError, UsageError)
from .node import Model, Node
from .table import Table
from . import _capi

__all__ = ["Domain", "load", "Node", "Model", "Table", "Error", "UsageError",
           "ExpressionSyntaxError", "ResourceError", "InferenceError", "GenerationError",
           "LoadError"]
# The version of the library the package runs on, which the package shares.
__version__ = _capi.vel_version().decode()
