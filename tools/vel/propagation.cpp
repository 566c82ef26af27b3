#include "propagation.h"

#include <cstdio>

namespace vel::cli {

std::optional<std::vector<EvidenceChange>> read_evidence_changes(const io::LoadedModel &model,
                                                                 const std::vector<std::string> &arguments) {
  std::vector<EvidenceChange> changes;
  for (const std::string &argument : arguments) {
    const std::size_t equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    vel_node_t *node = vel_domain_get_node_by_name(model.domain.get(), name.c_str());
    const char *problem = equals == std::string::npos ? "is not NODE=STATE"
                          : !node                      ? "names no node of the file"
                          : vel_node_get_kind(node) != vel_kind_discrete ? "names a node without states"
                                                                         : nullptr;
    long long state = -1;
    if (!problem && equals + 1 < argument.size()) {
      state = io::state_named(node, argument.substr(equals + 1));
      if (state < 0) problem = "names no state of the node";
    }
    if (problem) {
      std::fprintf(stderr, "vel: --evidence %s: %s\n", argument.c_str(), problem);
      return std::nullopt;
    }
    changes.push_back({node, state});
  }
  return changes;
}

int compile_and_propagate(io::LoadedModel &model, const std::vector<EvidenceChange> &changes) {
  vel_domain_t *domain = model.domain.get();
  for (const io::FileEvidence &evidence : model.evidence) {
    const int code = evidence.likelihood.empty()
                         ? vel_node_enter_evidence(evidence.node, static_cast<std::size_t>(evidence.state))
                         : vel_node_enter_likelihood(evidence.node, evidence.likelihood.data(), evidence.likelihood.size());
    if (code) return code;
  }
  const int code = vel_domain_compile(domain);
  if (changes.empty()) return code;
  for (const EvidenceChange &change : changes) {
    vel_node_retract_evidence(change.node);
    if (change.state >= 0 && vel_node_enter_evidence(change.node, static_cast<std::size_t>(change.state)) != 0)
      return vel_error_code();
  }
  // The file's evidence alone may be impossible where the changes make it possible.
  if (code == vel_error_impossible_evidence) return vel_domain_compile(domain);
  return code ? code : vel_domain_propagate(domain, vel_equilibrium_sum);
}

std::string failure_subject(const io::LoadedModel &model) {
  const vel_node_t *node = vel_domain_get_failed_node(model.domain.get());
  return node ? vel_node_get_name(node) : model.name;
}

std::string inference_failure(int code) {
  const std::string message = vel_error_message();
  return message.empty() ? vel_error_description(code) : message;
}

void report_propagate_refused(const std::string &file) {
  std::fprintf(stderr, "vel: %s: --propagate cannot be used with an inference block, which states the results\n",
               file.c_str());
}

std::string with_results_hint(const std::string &message, int code, bool propagated,
                              const io::LoadedModel &model) {
  if (code != vel_error_not_compiled || propagated || model.inference_block) return message;
  return message + "; use --propagate, or state results in an inference block";
}

}  // namespace vel::cli
