// vel evaluate: the value of a real-valued function node, from inference
// results or from configured values.
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "io/table_output.h"
#include "messages.h"
#include "propagation.h"

namespace vel::cli {

int run_evaluate(const EvaluateOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
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
      const std::string subject = failure_subject(*model);
      if (options.format == "json")
        std::cout << "{\"node\": \"" << options.node << "\", \"mode\": \"" << options.mode
                  << "\", \"value\": null, \"error\": " << io::json_error({code, subject}) << "}\n";
      std::cout.flush();
      report_inference_failure(subject, code);
      return 1;
    }
  }

  const int mode = options.mode == "configured" ? vel_mode_configured : vel_mode_inference;
  double value = 0.0;
  const int code = vel_node_compute_value(node, mode, &value);

  if (options.format == "json") {
    std::cout << "{\"node\": \"" << options.node << "\", \"mode\": \"" << options.mode << "\", \"value\": "
              << (code ? "null" : io::json_number(value)) << ", \"error\": "
              << (code ? io::json_error({code, options.node}) : "null") << "}\n";
  } else if (code == 0) {
    std::cout << io::shortest_text(value) << '\n';
  }
  std::cout.flush();
  if (code != 0) {
    report_library_failure(options.node, code);
    report_results_hint(code, options.propagate, *model);
    return 1;
  }
  return 0;
}

}  // namespace vel::cli
