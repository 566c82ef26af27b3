// vel check: every model run through the library as generation would run it,
// into scratch storage, with each failure reported at the item of the file it
// concerns; then the warnings.
#include <cstdio>
#include <memory>
#include <set>
#include <string>

#include "check_findings.h"
#include "commands.h"
#include "messages.h"

namespace vel::cli {

namespace {

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

bool is_real_function_node(const vel_node_t *node) {
  return vel_node_get_category(node) == vel_category_function && vel_node_get_kind(node) < 0;
}

struct CheckContext {
  const io::LoadedModel *model;
  Findings *findings;
  vel_node_t *owner;
  bool reported = false;
};

// A problem that the library's check hands over, with its sentence in
// vel_error_message().
void report(void *context, int kind, vel_node_t *node, std::size_t index) {
  CheckContext &check = *static_cast<CheckContext *>(context);
  check.reported = true;
  const io::LoadedModel &model = *check.model;
  io::Position at;
  switch (kind) {
    case vel_check_state_values: at = item_position(model, node, &io::NodeSource::states); break;
    case vel_check_unspecified_model: at = item_position(model, node, &io::NodeSource::model); break;
    default: at = expression_position(model, node, static_cast<long>(index));
  }
  check.findings->error(at, vel_node_get_name(node), vel_error_message());
}

// Entries of the node's table: its discrete parents' states, then its own.
double table_entries(vel_node_t *node) {
  double entries = vel_node_get_kind(node) == vel_kind_discrete
                       ? static_cast<double>(vel_node_get_number_of_states(node))
                       : 1.0;
  for (vel_node_t *const *parent = vel_node_get_parents(node); *parent; ++parent)
    if (vel_node_get_kind(*parent) == vel_kind_discrete)
      entries *= static_cast<double>(vel_node_get_number_of_states(*parent));
  return entries;
}

std::string count_text(double count) {
  char text[64];
  std::snprintf(text, sizeof text, "%.0f", count);
  return text;
}

void check_node(const io::LoadedModel &model, vel_node_t *node, const CheckOptions &options,
                Findings &findings) {
  const std::string name = vel_node_get_name(node);
  const double entries = table_entries(node);
  if (!is_real_function_node(node) && entries > options.max_entries) {
    findings.error(item_position(model, node, &io::NodeSource::model), name,
                   "the table would have " + count_text(entries) + " entries (" +
                       count_text(entries * sizeof(float)) + " bytes), more than --max-entries " +
                       count_text(options.max_entries) + "; not generated");
    return;
  }
  CheckContext context{&model, &findings, node};
  if (vel_node_check_model(node, &report, &context) != 0) {
    if (!context.reported)
      findings.error(item_position(model, node, &io::NodeSource::model), name, vel_error_message());
    return;
  }
  // A real-valued function node has no table; its value is computed on demand.
  if (is_real_function_node(node) || vel_node_try_generate_table(node) == 0) return;
  findings.error(expression_position(model, node, vel_error_expression_index()), name,
                 vel_error_message());
}

}  // namespace

int run_check(const CheckOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
  vel_domain_t *domain = model->domain.get();
  // The generator explains a failure through its log; nobody reads this one.
  std::unique_ptr<std::FILE, FileCloser> sink(std::fopen("/dev/null", "w"));
  vel_domain_set_log_file(domain, sink.get());

  Findings findings;
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node))
    if (vel_node_get_model(node)) check_node(*model, node, options, findings);
  vel_domain_set_log_file(domain, nullptr);
  find_warnings(*model, findings);

  findings.print(options.file);
  if (findings.has_errors()) return 1;
  return options.strict && !findings.empty() ? 1 : 0;
}

}  // namespace vel::cli
