"""Compilation, evidence and propagation from Python against `vel infer` and
`vel evaluate` on the same files."""
import numpy as np
import pytest
import yaml

import vel
from conftest import GOLDEN, INFERENCE_MODELS, MAINTENANCE, REPOSITORY, entries, program_json

FUNCTION_PARENTS = GOLDEN / "function_parents.yaml"
ASIA = REPOSITORY / "tests" / "inference" / "data" / "asia.yaml"


def evidence_cases(path):
    """No evidence; the first node's last state and the last node's first,
    each as {name: (state as the program takes it, as Node.states lists it)}."""
    with vel.load(path) as domain:
        nodes = [n for n in domain.nodes if n.type not in ("real", "continuous")]
        first, last = nodes[0], nodes[-1]
        chosen = {first.name: len(first.states) - 1, last.name: 0}
        cases = [{}, {}]
        for name, index in chosen.items():
            node = domain[name]
            state = node.states[index]
            text = f"{state[0]:g}" if node.type == "interval" else node.state_names[index]
            cases[1][name] = (text, state)
        return cases


CASES = [(path, evidence, maximum) for path in INFERENCE_MODELS + [MAINTENANCE]
         for evidence in evidence_cases(path) for maximum in (False, True)]


def results(domain, maximum):
    """The program's JSON document, from the package's calls."""
    document = {"probability_of_evidence": domain.probability_of_evidence(),
                "expected_utilities": [{"node": n.name, "value": domain.expected_utility(n)}
                                       for n in domain.nodes if n.category == "utility"]}
    if maximum:
        domain.propagate("max")
        configuration = domain.most_probable_configuration()
        document["configuration"] = {name: domain[name].state_names[domain[name].states.index(state)]
                                     for name, state in configuration.items()}
        document["probability_of_configuration"] = domain.probability_of_configuration()
    document["beliefs"] = [{"node": n.name, "states": n.state_names, "probabilities": domain.beliefs(n)}
                           for n in domain.nodes if n.type not in ("real", "continuous")]
    return document


def assert_same_results(document, expected):
    assert document["probability_of_evidence"] == expected["probability_of_evidence"]
    assert [(u["node"], np.float32(u["value"])) for u in document["expected_utilities"]] == \
        [(u["node"], np.float32(u["value"])) for u in expected["expected_utilities"]]
    assert [(b["node"], b["states"]) for b in document["beliefs"]] == \
        [(b["node"], b["states"]) for b in expected["beliefs"]]
    for belief, reference in zip(document["beliefs"], expected["beliefs"]):
        np.testing.assert_array_equal(belief["probabilities"].astype(np.float32), entries(reference["probabilities"]))
    for key in ("configuration", "probability_of_configuration"):
        assert document.get(key) == expected.get(key)


@pytest.mark.parametrize("path, evidence, maximum", CASES,
                         ids=[f"{p.stem}-{len(e)}-{'max' if m else 'sum'}" for p, e, m in CASES])
def test_results_match_vel_infer(path, evidence, maximum):
    arguments = [a for name, (text, _) in evidence.items() for a in ("--evidence", f"{name}={text}")]
    expected = program_json("infer", path, *arguments, *(["--max"] if maximum else []))
    with vel.load(path) as domain:
        for name, (_, state) in evidence.items():
            domain.set_evidence(name, state)
        domain.compile()
        assert domain.is_compiled
        assert_same_results(results(domain, maximum), expected)


def test_likelihoods_from_a_file_and_from_python_agree_with_the_program(tmp_path):
    description = yaml.safe_load(ASIA.read_text())
    likelihood = [0.9, 0.2]
    description["nodes"][3]["evidence"] = {"likelihood": likelihood}
    with_likelihood = tmp_path / "asia.yaml"
    with_likelihood.write_text(yaml.safe_dump(description))
    expected = program_json("infer", with_likelihood)

    with vel.load(with_likelihood) as domain:  # the file's evidence, entered by the loader
        domain.compile()
        assert_same_results(results(domain, False), expected)
    with vel.load(ASIA) as domain:
        domain.compile()
        domain.set_likelihood(description["nodes"][3]["name"], likelihood)
        domain.propagate()
        assert_same_results(results(domain, False), expected)
        domain.retract_evidence()
        domain.propagate()
        assert domain.probability_of_evidence() == pytest.approx(1, abs=1e-6)


def test_impossible_evidence_raises_the_program_error_and_keeps_results():
    expected = program_json("infer", ASIA, "--evidence", "tub=yes", "--evidence", "either=no")["error"]
    with vel.load(ASIA) as domain:
        domain.compile()
        before = domain.beliefs("lung")
        domain.set_evidence("tub", "yes")
        domain.set_evidence("either", "no")
        with pytest.raises(vel.InferenceError) as raised:
            domain.propagate()
        assert (raised.value.code, raised.value.name, raised.value.message) == \
            (expected["code"], expected["name"], expected["message"])
        np.testing.assert_array_equal(domain.beliefs("lung"), before)


def test_results_before_propagation_raise_inference_errors():
    with vel.load(ASIA) as domain:
        for query in (lambda: domain.beliefs("lung"), domain.probability_of_evidence):
            with pytest.raises(vel.InferenceError) as raised:
                query()
            assert raised.value.code == 17
        domain.compile()
        with pytest.raises(vel.InferenceError) as raised:
            domain.most_probable_configuration()
        assert raised.value.code == 21 and raised.value.node == "asia"


@pytest.mark.parametrize("node", ["Flow", "Margin"])
def test_function_node_values_from_stated_results_match_vel_evaluate(node):
    expected = program_json("evaluate", FUNCTION_PARENTS, "--node", node)
    with vel.load(FUNCTION_PARENTS) as domain:
        assert domain.value(node) == expected["value"]


def test_function_node_values_from_configured_values():
    with vel.load(FUNCTION_PARENTS) as domain:
        domain.set_configured("Speed", 2)
        domain.set_configured("Pressure", 3.0)
        assert domain.value("Flow", "configured") == 2 * 3.0 + 0.5
        with pytest.raises(vel.UsageError) as raised:
            domain.value("Speed")
        assert raised.value.node == "Speed"


def test_compiling_without_a_table_names_the_node():
    with vel.Domain() as domain:
        domain.add_node("A", "boolean")
        with pytest.raises(vel.UsageError) as raised:
            domain.compile()
        assert raised.value.node == "A" and not domain.is_compiled
