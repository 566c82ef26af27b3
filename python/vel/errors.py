"""Failures of the library as exceptions: one class per family of codes,
each carrying the code, its name, the node concerned and the library's
message (the generator's explanation after a failed generation)."""
from . import _capi


class Error(Exception):
    """A failure reported by vel.

    code     the library's error code (None for a file that cannot be loaded)
    name     the code's name, "vel_error_invalid_expression", or "load_error"
    node     the name of the node concerned, or None
    message  the library's explanation
    """

    def __init__(self, code, name, node, message):
        self.code = code
        self.name = name
        self.node = node
        self.message = message
        if code is None:
            super().__init__(message)
        else:
            where = f"{node}: " if node else ""
            super().__init__(f"{where}error {code} ({name}): {message}")


class UsageError(Error):
    """A call the library refuses (code 1): wrong kind of node, an operation
    the node does not support, an expression that does not parse."""


class ExpressionSyntaxError(UsageError):
    """An expression that does not parse; `position` is the 1-based character
    the message refers to (0 when none)."""

    def __init__(self, code, name, node, message, position):
        self.position = position
        super().__init__(code, name, node, message)


class ResourceError(Error):
    """Input/output failed (2), memory ran out (3), or a table or setting is
    beyond a documented limit (5)."""


class InferenceError(Error):
    """Impossible evidence (4), or results of inference asked for without a
    compiled (17) or propagated (21) domain."""


class GenerationError(Error):
    """A table the generator could not make: an expression that does not fit
    (34), division by zero (36), an invalid argument (37), a computation that
    failed (38), states that do not suit the distribution (39) or do not
    increase (40), a negative entry (18), an unsupported operation (47)."""


class LoadError(Error):
    """A file that cannot be loaded: the message is "FILE:LINE:COLUMN: ..."."""

    def __init__(self, message):
        super().__init__(None, "load_error", None, message)


_FAMILIES = {1: UsageError, 2: ResourceError, 3: ResourceError, 5: ResourceError,
             4: InferenceError, 17: InferenceError, 21: InferenceError}


def library_error(code, node=None, explained=False):
    """The exception for a failed call's code.  `explained`: the call is one
    that leaves its text in vel_error_message() (generation, parsing,
    compilation, propagation, function-node values, limits); for the others
    the code's description is the message.  `node`: a Node, a name, or a
    function giving one, read after the message, since every call resets
    the thread's error state."""
    message = _capi.text(_capi.vel_error_message()) if explained else ""
    if not message:
        message = _capi.text(_capi.vel_error_description(code))
    family = _FAMILIES.get(code, GenerationError)
    if callable(node):
        node = node()
    return family(code, _capi.text(_capi.vel_error_name(code)), getattr(node, "name", node), message)


def check(code, node=None, explained=False):
    """Raises for a nonzero code."""
    if code != 0:
        raise library_error(code, node, explained)


def last(node=None, explained=False):
    """The exception for the thread's last failed call; call it right after
    that call (pass the Node, not node.name, which is a call too)."""
    return library_error(_capi.vel_error_code(), node, explained)
