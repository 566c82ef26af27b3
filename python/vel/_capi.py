"""ctypes declarations of the C API (include/vel/vel.h, include/vel/vel_io.h).

Every foreign call releases the GIL for its duration (ctypes.CDLL does so by
default), so long generations and propagations of different domains run in
parallel from different threads."""
import ctypes
from ctypes import POINTER, c_char_p, c_double, c_float, c_int, c_int64, c_long, c_size_t, c_void_p

from . import _library

# Opaque records.
Domain = c_void_p
Node = c_void_p
NodeList = POINTER(c_void_p)  # NULL-terminated

CATEGORY_CHANCE, CATEGORY_FUNCTION, CATEGORY_DECISION, CATEGORY_UTILITY = 1, 5, 8, 9
KIND_DISCRETE, KIND_CONTINUOUS, KIND_STATELESS = 0, 1, -1
SUBTYPE_NONE, SUBTYPE_LABELED, SUBTYPE_BOOLEAN, SUBTYPE_NUMBERED, SUBTYPE_INTERVAL = 0, 30, 31, 32, 33
EQUILIBRIUM_SUM, EQUILIBRIUM_MAX = 11, 12
MODE_INFERENCE, MODE_CONFIGURED = 0, 1
INFINITY = 1.7976931348623157e308
SIZE_FAILURE = ctypes.c_size_t(-1).value

_DECLARATIONS = {
    # Errors
    "vel_error_code": (c_int, []),
    "vel_error_name": (c_char_p, [c_int]),
    "vel_error_description": (c_char_p, [c_int]),
    "vel_version": (c_char_p, []),
    "vel_error_message": (c_char_p, []),
    "vel_error_position": (c_long, []),
    # Domains
    "vel_domain_new": (Domain, []),
    "vel_domain_delete": (c_int, [Domain]),
    "vel_domain_set_log_file": (c_int, [Domain, c_void_p]),
    "vel_domain_get_first_node": (Node, [Domain]),
    "vel_node_get_next": (Node, [Node]),
    "vel_domain_get_node_by_name": (Node, [Domain, c_char_p]),
    "vel_domain_is_compiled": (c_int, [Domain]),
    # Nodes
    "vel_domain_new_node": (Node, [Domain, c_int, c_int, c_int, c_char_p]),
    "vel_node_get_name": (c_char_p, [Node]),
    "vel_node_get_category": (c_int, [Node]),
    "vel_node_get_kind": (c_int, [Node]),
    "vel_node_get_subtype": (c_int, [Node]),
    "vel_node_set_number_of_states": (c_int, [Node, c_size_t]),
    "vel_node_get_number_of_states": (c_size_t, [Node]),
    "vel_node_set_state_label": (c_int, [Node, c_size_t, c_char_p]),
    "vel_node_get_state_label": (c_char_p, [Node, c_size_t]),
    "vel_node_set_state_value": (c_int, [Node, c_size_t, c_double]),
    "vel_node_get_state_value": (c_double, [Node, c_size_t]),
    "vel_node_add_parent": (c_int, [Node, Node]),
    "vel_node_get_parents": (NodeList, [Node]),
    "vel_node_get_children": (NodeList, [Node]),
    # Models and expressions
    "vel_node_new_model": (c_void_p, [Node, NodeList]),
    "vel_node_get_model": (c_void_p, [Node]),
    "vel_node_delete_model": (c_int, [Node]),
    "vel_model_get_nodes": (NodeList, [c_void_p]),
    "vel_model_get_size": (c_size_t, [c_void_p]),
    "vel_model_set_expression": (c_int, [c_void_p, c_size_t, c_void_p]),
    "vel_model_get_expression": (c_void_p, [c_void_p, c_size_t]),
    "vel_model_set_samples_per_interval": (c_int, [c_void_p, c_size_t]),
    "vel_model_get_samples_per_interval": (c_size_t, [c_void_p]),
    "vel_model_get_tables_outdated": (c_int, [c_void_p]),
    "vel_parse_expression": (c_void_p, [c_char_p, Node]),
    "vel_expression_delete": (c_int, [c_void_p]),
    "vel_expression_print": (c_size_t, [c_void_p, c_char_p, c_size_t]),
    "vel_expression_get_operator": (c_int, [c_void_p]),
    "vel_expression_get_argument": (c_void_p, [c_void_p, c_size_t]),
    "vel_expression_get_node": (Node, [c_void_p]),
    "vel_operator_name": (c_char_p, [c_int]),
    # Tables
    "vel_node_get_table": (c_void_p, [Node]),
    "vel_table_get_nodes": (NodeList, [c_void_p]),
    "vel_table_get_size": (c_size_t, [c_void_p]),
    "vel_table_get_data": (POINTER(c_float), [c_void_p]),
    "vel_node_set_table_data": (c_int, [Node, POINTER(c_double), c_size_t]),
    "vel_node_generate_table": (c_int, [Node]),
    # Inference
    "vel_domain_compile": (c_int, [Domain]),
    "vel_domain_propagate": (c_int, [Domain, c_int]),
    "vel_node_enter_evidence": (c_int, [Node, c_size_t]),
    "vel_node_enter_likelihood": (c_int, [Node, POINTER(c_double), c_size_t]),
    "vel_node_retract_evidence": (c_int, [Node]),
    "vel_domain_retract_evidence": (c_int, [Domain]),
    "vel_domain_get_probability_of_evidence": (c_double, [Domain]),
    "vel_node_get_most_probable_state": (c_int64, [Node]),
    "vel_domain_get_probability_of_configuration": (c_double, [Domain]),
    "vel_domain_get_failed_node": (Node, [Domain]),
    "vel_node_get_belief": (c_double, [Node, c_size_t]),
    "vel_node_get_expected_utility": (c_float, [Node, c_int]),
    "vel_node_set_configured_state": (c_int, [Node, c_int64]),
    "vel_node_set_configured_value": (c_int, [Node, c_double]),
    "vel_node_compute_value": (c_int, [Node, c_int, POINTER(c_double)]),
}

_IO_DECLARATIONS = {
    "vel_io_load_file": (Domain, [c_char_p, POINTER(c_void_p), POINTER(c_void_p)]),
    "vel_io_free": (None, [c_void_p]),
}

_LIBC_DECLARATIONS = {
    "fopen": (c_void_p, [c_char_p, c_char_p]),
    "fclose": (c_int, [c_void_p]),
}


def _declare(library, declarations, namespace):
    for name, (restype, argtypes) in declarations.items():
        function = getattr(library, name)
        function.restype = restype
        function.argtypes = argtypes
        namespace[name] = function


_declare(_library.core, _DECLARATIONS, globals())
_declare(_library.libc, _LIBC_DECLARATIONS, globals())
HAS_IO = _library.io is not None
if HAS_IO:
    _declare(_library.io, _IO_DECLARATIONS, globals())


# Operator codes by name ("Normal", "truncate", "if", "node", "number", ...).
_operator_name = globals()["vel_operator_name"]
OPERATORS = {_operator_name(code).decode(): code for code in range(60, 118) if _operator_name(code) is not None}


def node_list(pointer):
    """The nodes of a NULL-terminated list."""
    nodes = []
    index = 0
    while pointer[index]:
        nodes.append(pointer[index])
        index += 1
    return nodes


def make_node_list(nodes):
    """A NULL-terminated array of node pointers, for the call that reads it."""
    array = (c_void_p * (len(nodes) + 1))(*nodes, None)
    return ctypes.cast(array, NodeList)


def text(value):
    return value.decode("utf-8", "replace") if value is not None else None
