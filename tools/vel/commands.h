// The program's commands; each returns the exit status (0 done, 1 the
// library reported a failure, 2 usage error or a file that cannot be loaded).
#pragma once

#include <string>
#include <vector>

namespace vel::cli {

struct GenerateOptions {
  std::string file;
  std::vector<std::string> nodes;
  std::string format = "text";
  bool log_given = false;  // --log: `log` is a path, or "-" for standard error
  std::string log;
  bool no_log = false;
  bool stats = false;
  bool propagate = false;  // compile and propagate the file's evidence first
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

int run_generate(const GenerateOptions &options);
int run_check(const std::string &file);
int run_evaluate(const EvaluateOptions &options);
int run_infer(const InferOptions &options);

}  // namespace vel::cli
