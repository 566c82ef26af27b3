"""The continuous density that a row of an interval node's table
discretises, computed from the node's own model.

For the configuration of the row, the model's expression is walked: `if`
conditions, truncation bounds and distribution parameters are evaluated by
the library itself, each as a real-valued function node of a small helper
domain whose nodes stand for the parents (discrete parents at the row's
states; interval parents as continuous nodes set, in turn, to each of the
sample points the generator uses inside the row's interval).  The density
is the average, over those sample points, of the distributions they give;
truncation renormalises by the mass inside the bounds, which the library
computes too (a one-node table with states at the bounds).  What cannot be
computed so (a parameter read from results of inference or from a
continuous parent, a discrete distribution) raises NoDensity with the
reason."""
import itertools
import math

import numpy as np

from . import _capi as c
from . import _states
from .densities import FUNCTIONS
from .domain import Domain
from .errors import Error
from .node import print_expression

MAX_SAMPLE_COMBINATIONS = 10000


class NoDensity(ValueError):
    """The row's density cannot be computed from the model."""


def sample_points(low, high, samples):
    """The points at which the generator evaluates an interval parent's state
    [low; high) (docs/expressions.md, "Interval parents: sample points")."""
    if math.isinf(low) and math.isinf(high):
        return [0.0]
    if math.isinf(high):
        return [1.0] if low == 0 else [low * (1.001 if low > 0 else 0.999)]
    if math.isinf(low):
        return [-1.0] if high == 0 else [high * (0.999 if high > 0 else 1.001)]
    if low == high:
        return [low]
    step = (high - low) / samples
    return [low + (j + 0.5) * step for j in range(samples)]


def _referenced(expression):
    """The node pointers an expression reads."""
    found = set()
    stack = [expression]
    while stack:
        e = stack.pop()
        operator = c.vel_expression_get_operator(e)
        if operator == c.OPERATORS["node"]:
            found.add(c.vel_expression_get_node(e))
        elif operator < c.OPERATORS["number"]:
            index = 0
            while (argument := c.vel_expression_get_argument(e, index)):
                stack.append(argument)
                index += 1
    return found


def _arguments(expression):
    arguments = []
    while (argument := c.vel_expression_get_argument(expression, len(arguments))):
        arguments.append(argument)
    return arguments


class _Helper:
    """Evaluates numeric expressions of a node's parents at given parent
    states and sample points, through real-valued function nodes."""

    def __init__(self, parents):
        self.domain = Domain("density")
        self.parents = {}
        for parent in parents:
            kind = parent.type
            if kind == "interval":
                copy = self.domain.add_node(parent.name, "continuous")
            elif kind in ("labeled", "boolean", "numbered"):
                copy = self.domain.add_node(parent.name, kind, states=None if kind == "boolean" else
                                            _states.states(parent.pointer))
            else:
                continue  # values of continuous and function parents are not known here
            self.parents[parent.name] = copy
        self.functions = {}

    def set(self, name, value):
        copy = self.parents[name]
        if copy.type == "continuous":
            c.vel_node_set_configured_value(copy.pointer, value)
        else:
            c.vel_node_set_configured_state(copy.pointer, value)

    def evaluate(self, text):
        function = self.functions.get(text)
        if function is None:
            function = self.domain.add_node(f"F{len(self.functions)}", "real", category="function",
                                            parents=list(self.parents))
            try:
                function.set_model(text)
            except Error as error:
                raise NoDensity(f"{text} cannot be evaluated here: {error.message}") from None
            self.functions[text] = function
        try:
            return self.domain.value(function, "configured")
        except Error as error:
            raise NoDensity(f"{text} cannot be evaluated here: {error.message}") from None

    def mass(self, name, parameters, low, high):
        """The mass the library gives a distribution on [low, high]."""
        bounds = [-math.inf] + [b for b in (low, high) if math.isfinite(b)] + [math.inf]
        inside = 0 if math.isinf(low) else 1
        try:
            node = self.domain.add_node(f"M{len(self.domain)}", "interval", states=bounds)
            node.set_model(f"{name}({', '.join(repr(float(p)) for p in parameters)})")
            return float(node.generate().values[inside])
        except Error as error:
            raise NoDensity(f"the mass of {name}{parameters} in [{low}, {high}]: {error.message}") from None


def _distribution(helper, expression):
    """(name, parameters, low, high) of the continuous distribution the
    expression gives at the helper's current parent values."""
    operator = c.text(c.vel_operator_name(c.vel_expression_get_operator(expression)))
    arguments = _arguments(expression)
    if operator == "if":
        holds = helper.evaluate(f"if({print_expression(arguments[0])}, 1, 0)")
        return _distribution(helper, arguments[1] if holds == 1 else arguments[2])
    if operator == "truncate":
        inner_at = next(i for i, a in enumerate(arguments)
                        if c.text(c.vel_operator_name(c.vel_expression_get_operator(a))) in
                        (*FUNCTIONS, "truncate", "if"))
        name, parameters, low, high = _distribution(helper, arguments[inner_at])
        if inner_at == 1:
            low = max(low, helper.evaluate(print_expression(arguments[0])))
        if inner_at + 1 < len(arguments):
            high = min(high, helper.evaluate(print_expression(arguments[inner_at + 1])))
        return name, parameters, low, high
    if operator in FUNCTIONS:
        return operator, tuple(helper.evaluate(print_expression(a)) for a in arguments), -math.inf, math.inf
    raise NoDensity(f"{operator} is not a continuous distribution")


def row_density(node, parent_states):
    """A callable x -> density for the row of `node`'s table at
    `parent_states` ({parent name: state index} over its discrete parents).
    Raises NoDensity when the model does not give one."""
    if node.type != "interval":
        raise NoDensity(f"{node.name} is not an interval node")
    model_pointer = c.vel_node_get_model(node.pointer)
    if not model_pointer:
        raise NoDensity(f"{node.name} has no model")
    model_nodes = [c.text(c.vel_node_get_name(n)) for n in c.node_list(c.vel_model_get_nodes(model_pointer))]
    index = 0
    for name in model_nodes:
        index = index * _states.count(node.domain.node(name).pointer) + parent_states[name]
    expression = c.vel_model_get_expression(model_pointer, index)
    if not expression:
        raise NoDensity(f"{node.name} has no expression for this configuration")

    parents = node.parents
    samples = c.vel_model_get_samples_per_interval(model_pointer)
    read = _referenced(expression)
    sampled = [p for p in parents if p.type == "interval" and p.pointer in read]
    points = [sample_points(*_states.states(p.pointer)[parent_states[p.name]], samples) for p in sampled]
    if math.prod(len(p) for p in points) > MAX_SAMPLE_COMBINATIONS:
        raise NoDensity(f"{node.name}'s row averages more than {MAX_SAMPLE_COMBINATIONS} sample points")

    helper = _Helper(parents)
    try:
        for name, state in parent_states.items():
            if name in helper.parents and helper.parents[name].type != "continuous":
                helper.set(name, state)
        components = []
        for combination in itertools.product(*points):
            for parent, value in zip(sampled, combination):
                helper.set(parent.name, value)
            name, parameters, low, high = _distribution(helper, expression)
            mass = 1.0 if (math.isinf(low) and math.isinf(high)) else helper.mass(name, parameters, low, high)
            if not mass > 0:
                raise NoDensity(f"{name}{parameters} has no mass in [{low}, {high}]")
            components.append((FUNCTIONS[name], parameters, low, high, mass))
    finally:
        helper.domain.close()

    def density(x):
        x = np.asarray(x, dtype=float)
        total = np.zeros_like(x)
        for function, parameters, low, high, mass in components:
            inside = (x >= low) & (x <= high)
            total += np.where(inside, function(x, *parameters), 0.0) / mass
        return total / len(components)

    return density
