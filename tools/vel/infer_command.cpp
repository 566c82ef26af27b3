// vel infer: compile, propagate the evidence, and print every discrete
// node's beliefs, every utility node's expected utility and the probability
// of the evidence; with --max the max-marginals and the most probable
// configuration.
#include <cstdio>
#include <iostream>
#include <map>
#include <sstream>

#include "commands.h"
#include "io/json_text.h"
#include "io/table_output.h"
#include "messages.h"
#include "propagation.h"

namespace vel::cli {

namespace {

using io::json_string;

// The evidence after the command line's changes: per node, its text (a
// state's, or a likelihood list's numbers).
struct ShownEvidence {
  std::string state;                // empty for a likelihood
  std::vector<double> likelihood;
};

std::map<const vel_node_t *, ShownEvidence> final_evidence(const io::LoadedModel &model,
                                                           const std::vector<EvidenceChange> &changes) {
  std::map<const vel_node_t *, ShownEvidence> shown;
  for (const io::FileEvidence &e : model.evidence)
    shown[e.node] = e.likelihood.empty() ? ShownEvidence{io::state_text(e.node, e.state), {}} : ShownEvidence{"", e.likelihood};
  for (const EvidenceChange &c : changes) {
    shown.erase(c.node);
    if (c.state >= 0) shown[c.node] = {io::state_text(c.node, c.state), {}};
  }
  return shown;
}

struct Results {
  double probability_of_evidence = 0.0;
  std::vector<std::pair<vel_node_t *, std::vector<float>>> beliefs;  // discrete nodes, file order
  std::vector<std::pair<vel_node_t *, float>> utilities;
  std::vector<long long> configuration;  // --max: per discrete node
  double probability_of_configuration = 0.0;
};

int read_results(vel_domain_t *domain, bool max, Results &results) {
  results.probability_of_evidence = vel_domain_get_probability_of_evidence(domain);
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node))
    if (vel_node_get_category(node) == vel_category_utility)
      results.utilities.emplace_back(node, vel_node_get_expected_utility(node, 0));
  if (max && vel_domain_propagate(domain, vel_equilibrium_max) != 0) return vel_error_code();
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    if (vel_node_get_kind(node) != vel_kind_discrete) continue;
    std::vector<float> beliefs;
    for (std::size_t s = 0; s < vel_node_get_number_of_states(node); ++s)
      beliefs.push_back(static_cast<float>(vel_node_get_belief(node, s)));
    results.beliefs.emplace_back(node, std::move(beliefs));
    if (max) results.configuration.push_back(vel_node_get_most_probable_state(node));
  }
  if (max) results.probability_of_configuration = vel_domain_get_probability_of_configuration(domain);
  return 0;
}

std::string evidence_json(const std::map<const vel_node_t *, ShownEvidence> &evidence, vel_domain_t *domain) {
  std::string text = "{";
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    const auto found = evidence.find(node);
    if (found == evidence.end()) continue;
    text += (text.size() > 1 ? ", " : "") + json_string(vel_node_get_name(node)) + ": ";
    if (found->second.likelihood.empty()) {
      text += json_string(found->second.state);
      continue;
    }
    text += "{\"likelihood\": [";
    for (std::size_t i = 0; i < found->second.likelihood.size(); ++i)
      text += (i ? ", " : "") + io::json_number(found->second.likelihood[i]);
    text += "]}";
  }
  return text + "}";
}

void write_json(const io::LoadedModel &model, const std::string &evidence, const Results *results, bool max,
                int code, const std::string &subject) {
  std::ostringstream out;
  out << "{\"domain\": " << json_string(model.name) << ", \"evidence\": " << evidence << ",\n \"probability_of_evidence\": "
      << (results ? io::json_number(results->probability_of_evidence) : "null") << ",\n \"beliefs\": [";
  for (std::size_t i = 0; results && i < results->beliefs.size(); ++i) {
    const auto &[node, beliefs] = results->beliefs[i];
    out << (i ? ",\n   " : "\n   ") << "{\"node\": " << json_string(vel_node_get_name(node)) << ", \"states\": [";
    for (std::size_t s = 0; s < beliefs.size(); ++s) out << (s ? ", " : "") << json_string(io::state_text(node, s));
    out << "], \"probabilities\": [";
    for (std::size_t s = 0; s < beliefs.size(); ++s) out << (s ? ", " : "") << io::json_number(beliefs[s]);
    out << "]}";
  }
  out << "],\n \"expected_utilities\": [";
  for (std::size_t i = 0; results && i < results->utilities.size(); ++i)
    out << (i ? ", " : "") << "{\"node\": " << json_string(vel_node_get_name(results->utilities[i].first))
        << ", \"value\": " << io::json_number(results->utilities[i].second) << "}";
  out << "],";
  if (max && results) {
    out << "\n \"configuration\": {";
    for (std::size_t i = 0; i < results->beliefs.size(); ++i) {
      vel_node_t *node = results->beliefs[i].first;
      out << (i ? ", " : "") << json_string(vel_node_get_name(node)) << ": "
          << json_string(io::state_text(node, results->configuration[i]));
    }
    out << "},\n \"probability_of_configuration\": " << io::json_number(results->probability_of_configuration) << ",";
  }
  out << " \"error\": ";
  out << (code ? io::json_error({code, subject, inference_failure(code)}) : "null");
  std::cout << out.str() << "}\n";
}

void write_text(vel_domain_t *domain, const Results &results, bool max) {
  std::ostringstream out;
  out << "probability of the evidence: " << io::shortest_text(results.probability_of_evidence) << '\n';
  if (max) out << "probability of the most probable configuration: " << io::shortest_text(results.probability_of_configuration) << '\n';
  for (std::size_t i = 0; i < results.beliefs.size(); ++i) {
    const auto &[node, beliefs] = results.beliefs[i];
    out << vel_node_get_name(node) << ':';
    for (std::size_t s = 0; s < beliefs.size(); ++s) {
      const bool chosen = max && results.configuration[i] == static_cast<long long>(s);
      out << "  " << (chosen ? "[" : "") << io::state_text(node, s) << ' ' << io::shortest_text(beliefs[s]) << (chosen ? "]" : "");
    }
    out << '\n';
  }
  for (const auto &[node, value] : results.utilities)
    out << vel_node_get_name(node) << ": expected utility " << io::shortest_text(value) << '\n';
  out << "clique tables: " << vel_domain_get_clique_table_size(domain) << " entries\n";
  std::cout << out.str();
}

}  // namespace

int run_infer(const InferOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
  const std::optional<std::vector<EvidenceChange>> changes = read_evidence_changes(*model, options.evidence);
  if (!changes) return 2;
  if (model->inference_block)
    std::fprintf(stderr, "vel: %s: note: the inference block is ignored; infer computes the results\n", options.file.c_str());

  vel_domain_t *domain = model->domain.get();
  Results results;
  int code = compile_and_propagate(*model, *changes);
  if (code == 0) code = read_results(domain, options.max, results);
  const std::string subject = code ? failure_subject(*model) : "";
  if (options.format == "json")
    write_json(*model, evidence_json(final_evidence(*model, *changes), domain), code ? nullptr : &results, options.max,
               code, subject);
  else if (code == 0)
    write_text(domain, results, options.max);
  std::cout.flush();
  if (code == 0) return 0;
  report_library_failure(subject, code, inference_failure(code));
  return 1;
}

}  // namespace vel::cli
