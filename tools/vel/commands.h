// The program's commands; each returns the exit status (0 done, 1 the
// library reported a failure, 2 usage error or a file that cannot be loaded).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vel/vel.h"

namespace vel::cli {

// Every node with a model that has a table (not a real-valued function
// node), in domain order: what `generate` and `export` generate.
std::vector<vel_node_t *> nodes_with_models(vel_domain_t *domain);

struct GenerateOptions {
  std::string file;
  std::vector<std::string> nodes;
  bool all = false;        // literal tables too
  std::string format = "text";
  std::string output_dir;  // csv: one file per table
  bool log_given = false;  // --log: `log` is a path, or "-" for standard error
  std::string log;
  bool no_log = false;
  bool stats = false;
  bool propagate = false;  // compile and propagate the file's evidence first
};

struct CheckOptions {
  std::string file;
  bool strict = false;
  double max_entries = 1e8;
};

struct EvaluateOptions {
  std::string file;
  std::string node;
  std::string mode = "inference";
  std::string format = "text";
  bool propagate = false;
};

struct InferOptions {
  std::string file;
  std::vector<std::string> evidence;  // NODE=STATE, or NODE= to retract the file's
  bool max = false;
  std::string format = "text";
};

struct ExportOptions {
  std::string file;
  std::string format;  // bif, xmlbif or uai
  std::string output;  // empty: standard output
  bool chance_only = false;
};

int run_generate(const GenerateOptions &options);
int run_check(const CheckOptions &options);
int run_evaluate(const EvaluateOptions &options);
int run_export(const ExportOptions &options);
int run_infer(const InferOptions &options);

}  // namespace vel::cli
