// Faults of the parametric distributions through the vel program: the log
// line each one writes (or none) and the error code it ends with (beside
// those the golden records hold).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "run_program.h"

namespace {

using testing::StartsWith;

struct Fault {
  const char *type;        // of the node X
  const char *states;      // YAML list; empty for a boolean node
  const char *expression;  // X's only expression
  int code;
  const char *message;     // the log line after the opening one; "" for a silent fault
};

std::string model_of(const Fault &fault) {
  std::string text = "domain: faults\nnodes:\n  - name: X\n    type: " + std::string(fault.type) + "\n";
  if (*fault.states) text += "    states: " + std::string(fault.states) + "\n";
  return text + "    model:\n      nodes: []\n      expressions: [\"" + fault.expression + "\"]\n";
}

class DistributionMessages : public testing::TestWithParam<Fault> {};

TEST_P(DistributionMessages, LogLineAndErrorCode) {
  const Fault &fault = GetParam();
  SCOPED_TRACE(fault.expression);
  const vel_test::TempDir directory;
  const std::string file = directory.write("model.yaml", model_of(fault));
  const std::string log = directory.path() + "/log.txt";
  const auto run = vel_test::run_vel({"generate", file, "--log", log, "--format", "none"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, StartsWith("vel: X: error " + std::to_string(fault.code) + " ("));
  EXPECT_EQ(vel_test::read_file(log),
            std::string("Using model for X to generate a conditional probability table\n") +
                fault.message);
}

const Fault parameter_faults[] = {
    {"interval", "[-inf, inf]", "Normal(0, 0)", 37,
     "Variance for a Normal distribution must be positive (observed: 0)\n"},
    // The variance is checked before the location is evaluated.
    {"interval", "[-inf, inf]", "LogNormal(0, -1, 1 / 0)", 37,
     "The variance parameter of a LogNormal distribution must be positive (observed: -1)\n"},
    {"interval", "[0, 1]", "Beta(0, 2)", 37,
     "Beta distribution (shape) parameters must be positive (observed: 0 and 2)\n"},
    {"interval", "[0, 1]", "Beta(2, -3, 1 / 0, 1)", 37,
     "Beta distribution (shape) parameters must be positive (observed: 2 and -3)\n"},
    {"interval", "[0, 10]", "Beta(2, 3, 5, 5)", 37,
     "Beta distribution: Interval must have positive length (observed: [5, 5])\n"},
    {"interval", "[0, inf]", "Gamma(2, -1)", 37,
     "Gamma distribution parameters must be positive (observed: shape = 2, scale = -1)\n"},
    {"interval", "[0, inf]", "Gamma(2, 1, 1 / 0)", 36, ""},
    {"interval", "[0, inf]", "Exponential(-0.5)", 37,
     "Exponential distribution parameter must be positive (observed: -0.5)\n"},
    {"interval", "[0, inf]", "Weibull(0, 1)", 37,
     "Weibull distribution parameters must be positive (observed: a = 0, b = 1)\n"},
    {"interval", "[0, 5]", "Uniform(2, 2)", 37,
     "Uniform distribution: Interval must have positive length (observed: [2, 2])\n"},
    {"interval", "[0, 5]", "Triangular(0, 2, 1)", 37,
     "Triangular distribution parameters must obey a <= m <= b and a < b "
     "(observed: a = 0, m = 2, b = 1)\n"},
    {"interval", "[0, 5]", "Triangular(1, 1, 1)", 37,
     "Triangular distribution parameters must obey a <= m <= b and a < b "
     "(observed: a = 1, m = 1, b = 1)\n"},
    {"interval", "[0, 5]", "PERT(0, 0, 1)", 37,
     "PERT parameters must obey a < m < b (observed: a = 0, m = 0, b = 1)\n"},
    {"interval", "[0, 5]", "PERT(0, 0.5, 1, 0)", 37,
     "The fourth parameter of a PERT distribution must be positive (observed: 0)\n"},
    // Parameters are checked before the node's subtype.
    {"numbered", "[0, 1]", "Normal(0, -2)", 37,
     "Variance for a Normal distribution must be positive (observed: -2)\n"},
};
INSTANTIATE_TEST_SUITE_P(Parameters, DistributionMessages, testing::ValuesIn(parameter_faults));

const Fault range_faults[] = {
    {"interval", "[1, 2, 5]", "truncate(Gamma(2, 1), 5)", 39,
     "Node X: State range must include [0, 5] for truncated Gamma distribution\n"},
    {"interval", "[0, 1, inf]", "Normal(0, 1)", 39,
     "Node X: State range must include (-inf, inf) for Normal distribution\n"},
    {"interval", "[-inf, 0, 1]", "truncate(-1, Normal(0, 1))", 39,
     "Node X: State range must include [-1, inf) for truncated Normal distribution\n"},
    {"interval", "[0.5, 1]", "Beta(2, 3)", 39,
     "Node X: State range must include [0, 1] for Beta distribution\n"},
    {"interval", "[2, 3, inf]", "LogNormal(0, 1, 1.5)", 39,
     "Node X: State range must include [1.5, inf) for LogNormal distribution\n"},
    {"interval", "[-1, 1, 2]", "truncate(Triangular(0, 1, 4), 3)", 39,
     "Node X: State range must include [0, 3] for truncated Triangular distribution\n"},
    {"numbered", "[0, 1]", "Normal(0, 1)", 34,
     "The Normal distribution can only be applied to interval nodes\n"},
    {"boolean", "", "PERT(0, 1, 2)", 34,
     "The PERT distribution can only be applied to interval nodes\n"},
};
INSTANTIATE_TEST_SUITE_P(Ranges, DistributionMessages, testing::ValuesIn(range_faults));

const Fault mass_faults[] = {
    {"interval", "[0, 1, 5]", "truncate(2, Uniform(0, 1), 3)", 34,
     "Invalid truncation of the Uniform distribution (insufficient probability mass)\n"},
    {"interval", "[0, 1, 2]", "truncate(1.5, Beta(2, 3), 1.5)", 34,
     "Invalid truncation of the Beta distribution (insufficient probability mass)\n"},
};
INSTANTIATE_TEST_SUITE_P(Masses, DistributionMessages, testing::ValuesIn(mass_faults));

const Fault discrete_faults[] = {
    {"interval", "[0, 1, inf]", "truncate(1, Poisson(2))", 34,
     "Truncation is not supported for the Poisson distribution\n"},
    {"numbered", "[0, 1, 2]", "truncate(Binomial(2, 0.5), 1)", 34,
     "Truncation is not supported for the Binomial distribution\n"},
    {"labeled", "[a, b]", "truncate(0, Geometric(0.5), 1)", 34,
     "Truncation is not supported for the Geometric distribution\n"},
    {"labeled", "[a, b]", "Poisson(1)", 34,
     "The Poisson distribution can only be applied to numbered or interval nodes\n"},
    {"boolean", "", "NegativeBinomial(2, 0.5)", 34,
     "The NegativeBinomial distribution can only be applied to numbered or interval nodes\n"},
    // Parameter and state-layout faults are silent.
    {"numbered", "[0, 1, 2]", "Binomial(3, 0.5)", 39, ""},
    {"numbered", "[0, 1, 2, 3]", "Binomial(2.5, 0.5)", 37, ""},
    {"numbered", "[0, 1, 2, 3]", "Binomial(2, 1.5)", 37, ""},
    {"numbered", "[0, 1, 2, 3]", "Poisson(-0.5)", 37, ""},
    {"numbered", "[0, 1, 2, 3]", "NegativeBinomial(0, 0.5)", 37, ""},
    {"numbered", "[0, 1, 2, 3]", "Geometric(1.5)", 37, ""},
    {"numbered", "[0, 1, 3]", "Poisson(1)", 39, ""},
    {"interval", "[1, 2, inf]", "Poisson(1)", 39, ""},
    {"interval", "[0, 1, 2.5]", "Binomial(3, 0.5)", 39, ""},
    {"interval", "[0, 1, 100]", "Geometric(0.5)", 39, ""},
    // The parameters come before the bounds.
    {"interval", "[1, 2, inf]", "Poisson(-1)", 37, ""},
};
INSTANTIATE_TEST_SUITE_P(Discrete, DistributionMessages, testing::ValuesIn(discrete_faults));

}  // namespace
