// vel evaluate: the value of a real-valued function node, from inference
// results or from configured values.
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "io/table_output.h"
#include "messages.h"

namespace vel::cli {

int run_evaluate(const EvaluateOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
  vel_node_t *node = vel_domain_get_node_by_name(model->domain.get(), options.node.c_str());
  if (!node) {
    report_unknown_node(options.file, options.node);
    return 2;
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
    return 1;
  }
  return 0;
}

}  // namespace vel::cli
