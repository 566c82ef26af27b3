// vel evaluate: the value of a real-valued function node, from inference
// results or from configured values.
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "io/json_text.h"
#include "io/table_output.h"
#include "messages.h"
#include "propagation.h"

namespace vel::cli {

namespace {

// {"node": ..., "mode": ..., "value": ..., "error": ...}
void write_json(const EvaluateOptions &options, const std::string &value, const std::string &error) {
  std::cout << "{\"node\": " << io::json_string(options.node) << ", \"mode\": "
            << io::json_string(options.mode) << ", \"value\": " << value << ", \"error\": " << error
            << "}\n";
}

}  // namespace

int run_evaluate(const EvaluateOptions &options) {
  const bool json = options.format == "json";
  std::string load_message;
  std::optional<io::LoadedModel> model = load_or_report(options.file, &load_message);
  if (!model) {
    if (json) write_json(options, "null", io::json_load_error(load_message));
    return 2;
  }
  vel_node_t *node = vel_domain_get_node_by_name(model->domain.get(), options.node.c_str());
  if (!node) {
    report_unknown_node(options.file, options.node);
    return 2;
  }
  if (options.propagate && model->inference_block) {
    report_propagate_refused(options.file);
    return 2;
  }
  if (options.propagate) {
    if (const int code = compile_and_propagate(*model, {})) {
      const io::GenerationError failure{code, failure_subject(*model), inference_failure(code)};
      if (json) write_json(options, "null", io::json_error(failure));
      std::cout.flush();
      report_library_failure(failure.node, code, failure.message);
      return 1;
    }
  }

  const int mode = options.mode == "configured" ? vel_mode_configured : vel_mode_inference;
  double value = 0.0;
  const int code = vel_node_compute_value(node, mode, &value);
  const io::GenerationError failure{
      code, options.node,
      code ? with_results_hint(vel_error_message(), code, options.propagate, *model) : ""};
  if (json) write_json(options, code ? "null" : io::json_number(value), code ? io::json_error(failure) : "null");
  else if (code == 0) std::cout << io::shortest_text(value) << '\n';
  std::cout.flush();
  if (code != 0) {
    report_library_failure(options.node, code, failure.message);
    return 1;
  }
  return 0;
}

}  // namespace vel::cli
