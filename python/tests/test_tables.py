"""Tables from model files, networks and domains built node by node, against
`vel generate --format json` on the same files."""
import math
import re
import subprocess

import numpy as np
import pytest
import yaml

import vel
from conftest import EXAMPLES, GOLDEN_MODELS, NETWORKS, PROGRAM, RESULTS_HINT, WEATHER, entries, ids, program_json


def assert_same_tables(tables, expected):
    assert [t.node for t in tables] == [e["node"] for e in expected]
    for table, reference in zip(tables, expected):
        assert table.kind == reference["table"]
        assert list(table.nodes) == reference["nodes"]
        assert [list(s) for s in table.states] == reference["states"]
        assert list(table.shape) == reference["shape"]
        assert table.values.dtype == np.float32
        np.testing.assert_array_equal(table.values.ravel(), entries(reference["data"]))


def assert_same_failure(error, reference):
    """The library's failure as the program reports it (the program adds a
    hint to failures for want of results)."""
    if reference is None:
        assert error is None
    else:
        assert (error.code, error.name, error.node) == (reference["code"], reference["name"], reference["node"])
        assert error.message == reference["message"].removesuffix(RESULTS_HINT)


def generate_until_failure(domain):
    """Tables in node order up to the first failure, as the program does."""
    tables = []
    for node in domain.generated_nodes():
        try:
            tables.append(node.generate())
        except vel.Error as error:
            return tables, error
    return tables, None


@pytest.mark.parametrize("path", GOLDEN_MODELS + EXAMPLES, ids=ids(GOLDEN_MODELS + EXAMPLES))
def test_model_file_tables_and_failures_match_the_program(path):
    expected = program_json("generate", path, "--no-log")
    with vel.load(path) as domain:
        assert domain.name == expected["domain"]
        tables, error = generate_until_failure(domain)
    assert_same_tables(tables, expected["tables"])
    assert_same_failure(error, expected["error"])


@pytest.mark.parametrize("path", NETWORKS, ids=ids(NETWORKS))
def test_networks_in_bif_and_xmlbif_hold_the_program_tables(path, tmp_path):
    expected = program_json("generate", path, "--all")["tables"]
    xmlbif = tmp_path / (path.stem + ".xml")
    subprocess.run([PROGRAM, "export", path, "--to", "xmlbif", "-o", xmlbif], check=True)
    for file in (path, xmlbif):
        with vel.load(file) as domain:
            assert_same_tables([domain.table(node) for node in domain.nodes], expected)


class FileLoader(yaml.SafeLoader):
    """YAML as model files read it: only true and false are booleans (a
    label `yes` stays a label)."""


FileLoader.yaml_implicit_resolvers = {
    first: [(tag, pattern) for tag, pattern in resolvers if tag != "tag:yaml.org,2002:bool"]
    for first, resolvers in yaml.SafeLoader.yaml_implicit_resolvers.items()}
FileLoader.add_implicit_resolver("tag:yaml.org,2002:bool", re.compile(r"^(?:true|false)$"), list("tf"))


def file_value(value):
    """A number of a model file: YAML's .inf, or the strings -inf and inf."""
    return {"-inf": -math.inf, "inf": math.inf}.get(value, value) if isinstance(value, str) else value


def build(description):
    """The domain a model file describes, built through the package's
    builder alone."""
    domain = vel.Domain(description.get("domain", "built"))
    default_samples = description.get("samples_per_interval")
    for node in description["nodes"]:
        states = node.get("states")
        domain.add_node(node["name"], node.get("type"), category=node.get("category", "chance"),
                        states=[file_value(s) if node["type"] != "labeled" else s for s in states]
                        if states is not None else None,
                        table=node.get("table"))
    for node in description["nodes"]:  # parents may be declared after their children
        for parent in node.get("parents", []):
            domain[node["name"]].add_parent(parent)
        if node.get("model") is not None:
            model = node["model"]
            domain[node["name"]].set_model(model["expressions"], model["nodes"],
                                           model.get("samples_per_interval", default_samples))
    return domain


# Files without results of inference or evidence, which the builder does not state.
BUILDABLE = [p for p in GOLDEN_MODELS + EXAMPLES
             if not re.search(r"\b(inference|evidence|beliefs|configured):", p.read_text())]


@pytest.mark.parametrize("path", BUILDABLE, ids=ids(BUILDABLE))
def test_domains_built_node_by_node_match_the_program(path):
    expected = program_json("generate", path, "--no-log")
    with build(yaml.load(path.read_text(), Loader=FileLoader)) as domain:
        tables, error = generate_until_failure(domain)
    assert_same_tables(tables, expected["tables"])
    assert_same_failure(error, expected["error"])


def test_built_nodes_read_back_as_given():
    with vel.Domain() as domain:
        domain.add_node("Season", "labeled", states=["winter", "summer"], table=[0.5, 0.5])
        domain.add_node("Count", "numbered", states=[0, 2.5, 1e5])
        temp = domain.add_node("Temp", "interval", states=[-math.inf, 0, 10, math.inf], parents=["Season"],
                               model={"nodes": ["Season"], "expressions": ["Normal(0, 25)", None],
                                      "samples_per_interval": 7})
        assert temp.states == [(-math.inf, 0), (0, 10), (10, math.inf)]
        assert temp.state_names == ["[-inf;0)", "[0;10)", "[10;inf)"]
        assert domain["Count"].state_names == ["0", "2.5", "1e+05"]
        assert temp.model == vel.Model(("Season",), ("Normal(0, 25)", None), 7)
        assert [p.name for p in temp.parents] == ["Season"] and domain["Season"].children == [temp]
        assert [temp.state_index(s) for s in (-5, (0, 10), 10, 1e300)] == [0, 1, 2, 2]
        with pytest.raises(ValueError, match="names no state of Temp"):
            temp.state_index("winter")
        table = domain.table("Season")
        assert table.kind == "conditional probability" and table.values.tolist() == [0.5, 0.5]


def test_reading_a_table_generates_it_when_outdated():
    with vel.load(WEATHER) as domain:
        assert domain.table("Temp").values.sum() == pytest.approx(4)  # four rows, each summing to 1


def test_to_pandas_indexes_rows_by_parent_states():
    pd = pytest.importorskip("pandas")
    with vel.load(WEATHER) as domain:
        table = domain.generate("Temp")
        frame = table.to_pandas()
    assert frame.index.names == ["Season"] and list(frame.columns) == list(table.states[-1])
    assert frame.loc["summer"].tolist() == table.values[2].tolist()
    assert isinstance(frame, pd.DataFrame)
