"""The hostile files: what each holds and what vel must answer.

Each case is a file and the outcome expected of `vel check` on it.  A file
that cannot be loaded (load=True) must be refused by every command with exit
status 2 and `FILE:LINE:COLUMN: message`, the message matching `message`.
A file that loads must be checked with the status given, its findings
matching `message` when one is given.  run_hostile.py runs every command on
every case and holds each run to the invariants it lists.
"""

from dataclasses import dataclass
from typing import Callable, Optional

MIB = 1 << 20


@dataclass
class Case:
    name: str
    file: str  # file name; its extension tells vel the format
    content: Callable[[], bytes]
    load: bool = False  # refused when loaded, at a position
    check: Optional[int] = None  # vel check's status when the file loads
    message: str = ""  # regular expression the first message line must match
    node: Optional[str] = None  # a real-valued function node to evaluate
    every_command: bool = True  # False: vel check only (large files)


def labeled(count, prefix="s"):
    return "[" + ", ".join(f"{prefix}{i}" for i in range(count)) + "]"


def yaml_file(*nodes, head=""):
    return lambda: (head + "nodes:\n" + "".join(f"  - {n}\n" for n in nodes)).encode()


def repeated_aliases(anchor_value, count, head_nodes, node):
    """Nodes made by `node(i, value)`, every value but the first an alias."""
    def content():
        lines = [head_nodes]
        for i in range(count):
            value = f"&v {anchor_value}" if i == 0 else "*v"
            lines.append("  - " + node(i, value) + "\n")
        return ("nodes:\n" + "".join(lines)).encode()
    return content


def expression_bomb():
    # One 40 kB expression aliased for each of 27,000 configurations: a
    # 150 kB file that would parse a gigabyte of text.
    expression = "max(" + ",".join(["1"] * 20000) + ")"
    parents = "".join(f"  - {{name: {p}, type: labeled, states: {labeled(30)}}}\n" for p in "PQR")
    aliases = ", *e" * (30 ** 3 - 1)
    return (f"nodes:\n{parents}  - {{name: X, category: utility, parents: [P, Q, R], model: "
            f"{{nodes: [P, Q, R], expressions: [&e \"{expression}\"{aliases}]}}}}\n").encode()


def laughs():
    # Nested aliases, each level ten of the one below: a billion leaves if
    # anything expanded them.
    lines = ["a0: &a0 [x, x, x, x, x, x, x, x, x, x]"]
    for level in range(1, 10):
        lines.append(f"a{level}: &a{level} [" + ", ".join([f"*a{level - 1}"] * 10) + "]")
    return ("\n".join(lines) + "\nnodes: *a9\n").encode()


def chain(length):
    # Boolean nodes, each with a model over the one before.
    nodes = ["{name: N0, type: boolean, table: [0.5, 0.5]}"]
    for i in range(1, length):
        nodes.append(f"{{name: N{i}, type: boolean, parents: [N{i - 1}], model: {{nodes: [N{i - 1}], "
                     f"expressions: [\"Distribution(0.9, 0.1)\", \"Distribution(0.2, 0.8)\"]}}}}")
    return yaml_file(*nodes)


def function_chain(length):
    nodes = ["{name: L, type: continuous, mean: 1, variance: 0, configured: 2}",
             "{name: F0, category: function, type: real, parents: [L], model: {nodes: [], expressions: [L]}}"]
    for i in range(1, length):
        nodes.append(f"{{name: F{i}, category: function, type: real, parents: [F{i - 1}], "
                     f"model: {{nodes: [], expressions: [\"F{i - 1} * 1.5\"]}}}}")
    return yaml_file(*nodes, head="inference: {}\n")


def children_first(count):
    # Every parent written after its child (a search per parent would be
    # quadratic), then a duplicate name in the last line.
    nodes = [f"{{name: N{i}, type: boolean" + (f", parents: [N{i + 1}]}}" if i + 1 < count else "}")
             for i in range(count)]
    return yaml_file(*nodes, f"{{name: N{count // 2}, type: boolean}}")


def many_model_nodes(count):
    # A model over 20,000 one-state parents: every search per model node
    # would cost the square of that.
    parents = [f"{{name: P{i}, type: labeled, states: [a]}}" for i in range(count)]
    names = ", ".join(f"P{i}" for i in range(count))
    return yaml_file(*parents, f"{{name: X, type: boolean, parents: [{names}], model: {{nodes: [{names}], "
                                f"expressions: [true]}}}}")


def with_parents(count, states, child):
    """Nodes P0, P1, ... with `states` states each, then `child`, whose
    parents are all of them (its text may say {parents})."""
    parents = [f"{{name: P{i}, type: labeled, states: {labeled(states)}}}" for i in range(count)]
    names = "[" + ", ".join(f"P{i}" for i in range(count)) + "]"
    return yaml_file(*parents, child.replace("{parents}", names))

BIG_NAME = "N" * (10 * MIB)
BIG_LABEL = "x" * (10 * MIB)


def bif(body):
    return lambda: body.encode("latin-1") if isinstance(body, str) else body


CASES = [
    # Numbers at and beyond the edges of double and float.
    Case("huge_state_values", "huge.yaml", yaml_file(
        "{name: N, type: numbered, states: [-1e308, 0, 1.7976931348623157e308], "
        "model: {nodes: [], expressions: [\"Normal(1e308, 1e308)\"]}}",
        "{name: T, type: interval, states: [-inf, -1e308, 1e308, inf], "
        "model: {nodes: [], expressions: [\"Normal(0, 1e300) * 1e300\"]}}"), check=1),
    Case("beyond_double", "beyond.yaml", yaml_file(
        "{name: N, type: numbered, states: [1, 1e999999], model: {nodes: [], expressions: [\"Poisson(1e300)\"]}}"),
        check=1),
    Case("table_entry_beyond_float", "float.yaml", yaml_file(
        "{name: A, type: boolean, table: [3.5e38, 0]}"), load=True, message="single-precision range"),
    Case("subnormal_numbers", "subnormal.yaml", yaml_file(
        "{name: N, type: numbered, states: [4.9e-324, 1e-323, 2.2250738585072014e-308], "
        "model: {nodes: [], expressions: [\"Normal(4.9e-324, 4.9e-324)\"]}}",
        "{name: T, type: interval, states: [-inf, 0, 5e-324, inf], table: [1e-45, 1e-46, 1]}",
        "{name: U, category: utility, parents: [T], model: {nodes: [T], "
        "expressions: [\"4.9e-324 / 4.9e-324\", \"1e-320 * 1e-320\", \"1 / 4.9e-324\"]}}"), check=1),
    Case("nan_in_expression", "nanexpr.yaml", yaml_file(
        "{name: A, type: numbered, states: [0, 1], model: {nodes: [], expressions: [\"nan\"]}}"),
        load=True, message="expression 0"),
    # Very long names and labels.
    Case("ten_megabyte_name", "bigname.yaml", lambda: (
        f"nodes:\n  - {{name: {BIG_NAME}, type: boolean, table: [0.5, 0.5]}}\n"
        f"  - {{name: C, type: boolean, parents: [{BIG_NAME}], model: {{nodes: [], "
        f"expressions: [\"Distribution(0.5, 0.5)\"]}}}}\n").encode(), check=0, every_command=False),
    Case("ten_megabyte_label", "biglabel.yaml", yaml_file(
        f"{{name: A, type: labeled, states: [a, b], table: [0.5, 0.5]}}",
        f"{{name: B, type: labeled, states: [{BIG_LABEL}, c], parents: [A], model: {{nodes: [A], "
        f"expressions: [\"Distribution(1, 0)\", \"\\\"c\\\"\"]}}}}"), check=0, every_command=False),
    Case("ten_megabyte_bad_name", "badname.yaml", yaml_file(f"{{name: {BIG_NAME}-, type: boolean}}"),
         load=True, message="identifier|name", every_command=False),
    # Deep nesting: of YAML, and of an expression.
    Case("deep_yaml_lists", "deeplist.yaml", lambda: ("nodes: " + "[" * 100000 + "]" * 100000 + "\n").encode(),
         load=True),
    Case("deep_block_yaml", "deepblock.yaml", lambda: ("nodes:\n" + "".join(
        " " * i + "- \n" for i in range(1, 5000)) + " " * 5000 + "- x\n").encode(), load=True),
    Case("deep_expression", "deepexpr.yaml", yaml_file(
        "{name: U, category: utility, model: {nodes: [], expressions: [\"" + "(" * 5000 + "1" + ")" * 5000 + "\"]}}"),
        load=True, message="nesting deeper than 1000"),
    # Aliases that would multiply work.
    Case("alias_bomb_expressions", "exprbomb.yaml", expression_bomb, load=True, message="aliases repeat too much",
         every_command=False),
    Case("alias_bomb_states", "statesbomb.yaml", repeated_aliases(
        labeled(100000), 1000, "", lambda i, v: f"{{name: N{i}, type: labeled, states: {v}}}"),
        load=True, message="aliases repeat too much"),
    Case("alias_bomb_nested", "laughs.yaml", laughs, load=True, message="unknown key 'a0'"),
    Case("aliases_shared_states", "shared.yaml", repeated_aliases(
        "[low, medium, high]", 2000, "",
        lambda i, v: f"{{name: N{i}, type: labeled, states: {v}, table: [0.2, 0.3, 0.5]}}"), check=0),
    # Bytes that are not UTF-8.
    Case("non_utf8_label", "latin1.yaml", lambda: (
        b"nodes:\n  - {name: A, type: labeled, states: [caf\xe9, \xff\xfe], table: [0.5, 0.5]}\n")),
    Case("non_utf8_name", "latin1name.yaml", lambda: b"nodes:\n  - {name: caf\xe9, type: boolean}\n",
         load=True),
    Case("binary_garbage", "garbage.yaml", lambda: bytes(range(256)) * 64, load=True),
    # Tables too large to make.
    Case("huge_model_table", "hugemodel.yaml", with_parents(
        10, 10, "{name: X, type: boolean, parents: {parents}, model: {nodes: [], expressions: [true]}}"),
        check=1, message=r"node X: error: the table would have 20000000000 entries \(80000000000 bytes\)"),
    Case("huge_literal_table", "hugeliteral.yaml", with_parents(
        10, 10, "{name: X, type: boolean, parents: {parents}, table: [0.5, 0.5]}"),
        load=True, message="^the table of 'X' needs 20000000000 entries; found 2$"),
    Case("state_count_overflow", "overflow.yaml", with_parents(
        5, 10000, "{name: X, type: boolean, parents: {parents}, table: [1]}"),
        load=True, message="needs at least 2\\^64 entries; found 1"),
    # Long chains and wide models.
    Case("long_chain", "chain.yaml", chain(10000), check=0, every_command=False),
    Case("long_function_chain", "functions.yaml", function_chain(10000), check=0, node="F9999"),
    Case("children_first", "children.yaml", children_first(100000), load=True,
         message="^duplicate node name 'N50000'$", every_command=False),
    Case("many_model_nodes", "wide.yaml", many_model_nodes(20000), check=1, message="more than the limit of 1000",
         every_command=False),
    Case("empty_file", "empty.yaml", lambda: b"", load=True),
    # Networks.
    Case("bif_state_count_lie", "lie.bif", bif(
        "network n { }\nvariable A { type discrete [ 4000000000 ] { a, b }; }\n"
        "probability ( A ) { table 0.5, 0.5; }\n"), load=True),
    Case("bif_huge_tables", "huge.bif", bif(
        "network n { }\n" + "".join(f"variable V{i} {{ type discrete [ 64 ] {{ {', '.join(f's{j}' for j in range(64))} }}; }}\n"
                                   for i in range(6)) +
        "probability ( V5 | V0, V1, V2, V3, V4 ) { default " + ", ".join(["0.015625"] * 64) + "; }\n"),
        load=True, message="more than 33554432 entries"),
    Case("bif_non_utf8", "latin1.bif", bif(
        b"network n { }\nvariable A { type discrete [ 2 ] { caf\xe9, b }; }\nprobability ( A ) { table 0.5, 0.5; }\n"),
        load=True, message="UTF-8"),
    Case("bif_deep_parentheses", "parens.bif", bif("network n { }\nprobability " + "(" * 100000), load=True),
    Case("bif_nan", "nan.bif", bif(
        "network n { }\nvariable A { type discrete [ 2 ] { a, b }; }\nprobability ( A ) { table nan, 0.5; }\n"),
        load=True),
    Case("xmlbif_entity_bomb", "laughs.xml", lambda: (
        '<?xml version="1.0"?>\n<!DOCTYPE BIF [\n<!ENTITY a "aaaaaaaaaa">\n' +
        "".join(f'<!ENTITY a{i} "' + f"&a{i - 1 if i > 1 else ''};" * 10 + '">\n' for i in range(1, 10)) +
        ']>\n<BIF VERSION="0.3"><NETWORK><NAME>&a9;</NAME></NETWORK></BIF>\n').encode(),
        load=True, message="entity"),
    Case("xmlbif_deep_elements", "deep.xml", lambda: (
        '<BIF VERSION="0.3"><NETWORK>' + "<X>" * 100000 + "</X>" * 100000 + "</NETWORK></BIF>").encode(),
        load=True),
]
