// Compiling and propagating a model file's domain for the commands that
// need results of inference: vel infer, and vel generate and vel evaluate
// with --propagate.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "io/model_file.h"

namespace vel::cli {

// A change of the file's evidence from the command line: NODE=STATE enters
// a state, NODE= retracts the node's evidence (state -1).
struct EvidenceChange {
  vel_node_t *node;
  long long state;
};

// Reads --evidence arguments; on a usage error reports it and returns nothing.
std::optional<std::vector<EvidenceChange>> read_evidence_changes(const io::LoadedModel &model,
                                                                 const std::vector<std::string> &arguments);

// Enters the file's evidence and compiles the domain, which propagates it;
// then retracts the evidence of each changed node, enters the new state and
// propagates again.  Returns 0 or the library's code.
int compile_and_propagate(io::LoadedModel &model, const std::vector<EvidenceChange> &changes);

// The node that stopped compilation or propagation, else the domain's name.
std::string failure_subject(const io::LoadedModel &model);
// The library's text of a failed compilation or propagation, or the code's
// description without one.
std::string inference_failure(int code);
// --propagate together with an inference block (exit status 2).
void report_propagate_refused(const std::string &file);
// The message of a failure, and after a failure for want of results (17) in
// a domain that neither was propagated nor states results, how to get them.
std::string with_results_hint(const std::string &message, int code, bool propagated,
                              const io::LoadedModel &model);

}  // namespace vel::cli
