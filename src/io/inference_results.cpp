// Last stage of loading: what inference has produced (the junction tree's
// state, beliefs, evidence, means, variances, expected utilities) and the
// configured values of nodes.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "io/loader_parts.h"

namespace vel::io::detail {

namespace {

int read_code(const Source &source, const Entry &entry, const char *first, int first_code,
              const char *second, int second_code, const char *third, int third_code) {
  const std::string text = read_text(source, entry, "'" + entry.key.Scalar() + "'");
  if (text == first) return first_code;
  if (text == second) return second_code;
  if (third && text == third) return third_code;
  source.fail(entry.value_mark(), "unknown " + entry.key.Scalar() + " '" + text + "'");
}

double read_finite(const Source &source, const Entry &entry) {
  const YAML::Node &at = entry.value.IsNull() ? entry.key : entry.value;
  const double value = read_number(source, at, "'" + entry.key.Scalar() + "'");
  if (!std::isfinite(value) || std::fabs(value) >= vel_infinity)
    source.fail(at, "'" + entry.key.Scalar() + "' must be a finite number");
  return value;
}

// Expected utilities and their variances are kept in single precision.
double read_utility_result(const Source &source, const Entry &entry) {
  const double value = read_finite(source, entry);
  if (std::fabs(value) > std::numeric_limits<float>::max())
    source.fail(entry.value, "'" + entry.key.Scalar() + "' must be a number in single-precision range");
  return value;
}

double read_variance(const Source &source, const Entry &entry, bool utility) {
  const double value = utility ? read_utility_result(source, entry) : read_finite(source, entry);
  if (value < 0.0) source.fail(entry.value, "'variance' must not be negative");
  return value;
}

bool in_interval(double x, double lo, double hi) {
  const bool above_lo = lo <= -vel_infinity || x >= lo;
  const bool below_hi = hi >= vel_infinity || x < hi;
  return above_lo && below_hi;
}

[[noreturn]] void library_failure(const Source &source, const Entry &entry, const std::string &what) {
  source.fail(entry.key, what + ": " + library_reason());
}

void set_beliefs(const Source &source, const NodeDecl &decl, const Entry &entry) {
  require_sequence(source, entry, "'beliefs'");
  const std::size_t states = vel_node_get_number_of_states(decl.node);
  const std::size_t count = entry.value.size();
  if (count != states)
    source.fail(entry.key, "'beliefs' of '" + decl.name + "' needs " + std::to_string(states) +
                               " entries, one per state; found " + std::to_string(count));
  charge_list(source, entry.value);
  std::vector<double> beliefs;
  for (const YAML::Node &item : entry.value) {
    const double belief = read_number(source, item, "a belief");
    if (!(belief >= 0.0)) source.fail(item, "a belief must be a non-negative number");
    if (belief > std::numeric_limits<float>::max())
      source.fail(item, "a belief must be a number in single-precision range");
    beliefs.push_back(belief);
  }
  if (vel_node_set_beliefs(decl.node, beliefs.data(), count) != 0)
    library_failure(source, entry, "cannot set the beliefs of '" + decl.name + "'");
}

}  // namespace

long long read_state(const Source &source, const NodeDecl &decl, const Entry &entry) {
  const long long state = entry.value.IsScalar() ? find_named_state(decl.node, entry.value) : -1;
  if (state < 0) {
    const std::string text = entry.value.IsScalar() ? " '" + entry.value.Scalar() + "'" : "";
    source.fail(entry.value_mark(), "'" + entry.key.Scalar() + "'" + text + " names no state of '" +
                                        decl.name + "'");
  }
  return state;
}

namespace {

void set_discrete_results(const Source &source, const NodeDecl &decl, bool stated,
                          std::vector<FileEvidence> &evidence) {
  const Entry beliefs = find(decl.map, "beliefs");
  if (beliefs.present()) set_beliefs(source, decl, beliefs);
  if (const Entry entry = find(decl.map, "evidence"); entry.present())
    read_evidence(source, decl, entry, stated, evidence);
  const Entry configured = find(decl.map, "configured");
  if (configured.present() &&
      vel_node_set_configured_state(decl.node, read_state(source, decl, configured)) != 0)
    library_failure(source, configured, "cannot set the configured state of '" + decl.name + "'");
}

// Refuses results that the node cannot have, before anything is set.
void check_applicable(const Source &source, const NodeDecl &decl) {
  const int kind = vel_node_get_kind(decl.node);
  const bool utility = vel_node_get_category(decl.node) == vel_category_utility;
  struct Rule {
    const char *key;
    bool applies;
    const char *nodes;
  };
  const Rule rules[] = {
      {"beliefs", kind == vel_kind_discrete, "discrete nodes"},
      {"evidence", kind == vel_kind_discrete, "discrete nodes"},
      {"mean", kind > 0, "continuous nodes"},
      {"variance", kind > 0 || utility, "continuous and utility nodes"},
      {"expected_utility", utility, "utility nodes"},
  };
  for (const Rule &rule : rules)
    if (const Entry e = find(decl.map, rule.key); e.present() && !rule.applies)
      source.fail(e.key, std::string("'") + rule.key + "' applies to " + rule.nodes + " only");
}

void set_numeric_results(const Source &source, const NodeDecl &decl) {
  const int kind = vel_node_get_kind(decl.node);
  const bool utility = vel_node_get_category(decl.node) == vel_category_utility;
  const Entry mean = find(decl.map, "mean");
  const Entry variance = find(decl.map, "variance");
  const Entry expected = find(decl.map, "expected_utility");

  const double variance_value = variance.present() ? read_variance(source, variance, utility) : 0.0;
  if (mean.present() || (variance.present() && kind > 0)) {
    const double mean_value = mean.present() ? read_finite(source, mean) : 0.0;
    if (vel_node_set_mean_and_variance(decl.node, mean_value, variance_value) != 0)
      library_failure(source, mean.present() ? mean : variance,
                      "cannot set the mean and variance of '" + decl.name + "'");
  }
  if (expected.present() || (variance.present() && utility)) {
    const double expected_value = expected.present() ? read_utility_result(source, expected) : 0.0;
    if (vel_node_set_expected_utility(decl.node, expected_value, variance_value) != 0)
      library_failure(source, expected.present() ? expected : variance,
                      "cannot set the expected utility of '" + decl.name + "'");
  }
  const Entry configured = find(decl.map, "configured");
  if (configured.present() && vel_node_set_configured_value(decl.node, read_finite(source, configured)) != 0)
    library_failure(source, configured, "cannot set the configured value of '" + decl.name + "'");
}

}  // namespace

long long find_named_state(vel_node_t *node, const YAML::Node &value) {
  const std::size_t count = vel_node_get_number_of_states(node);
  if (!value.IsScalar() || count == static_cast<std::size_t>(-1)) return -1;
  const std::string &text = value.Scalar();
  const int subtype = vel_node_get_subtype(node);
  if (subtype == vel_subtype_labeled || subtype == vel_subtype_boolean) {
    for (std::size_t i = 0; i < count; ++i) {
      const char *label = vel_node_get_state_label(node, i);
      if (label && text == label) return static_cast<long long>(i);
    }
    return -1;
  }
  double x = 0.0;
  if (!parse_number(text, x) || std::isnan(x)) return -1;
  for (std::size_t i = 0; i < count; ++i) {
    if (subtype == vel_subtype_numbered && vel_node_get_state_value(node, i) == x)
      return static_cast<long long>(i);
    if (subtype == vel_subtype_interval &&
        in_interval(x, vel_node_get_state_value(node, i), vel_node_get_state_value(node, i + 1)))
      return static_cast<long long>(i);
  }
  return -1;
}

void set_inference_state(const Source &source, const Entry &inference, vel_domain_t *domain) {
  bool compiled = true;
  int equilibrium = vel_equilibrium_sum;
  int evidence_mode = vel_evidence_mode_normal;
  bool pending = false;
  if (!inference.value.IsNull()) {
    check_mapping(source, inference.value, {"compiled", "equilibrium", "evidence_mode", "evidence_pending"},
                  "'inference'");
    if (const Entry e = find(inference.value, "compiled"); e.present()) compiled = read_truth(source, e);
    if (const Entry e = find(inference.value, "equilibrium"); e.present())
      equilibrium = read_code(source, e, "none", vel_equilibrium_none, "sum", vel_equilibrium_sum, "max",
                              vel_equilibrium_max);
    if (const Entry e = find(inference.value, "evidence_mode"); e.present())
      evidence_mode = read_code(source, e, "normal", vel_evidence_mode_normal, "fast",
                                vel_evidence_mode_fast, nullptr, 0);
    if (const Entry e = find(inference.value, "evidence_pending"); e.present()) pending = read_truth(source, e);
  }
  if (vel_domain_set_compiled(domain, compiled ? 1 : 0) != 0)
    library_failure(source, inference, "cannot mark the domain compiled");
  if (vel_junction_tree_t *tree = vel_domain_get_junction_tree(domain))
    if (vel_jt_set_state(tree, equilibrium, evidence_mode, pending ? 1 : 0) != 0)
      library_failure(source, inference, "cannot set the junction tree's state");
}

void set_node_results(const Source &source, const std::vector<NodeDecl> &decls, bool stated,
                      std::vector<FileEvidence> &evidence) {
  for (const NodeDecl &decl : decls) {
    check_applicable(source, decl);
    if (vel_node_get_kind(decl.node) == vel_kind_discrete)
      set_discrete_results(source, decl, stated, evidence);
    else
      set_numeric_results(source, decl);
  }
}

}  // namespace vel::io::detail
