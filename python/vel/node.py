"""Nodes of a domain: states, parents, models and tables."""
import ctypes
import math
from dataclasses import dataclass

import numpy as np

from . import _capi as c
from . import _states
from . import table as _table
from .errors import ExpressionSyntaxError, check, last

CATEGORIES = {"chance": c.CATEGORY_CHANCE, "decision": c.CATEGORY_DECISION,
              "utility": c.CATEGORY_UTILITY, "function": c.CATEGORY_FUNCTION}
_CATEGORY_NAMES = {code: name for name, code in CATEGORIES.items()}


@dataclass(frozen=True)
class Model:
    """A node's model: one expression per configuration of the model nodes
    (row-major, the last model node fastest); None marks a missing one."""
    nodes: tuple
    expressions: tuple
    samples_per_interval: int


def print_expression(expression):
    size = c.vel_expression_print(expression, None, 0)
    buffer = ctypes.create_string_buffer(size + 1)
    c.vel_expression_print(expression, buffer, size + 1)
    return buffer.value.decode()


def _locked_property(read, doc=None):
    """A property whose value `read(node)` is taken under the domain's lock."""
    def get(node):
        with node.domain._lock:
            return read(node)
    return property(get, doc=doc)


class Node:
    """A node of a Domain.  Nodes are compared by identity in the library;
    they stay valid as long as their domain is open."""

    __slots__ = ("domain", "_pointer")

    def __init__(self, domain, pointer):
        self.domain = domain
        self._pointer = pointer

    @property
    def pointer(self):
        self.domain._handle  # refuses a closed domain
        return self._pointer

    def __eq__(self, other):
        return isinstance(other, Node) and other._pointer == self._pointer

    def __hash__(self):
        return hash(self._pointer)

    def __repr__(self):
        return f"<vel.Node {self.name} ({self.category}, {self.type})>"

    name = _locked_property(lambda node: c.text(c.vel_node_get_name(node.pointer)))
    category = _locked_property(
        lambda node: _CATEGORY_NAMES.get(c.vel_node_get_category(node.pointer), "chance"))
    type = _locked_property(lambda node: _states.type_name(node.pointer))

    # States

    states = _locked_property(lambda node: _states.states(node.pointer),
                              "Labels, False/True, numbers, or (low, high) intervals.")
    state_names = _locked_property(lambda node: _states.names(node.pointer),
                                   'The states as the program writes them ("[0;10)", "true", "16").')

    @property
    def bounds(self):
        """An interval node's n + 1 bounds (math.inf at unbounded ends)."""
        with self.domain._lock:
            return _states.values(self.pointer) if self.type == "interval" else None

    def set_states(self, states):
        """Labels, numbers, or an interval node's n + 1 bounds."""
        with self.domain._lock:
            _states.set_states(self.pointer, states)

    def state_index(self, state):
        """The index of a state given as Node.states lists it (or, for an
        interval node, a number inside it; "false"/"true" for a boolean)."""
        with self.domain._lock:
            return _states.index(self.pointer, state)

    # Parents

    parents = _locked_property(lambda node: node._nodes(c.vel_node_get_parents(node.pointer)))
    children = _locked_property(lambda node: node._nodes(c.vel_node_get_children(node.pointer)))

    def _nodes(self, node_list):
        return [Node(self.domain, p) for p in c.node_list(node_list)]

    def add_parent(self, parent):
        with self.domain._lock:
            parent = self.domain.node(parent)
            check(c.vel_node_add_parent(self.pointer, parent.pointer), self)

    # Models

    @property
    def model(self):
        """The node's Model, or None."""
        with self.domain._lock:
            model = c.vel_node_get_model(self.pointer)
            if not model:
                return None
            nodes = tuple(c.text(c.vel_node_get_name(n)) for n in c.node_list(c.vel_model_get_nodes(model)))
            expressions = []
            for i in range(c.vel_model_get_size(model)):
                expression = c.vel_model_get_expression(model, i)
                expressions.append(print_expression(expression) if expression else None)
            return Model(nodes, tuple(expressions), c.vel_model_get_samples_per_interval(model))

    def set_model(self, expressions, nodes=(), samples_per_interval=None):
        """Gives the node a model over `nodes` (distinct discrete parents,
        the first most significant): `expressions` holds one expression text
        per configuration of them, row-major (None for a missing one); a
        single text when there are no model nodes.  Every expression is
        parsed before the node's earlier model is replaced."""
        with self.domain._lock:
            pointer = self.pointer
            model_nodes = [self.domain.node(n) for n in nodes]
            if isinstance(expressions, str):
                expressions = [expressions]
            expressions = list(expressions)
            size = math.prod(_states.count(n.pointer) for n in model_nodes)
            if len(expressions) != size:
                raise ValueError(f"{self.name}: the model needs {size} expressions, one per "
                                 f"configuration of its model nodes; {len(expressions)} given")
            parsed = []
            try:
                for i, text in enumerate(expressions):
                    parsed.append(self._parse(text, i) if text is not None else None)
                model = c.vel_node_new_model(pointer, c.make_node_list([n.pointer for n in model_nodes]))
                if not model:
                    raise last(self)
                for i, expression in enumerate(parsed):
                    if expression:
                        check(c.vel_model_set_expression(model, i, expression), self)
                        parsed[i] = None  # the model owns it now
                if samples_per_interval is not None:
                    check(c.vel_model_set_samples_per_interval(model, samples_per_interval),
                          self, explained=True)
            finally:
                for expression in parsed:
                    if expression:
                        c.vel_expression_delete(expression)

    def _parse(self, text, index):
        expression = c.vel_parse_expression(text.encode(), self.pointer)
        if not expression:
            code = c.vel_error_code()
            position = c.vel_error_position()
            where = f" at character {position}" if position > 0 else ""
            raise ExpressionSyntaxError(code, c.text(c.vel_error_name(code)), self.name,
                                        f"expression {index}: {c.text(c.vel_error_message())}{where}",
                                        position)
        return expression

    def delete_model(self):
        with self.domain._lock:
            check(c.vel_node_delete_model(self.pointer), self)

    # Tables

    def generate(self):
        """Generates the node's table from its model, unless it is up to date
        (generated since the model or anything it reads last changed), and
        returns it."""
        with self.domain._lock:
            check(c.vel_node_generate_table(self.pointer), self, explained=True)
            return _table.read(self.pointer)

    @property
    def table(self):
        """The node's table (a Table); a table whose model changed since it
        was generated (or that never was) is generated first."""
        with self.domain._lock:
            model = c.vel_node_get_model(self.pointer)
            if model and c.vel_model_get_tables_outdated(model):
                return self.generate()
            return _table.read(self.pointer)

    def set_table(self, values):
        """Sets a literal table: entries in storage order (an array of the
        table's shape, or flat)."""
        with self.domain._lock:
            entries = np.ascontiguousarray(np.asarray(values, dtype=np.float64).ravel())
            check(c.vel_node_set_table_data(self.pointer, entries.ctypes.data_as(ctypes.POINTER(ctypes.c_double)),
                                            entries.size), self)
