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
// "vel: SUBJECT: error CODE (NAME): MESSAGE", the message being the
// library's text of the failure, or the code's description without one.
void report_inference_failure(const std::string &subject, int code);
// --propagate together with an inference block (exit status 2).
void report_propagate_refused(const std::string &file);
// After a failure for want of results (17) in a domain that neither was
// propagated nor states results: how to get them.
void report_results_hint(int code, bool propagated, const io::LoadedModel &model);

}  // namespace vel::cli
