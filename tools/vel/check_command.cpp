// vel check: the checks that precede generation, for every node with a model,
// without generating anything.
#include <cstdio>
#include <set>
#include <string>

#include "commands.h"
#include "messages.h"

namespace vel::cli {

namespace {

struct CheckContext {
  const std::string *file;
  bool reported = false;
  std::set<vel_node_t *> *state_value_nodes;  // reported once however many models read them
};

void report(void *context, int kind, vel_node_t *node, std::size_t index) {
  CheckContext &check = *static_cast<CheckContext *>(context);
  check.reported = true;
  const char *file = check.file->c_str();
  const char *name = vel_node_get_name(node);
  switch (kind) {
    case vel_check_missing_expression:
      std::fprintf(stderr, "%s: node %s: expression at index %zu is missing\n", file, name, index);
      break;
    case vel_check_invalid_expression:
      std::fprintf(stderr, "%s: node %s: expression at index %zu does not fit the node\n", file, name, index);
      break;
    case vel_check_state_values:
      // The generator's own message for the verdict, after the file name.
      if (check.state_value_nodes->insert(node).second)
        std::fprintf(stderr, "%s: The state values of node %s %s.\n", file, name,
                     index == 1 ? "do not form an increasing sequence" : "use infinite values incorrectly");
      break;
    default:
      std::fprintf(stderr, "%s: node %s: problem %d at index %zu\n", file, name, kind, index);
  }
}

}  // namespace

int run_check(const std::string &file) {
  std::optional<io::LoadedModel> model = load_or_report(file);
  if (!model) return 2;
  std::set<vel_node_t *> state_value_nodes;
  bool problems = false;
  for (vel_node_t *node = vel_domain_get_first_node(model->domain.get()); node; node = vel_node_get_next(node)) {
    if (!vel_node_get_model(node)) continue;
    CheckContext context{&file, false, &state_value_nodes};
    const int code = vel_node_check_model(node, &report, &context);
    if (code == 0) continue;
    problems = true;
    if (!context.reported) report_library_failure(vel_node_get_name(node), code);
  }
  return problems ? 1 : 0;
}

}  // namespace vel::cli
