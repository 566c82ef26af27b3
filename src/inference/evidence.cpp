// Evidence entered on discrete nodes: a state (hard evidence) or one
// likelihood per state.  It is kept in the node and takes effect at the next
// propagation; until then the junction tree's pending-evidence code is set,
// and what was computed from the node's results is marked outdated.
#include <cmath>
#include <cstdio>
#include <string>

#include "common/error.h"
#include "host/api_guard_internal.h"
#include "host/storage_internal.h"
#include "inference/junction_forest.h"
#include "table_generator/entries.h"

using namespace vel::host;

namespace {

int refuse(const vel_node_t *node, const char *what) {
  return guarded<int>(vel_error_out_of_memory, [&] { return usage(std::string("node ") + node->name + " " + what); });
}

void evidence_changed(vel_node_t *node) {
  if (node->domain->is_compiled) node->junction_tree->evidence_pending = 1;
  vel::host::outdate_inference_readers(node->domain, node);
  _vel_invalidate_function_children(node, vel_mode_inference);
}

std::string number_text(double x) {
  if (x >= vel_infinity) return "inf";
  if (x <= -vel_infinity) return "-inf";
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.9g", x);
  return buffer;
}

// A state as a person writes it: its label, its number, or its interval.
std::string state_text(const vel_node_t *node, int64_t state) {
  if (node->subtype == vel_subtype_numbered) return number_text(node->state_values[state]);
  if (node->subtype == vel_subtype_interval)
    return "[" + number_text(node->state_values[state]) + ";" + number_text(node->state_values[state + 1]) + ")";
  return node->state_labels[state];
}

}  // namespace

namespace vel::inference {

std::string describe_evidence(const vel_node_t *node) {
  const host::NodeStorage &storage = host::storage_of(node);
  if (storage.entered_state >= 0) return std::string(node->name) + " = " + state_text(node, storage.entered_state);
  if (storage.entered_likelihood.empty()) return "";
  std::string text = std::string(node->name) + " = likelihood (";
  for (std::size_t i = 0; i < storage.entered_likelihood.size(); ++i)
    text += (i ? ", " : "") + number_text(storage.entered_likelihood[i]);
  return text + ")";
}

}  // namespace vel::inference

extern "C" {

int vel_node_enter_evidence(vel_node_t *node, size_t state) {
  if (!node) return usage("vel_node_enter_evidence: node is NULL");
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  if (state >= node->state_count) return refuse(node, "has no such state");
  return guarded<int>(vel_error_out_of_memory, [&] {
    vel::host::NodeStorage &storage = vel::host::storage_of(node);
    storage.entered_likelihood.clear();
    storage.entered_state = static_cast<int64_t>(state);
    evidence_changed(node);
    return _vel_error_code = 0;
  });
}

int vel_node_enter_likelihood(vel_node_t *node, const double *likelihood, size_t count) {
  if (!node) return usage("vel_node_enter_likelihood: node is NULL");
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  if (count != node->state_count) return refuse(node, "needs one likelihood per state");
  if (!likelihood) return usage("vel_node_enter_likelihood: likelihood is NULL");
  bool positive = false;
  for (size_t i = 0; i < count; ++i) {
    if (!(likelihood[i] >= 0.0 && std::isfinite(likelihood[i])))
      return refuse(node, "takes finite, non-negative likelihoods only");
    positive = positive || likelihood[i] > 0.0;
  }
  if (!positive) return refuse(node, "needs a positive likelihood for some state");
  return guarded<int>(vel_error_out_of_memory, [&] {
    vel::host::NodeStorage &storage = vel::host::storage_of(node);
    storage.entered_likelihood.assign(likelihood, likelihood + count);
    storage.entered_state = -1;
    evidence_changed(node);
    return _vel_error_code = 0;
  });
}

int vel_node_retract_evidence(vel_node_t *node) {
  if (!node) return usage("vel_node_retract_evidence: node is NULL");
  if (!vel::host::is_discrete(node)) return refuse(node, "has no states");
  vel::host::NodeStorage &storage = vel::host::storage_of(node);
  if (storage.entered_state < 0 && storage.entered_likelihood.empty()) return _vel_error_code = 0;
  storage.entered_state = -1;
  storage.entered_likelihood.clear();
  evidence_changed(node);
  return _vel_error_code = 0;
}

int vel_domain_retract_evidence(vel_domain_t *domain) {
  if (!domain) return usage("vel_domain_retract_evidence: domain is NULL");
  for (vel_node_t *node = domain->first_node; node; node = node->next)
    if (vel::host::is_discrete(node)) vel_node_retract_evidence(node);
  return _vel_error_code = 0;
}

}  // extern "C"
