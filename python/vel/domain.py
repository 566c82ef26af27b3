"""Domains: networks loaded from files or built node by node, their tables,
and inference."""
import ctypes
import os
import threading
import weakref

import numpy as np

from . import _capi as c
from . import _states
from .errors import LoadError, check, last, library_error
from .node import CATEGORIES, Node

EQUILIBRIA = {"sum": c.EQUILIBRIUM_SUM, "max": c.EQUILIBRIUM_MAX}
NOT_COMPILED = 17
MODES = {"inference": c.MODE_INFERENCE, "configured": c.MODE_CONFIGURED}


def _release(handle, log):
    c.vel_domain_delete(handle)
    c.fclose(log)


def _open_log(path):
    log = c.fopen(os.fsencode(path), b"w")
    if not log:
        raise OSError(ctypes.get_errno(), f"cannot open the log file {path}")
    return log


class Domain:
    """A Bayesian network or influence diagram.

    Domain() is empty; Domain.load(path) reads a model file or a BIF/XMLBIF
    network.  `log` names a file that receives the table generator's log
    (by default it is discarded; failures carry their explanation either
    way).  Every method of a domain and its nodes holds the domain's lock, so
    one domain may be shared between threads (its calls then take turns),
    and different domains run in parallel: the library's calls release the
    GIL.
    """

    def __init__(self, name="domain", *, log=None, _handle=None):
        self._lock = threading.RLock()
        self.name = name
        self._pointer = None
        handle = _handle or c.vel_domain_new()
        if not handle:
            raise last()
        try:
            log_file = _open_log(log if log is not None else os.devnull)
        except OSError:
            c.vel_domain_delete(handle)
            raise
        c.vel_domain_set_log_file(handle, log_file)
        self._pointer = handle
        self._finalizer = weakref.finalize(self, _release, handle, log_file)

    @classmethod
    def load(cls, path, *, log=None):
        """Reads a model file (.yaml, .yml, .json) or a BIF (.bif) or XMLBIF
        (.xml, .xmlbif) network; the format comes from the extension, else
        from the content.  A model file's evidence is entered, ready for
        compile().  Raises LoadError with "FILE:LINE:COLUMN: message"."""
        if not c.HAS_IO:
            raise ImportError("libvel_io.so was not found beside libvel.so: it loads files")
        name = ctypes.c_void_p()
        error = ctypes.c_void_p()
        handle = c.vel_io_load_file(os.fsencode(path), ctypes.byref(name), ctypes.byref(error))
        if not handle:
            message = ctypes.string_at(error.value).decode("utf-8", "replace") if error.value else \
                f"{path}: out of memory"
            c.vel_io_free(error)
            raise LoadError(message)
        domain_name = ctypes.string_at(name.value).decode("utf-8", "replace")
        c.vel_io_free(name)
        return cls(domain_name, log=log, _handle=handle)

    @property
    def _handle(self):
        if not self._finalizer.alive:
            raise ValueError("the domain is closed")
        return self._pointer

    def close(self):
        """Frees the domain and everything in it; it cannot be used after."""
        with self._lock:
            self._finalizer()

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

    def __repr__(self):
        if not self._finalizer.alive:
            return f"<vel.Domain {self.name} (closed)>"
        return f"<vel.Domain {self.name}: {len(self)} nodes>"

    # Nodes

    @property
    def nodes(self):
        """The nodes in creation (file) order."""
        with self._lock:
            nodes = []
            pointer = c.vel_domain_get_first_node(self._handle)
            while pointer:
                nodes.append(Node(self, pointer))
                pointer = c.vel_node_get_next(pointer)
            return nodes

    def node(self, node):
        """The Node named `node` (a Node is returned as it is); KeyError when
        the domain has none."""
        if isinstance(node, Node):
            if node.domain is not self:
                raise ValueError(f"{node.name} is a node of another domain")
            return node
        with self._lock:
            pointer = c.vel_domain_get_node_by_name(self._handle, str(node).encode())
        if not pointer:
            raise KeyError(node)
        return Node(self, pointer)

    __getitem__ = node

    def __contains__(self, name):
        try:
            self.node(name)
        except KeyError:
            return False
        return True

    def __iter__(self):
        return iter(self.nodes)

    def __len__(self):
        return len(self.nodes)

    def add_node(self, name, type=None, *, category="chance", states=None, parents=(),
                 model=None, table=None):
        """Creates a node, as a model file describes one.

        type      "labeled", "boolean", "numbered", "interval", "continuous",
                  or "real" (the default for utility nodes)
        category  "chance", "decision", "utility" or "function"
        states    labels, numbers, or an interval node's n + 1 bounds
        parents   names (or Nodes), in order
        model     an expression text (no model nodes), or a dict with
                  "expressions", optional "nodes" and "samples_per_interval"
        table     literal entries in storage order

        The node is created first; if a later part fails (a parse error in
        the model, say), the exception says why and the node stays as far as
        it was built (fix it through the Node's methods).
        """
        if category not in CATEGORIES:
            raise ValueError(f"category must be one of {', '.join(CATEGORIES)}, not {category!r}")
        if type is None:
            if category != "utility":
                raise ValueError(f"{name} needs a type")
            type = "real"
        if type not in _states.TYPES:
            raise ValueError(f"type must be one of {', '.join(_states.TYPES)}, not {type!r}")
        if model is not None and table is not None:
            raise ValueError(f"{name} takes a model or a table, not both")
        kind, subtype = _states.TYPES[type]
        with self._lock:
            parents = [self.node(p) for p in parents]
            pointer = c.vel_domain_new_node(self._handle, CATEGORIES[category], kind, subtype,
                                            str(name).encode())
            if not pointer:
                raise last(str(name))
            node = Node(self, pointer)
            if states is not None:
                node.set_states(states)
            for parent in parents:
                node.add_parent(parent)
            if isinstance(model, str):
                node.set_model(model)
            elif model is not None:
                node.set_model(model["expressions"], model.get("nodes", ()),
                               model.get("samples_per_interval"))
            if table is not None:
                node.set_table(table)
            return node

    # Tables

    def generate(self, node=None):
        """Generates one node's table (see Node.generate) and returns it;
        without a node, every node with a model that has a table (not
        real-valued function nodes), in node order, returning {name: Table}.
        Stops at the first failure, raising it."""
        with self._lock:
            if node is not None:
                return self.node(node).generate()
            return {n.name: n.generate() for n in self.generated_nodes()}

    def generated_nodes(self):
        """The nodes whose tables come from models, in node order."""
        with self._lock:
            return [n for n in self.nodes
                    if c.vel_node_get_model(n.pointer) and
                    not (n.type == "real" and n.category == "function")]

    def table(self, node):
        """The node's Table (see Node.table)."""
        return self.node(node).table

    # Inference

    def compile(self):
        """Compiles the domain into junction trees (generating outdated
        tables) and propagates the entered evidence."""
        with self._lock:
            self._inference_check(c.vel_domain_compile(self._handle))

    @property
    def is_compiled(self):
        with self._lock:
            return bool(c.vel_domain_is_compiled(self._handle))

    def propagate(self, equilibrium="sum"):
        """Propagates the entered evidence: "sum" for beliefs, "max" for
        max-marginals and the most probable configuration."""
        if equilibrium not in EQUILIBRIA:
            raise ValueError(f"equilibrium must be 'sum' or 'max', not {equilibrium!r}")
        with self._lock:
            self._inference_check(c.vel_domain_propagate(self._handle, EQUILIBRIA[equilibrium]))

    def _inference_check(self, code):
        def failed_node():
            failed = c.vel_domain_get_failed_node(self._handle)
            return c.text(c.vel_node_get_name(failed)) if failed else None
        check(code, failed_node, explained=True)

    def set_evidence(self, node, state):
        """Enters a state as evidence (see Node.state_index for how states
        are named); it takes effect at the next propagate()."""
        with self._lock:
            node = self.node(node)
            check(c.vel_node_enter_evidence(node.pointer, node.state_index(state)), node)

    def set_likelihood(self, node, likelihood):
        """Enters one likelihood per state (finite, non-negative, not all 0)."""
        with self._lock:
            node = self.node(node)
            values = np.ascontiguousarray(likelihood, dtype=np.float64)
            check(c.vel_node_enter_likelihood(node.pointer, values.ctypes.data_as(ctypes.POINTER(ctypes.c_double)),
                                              values.size), node)

    def retract_evidence(self, node=None):
        """Retracts one node's evidence, or everyone's."""
        with self._lock:
            if node is None:
                check(c.vel_domain_retract_evidence(self._handle))
            else:
                node = self.node(node)
                check(c.vel_node_retract_evidence(node.pointer), node)

    def _require_results(self, node):
        """Beliefs and expected utilities read as zeros before there are
        results: refused as the library refuses other results."""
        if not c.vel_domain_is_compiled(self._handle):
            raise library_error(NOT_COMPILED, node.name)

    def beliefs(self, node):
        """The node's beliefs after propagation, one per state (max-marginals
        divided by their largest value after a max propagation)."""
        with self._lock:
            node = self.node(node)
            self._require_results(node)
            values = [c.vel_node_get_belief(node.pointer, s) for s in range(_states.count(node.pointer))]
            if any(v < 0 for v in values):
                raise last(node, explained=True)
            return np.array(values)

    def expected_utility(self, node):
        with self._lock:
            node = self.node(node)
            self._require_results(node)
            value = c.vel_node_get_expected_utility(node.pointer, 0)
            if c.vel_error_code():
                raise last(node, explained=True)
            return float(value)

    def probability_of_evidence(self):
        with self._lock:
            return self._probability(c.vel_domain_get_probability_of_evidence)

    def probability_of_configuration(self):
        """P(most probable configuration, evidence), after a max propagation."""
        with self._lock:
            return self._probability(c.vel_domain_get_probability_of_configuration)

    def _probability(self, function):
        value = function(self._handle)
        if value < 0:
            raise last(explained=True)
        return value

    def most_probable_configuration(self):
        """After a max propagation: {node name: state} over the discrete
        nodes, states as Node.states lists them."""
        with self._lock:
            configuration = {}
            for node in self.nodes:
                if node.type in ("continuous", "real"):
                    continue
                state = c.vel_node_get_most_probable_state(node.pointer)
                if state < 0:
                    raise last(node, explained=True)
                configuration[node.name] = node.states[state]
            return configuration

    def value(self, node, mode="inference"):
        """A real-valued function node's value, computed from inference
        results ("inference") or from configured values ("configured")."""
        if mode not in MODES:
            raise ValueError(f"mode must be 'inference' or 'configured', not {mode!r}")
        with self._lock:
            node = self.node(node)
            result = ctypes.c_double()
            check(c.vel_node_compute_value(node.pointer, MODES[mode], ctypes.byref(result)),
                  node, explained=True)
            return result.value

    def set_configured(self, node, value):
        """A node's configured value, read by function nodes evaluated in
        "configured" mode: a state of a discrete node, else a number."""
        with self._lock:
            node = self.node(node)
            if node.type in ("continuous", "real"):
                check(c.vel_node_set_configured_value(node.pointer, float(value)), node)
            else:
                check(c.vel_node_set_configured_state(node.pointer, node.state_index(value)), node)


def load(path, *, log=None):
    """Domain.load(path)."""
    return Domain.load(path, log=log)
