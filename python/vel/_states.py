"""A node's states: reading, writing and naming them, and finding the state
a person means ("high", True, 16, a number inside an interval)."""
import math
import numbers

from . import _capi as c
from . import _text
from .errors import check

TYPES = {  # type name: (kind, subtype)
    "labeled": (c.KIND_DISCRETE, c.SUBTYPE_LABELED),
    "boolean": (c.KIND_DISCRETE, c.SUBTYPE_BOOLEAN),
    "numbered": (c.KIND_DISCRETE, c.SUBTYPE_NUMBERED),
    "interval": (c.KIND_DISCRETE, c.SUBTYPE_INTERVAL),
    "continuous": (c.KIND_CONTINUOUS, c.SUBTYPE_NONE),
    "real": (c.KIND_STATELESS, c.SUBTYPE_NONE),
}


def type_name(pointer):
    kind = c.vel_node_get_kind(pointer)
    if kind > 0:
        return "continuous"
    if kind < 0:
        return "real"
    return {subtype: name for name, (_, subtype) in TYPES.items()}[c.vel_node_get_subtype(pointer)]


def count(pointer):
    n = c.vel_node_get_number_of_states(pointer)
    return 0 if n == c.SIZE_FAILURE else n


def _from_library(value):
    if value >= c.INFINITY:
        return math.inf
    if value <= -c.INFINITY:
        return -math.inf
    return value


def _to_library(value):
    value = float(value)
    return max(-c.INFINITY, min(c.INFINITY, value))


def values(pointer):
    """The state values of a numbered node, or the n + 1 bounds of an interval
    node, with infinite bounds as math.inf."""
    n = count(pointer) + (c.vel_node_get_subtype(pointer) == c.SUBTYPE_INTERVAL)
    return [_from_library(c.vel_node_get_state_value(pointer, i)) for i in range(n)]


def states(pointer):
    """Labels, False/True, numbers, or (low, high) intervals."""
    subtype = c.vel_node_get_subtype(pointer)
    if subtype == c.SUBTYPE_LABELED:
        return [c.text(c.vel_node_get_state_label(pointer, i)) for i in range(count(pointer))]
    if subtype == c.SUBTYPE_BOOLEAN:
        return [False, True]
    if subtype == c.SUBTYPE_NUMBERED:
        return values(pointer)
    if subtype == c.SUBTYPE_INTERVAL:
        bounds = values(pointer)
        return list(zip(bounds[:-1], bounds[1:]))
    return []


def names(pointer):
    """The states as the program writes them: labels, false/true, numbers,
    [low;high) intervals with -inf and inf."""
    subtype = c.vel_node_get_subtype(pointer)
    if subtype in (c.SUBTYPE_LABELED, c.SUBTYPE_BOOLEAN):
        return [c.text(c.vel_node_get_state_label(pointer, i)) for i in range(count(pointer))]
    if subtype == c.SUBTYPE_NUMBERED:
        return [_text.bound(v) for v in values(pointer)]
    if subtype == c.SUBTYPE_INTERVAL:
        return [_text.interval(low, high) for low, high in states(pointer)]
    return []


def set_states(pointer, given):
    """Labels of a labeled node, numbers of a numbered node, the n + 1 bounds
    of an interval node (math.inf allowed at the ends)."""
    subtype = c.vel_node_get_subtype(pointer)
    given = list(given)
    name = c.text(c.vel_node_get_name(pointer))
    if subtype == c.SUBTYPE_BOOLEAN:
        if given not in ([False, True], ["false", "true"]):
            raise ValueError(f"{name} is a boolean node: its states are false and true")
        return
    if subtype not in (c.SUBTYPE_LABELED, c.SUBTYPE_NUMBERED, c.SUBTYPE_INTERVAL):
        raise ValueError(f"{name} is a node without states")
    n = len(given) - 1 if subtype == c.SUBTYPE_INTERVAL else len(given)
    if n < 1:
        raise ValueError(f"{name} needs at least one state" +
                         (" (two bounds)" if subtype == c.SUBTYPE_INTERVAL else ""))
    check(c.vel_node_set_number_of_states(pointer, n), name, explained=True)
    for i, state in enumerate(given):
        if subtype == c.SUBTYPE_LABELED:
            check(c.vel_node_set_state_label(pointer, i, str(state).encode()), name)
        else:
            check(c.vel_node_set_state_value(pointer, i, _to_library(state)), name)


def _inside(x, low, high):
    return (low == -math.inf or x >= low) and (high == math.inf or x < high)


def index(pointer, state):
    """The index of the state a person means: a label; False/True (or
    "false"/"true"); a numbered node's value; an interval node's (low, high)
    or a number inside it.  ValueError when it names none."""
    subtype = c.vel_node_get_subtype(pointer)
    listed = states(pointer)
    found = None
    if subtype == c.SUBTYPE_BOOLEAN and isinstance(state, str):
        state = {"false": False, "true": True}.get(state, state)
    if subtype == c.SUBTYPE_INTERVAL and not isinstance(state, tuple) and _is_number(state):
        found = next((i for i, (low, high) in enumerate(listed) if _inside(float(state), low, high)), None)
    elif subtype == c.SUBTYPE_NUMBERED and _is_number(state):
        found = next((i for i, value in enumerate(listed) if value == float(state)), None)
    elif subtype in (c.SUBTYPE_LABELED, c.SUBTYPE_BOOLEAN, c.SUBTYPE_INTERVAL):
        found = next((i for i, s in enumerate(listed) if s == state and type(s) is type(state)), None)
    if found is None:
        name = c.text(c.vel_node_get_name(pointer))
        raise ValueError(f"{state!r} names no state of {name}")
    return found


def _is_number(value):
    return isinstance(value, numbers.Real) and not isinstance(value, bool)
