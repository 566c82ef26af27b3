"""Failures raised as vel.Error subclasses: the family by code, the node, and
the message the program reports for the same failure."""
import math

import pytest

import vel
from conftest import GOLDEN, WEATHER, program_json



@pytest.mark.parametrize("model, family, code", [
    ("fail_state_range", vel.GenerationError, 39),
    ("fail_parameter", vel.GenerationError, 37),
    ("fail_utility_division", vel.GenerationError, 36),
    ("fail_not_compiled", vel.InferenceError, 17),
])
def test_generation_failures_raise_their_family(model, family, code):
    with vel.load(GOLDEN / f"{model}.yaml") as domain:
        with pytest.raises(vel.Error) as raised:
            domain.generate()
    assert type(raised.value) is family and raised.value.code == code


@pytest.mark.parametrize("expression", ["Normal(0, ", 'if(Season == "winter", Normal(0, 1) Normal(1, 1))'])
def test_syntax_errors_say_what_the_loader_says(tmp_path, expression):
    file = tmp_path / "model.yaml"
    file.write_text("nodes:\n  - {name: Season, type: labeled, states: [winter, summer]}\n"
                    "  - {name: A, type: interval, states: [-inf, 0, inf], parents: [Season],\n"
                    f"     model: {{nodes: [], expressions: ['{expression}']}}}}\n")
    loader = program_json("generate", file)["error"]["message"]
    with vel.load(WEATHER) as domain:
        node = domain.add_node("A", "interval", states=[-math.inf, 0, math.inf], parents=["Season"])
        with pytest.raises(vel.ExpressionSyntaxError) as raised:
            node.set_model(expression)
    error = raised.value
    assert (error.code, error.name, error.node) == (1, "vel_error_usage", "A")
    assert loader.endswith(f": node A, {error.message}")
    assert error.position > 0 and error.message.endswith(f"at character {error.position}")


def test_a_file_that_cannot_be_loaded_raises_the_program_message(tmp_path):
    file = tmp_path / "plant.yaml"
    file.write_text("nodes:\n  - {name: A, type: intervl}\n")
    expected = program_json("generate", file)["error"]
    with pytest.raises(vel.LoadError) as raised:
        vel.load(file)
    assert (raised.value.code, raised.value.name, raised.value.message) == \
        (None, "load_error", expected["message"])
    assert str(raised.value) == expected["message"]
    with pytest.raises(vel.LoadError, match="No such file"):
        vel.load(tmp_path / "missing.yaml")


def test_refusals_of_the_library_raise_usage_and_resource_errors():
    with vel.load(WEATHER) as domain:
        with pytest.raises(vel.UsageError) as raised:
            domain.generate("Season")
        assert (raised.value.node, raised.value.message) == ("Season", "Season has no model")
        with pytest.raises(vel.UsageError):
            domain["Frost"].add_parent("Repairs")  # a directed cycle
        big = domain.add_node("Big", "numbered", states=range(70000))
        huge = domain.add_node("Huge", "numbered", states=range(70000), parents=[big])
        with pytest.raises(vel.ResourceError) as raised:
            huge.table
        assert raised.value.code == 5 and raised.value.node == "Huge" and "Huge" in raised.value.message


def test_mistakes_in_python_raise_python_errors():
    with vel.load(WEATHER) as domain:
        with pytest.raises(KeyError):
            domain["Nothing"]
        with pytest.raises(ValueError, match="one per configuration"):
            domain["Temp"].set_model(["Normal(0, 1)"], ["Season"])
        with pytest.raises(ValueError, match="names no state of Season"):
            domain.set_evidence("Season", "monsoon")
    with pytest.raises(ValueError, match="closed"):
        domain.nodes
