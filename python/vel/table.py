"""A node's table as a NumPy array with one axis per table node."""
import numpy as np

from . import _capi as c
from . import _states
from .errors import last

KINDS = {c.CATEGORY_DECISION: "policy", c.CATEGORY_UTILITY: "utility"}


class Table:
    """A copy of a node's table.

    node    the node's name
    kind    "conditional probability", "policy" or "utility"
    nodes   the table's nodes in storage order: the node's discrete parents,
            then the node itself when it has states
    states  per axis, the state names as the program writes them
    values  float32 array of shape `shape`, one axis per node of `nodes`
            (the last varying fastest in storage order)
    """

    def __init__(self, node, kind, nodes, states, values):
        self.node = node
        self.kind = kind
        self.nodes = tuple(nodes)
        self.states = tuple(tuple(s) for s in states)
        self.values = values

    @property
    def shape(self):
        return self.values.shape

    def __array__(self, dtype=None, copy=None):
        return self.values if dtype is None else self.values.astype(dtype)

    def __repr__(self):
        return f"<vel.Table {self.node} ({self.kind}) over {', '.join(self.nodes) or 'no nodes'}>"

    def to_pandas(self):
        """A DataFrame with one row per configuration of the parents (a
        MultiIndex of their state names) and one column per state of the node
        (one column "utility" for a utility table).  Needs pandas."""
        import pandas as pd

        own = self.kind != "utility"
        parents = self.nodes[:-1] if own else self.nodes
        parent_states = self.states[:-1] if own else self.states
        columns = list(self.states[-1]) if own else ["utility"]
        data = self.values.reshape(-1, len(columns))
        if parents:
            index = pd.MultiIndex.from_product(parent_states, names=parents)
        else:
            index = pd.RangeIndex(1)
        frame = pd.DataFrame(data, index=index, columns=pd.Index(columns, name=self.node))
        return frame


def read(node_pointer):
    """Copies the node's table out of the library."""
    name = c.text(c.vel_node_get_name(node_pointer))
    table = c.vel_node_get_table(node_pointer)
    if not table:
        raise last(name, explained=True)
    nodes = c.node_list(c.vel_table_get_nodes(table))
    size = c.vel_table_get_size(table)
    shape = tuple(_states.count(n) for n in nodes)
    if int(np.prod(shape, dtype=np.int64)) != size:
        raise RuntimeError(f"the table of {name} has {size} entries for shape {shape}")
    data = c.vel_table_get_data(table)
    values = (np.ctypeslib.as_array(data, shape=(size,)).copy() if size
              else np.zeros(0, dtype=np.float32)).reshape(shape)
    kind = KINDS.get(c.vel_node_get_category(node_pointer), "conditional probability")
    return Table(name, kind, [c.text(c.vel_node_get_name(n)) for n in nodes],
                 [_states.names(n) for n in nodes], values)
