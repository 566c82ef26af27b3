// vel generate: the tables of the selected nodes, one node at a time, in
// order, stopping at the first failure.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>

#include "commands.h"
#include "io/table_output.h"
#include "log_view.h"
#include "messages.h"
#include "propagation.h"

namespace vel::cli {

namespace {

constexpr std::size_t shown_log_lines = 20;

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

bool is_real_function_node(const vel_node_t *node) {
  return vel_node_get_category(node) == vel_category_function && vel_node_get_kind(node) < 0;
}

// The nodes to generate: the named ones in the order given (each once), or
// every node with a model that has a table, in file order.  Nothing when a
// name is unknown.
std::optional<std::vector<vel_node_t *>> select_nodes(const GenerateOptions &options, vel_domain_t *domain) {
  std::vector<vel_node_t *> nodes;
  if (options.nodes.empty()) {
    for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node))
      if (vel_node_get_model(node) && !is_real_function_node(node)) nodes.push_back(node);
    return nodes;
  }
  for (const std::string &name : options.nodes) {
    vel_node_t *node = vel_domain_get_node_by_name(domain, name.c_str());
    if (!node) {
      report_unknown_node(options.file, name);
      return std::nullopt;
    }
    if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) nodes.push_back(node);
  }
  return nodes;
}

void write_table(const std::string &format, vel_node_t *node, bool first) {
  if (!first) std::cout << '\n';
  if (format == "text") io::write_table_text(std::cout, node);
  else io::write_table_csv(std::cout, node);
  std::cout.flush();
}

}  // namespace

int run_generate(const GenerateOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
  vel_domain_t *domain = model->domain.get();
  const std::optional<std::vector<vel_node_t *>> nodes = select_nodes(options, domain);
  if (!nodes) return 2;
  if (options.propagate && model->inference_block) {
    report_propagate_refused(options.file);
    return 2;
  }

  // The log: a file of the user's, all of it on standard error, none, or the
  // default view of its first lines.
  std::unique_ptr<std::FILE, FileCloser> log_file;
  std::optional<LogView> view;
  const bool to_stderr = options.log_given && options.log == "-";
  if (!options.no_log && options.log_given && !to_stderr) {
    log_file.reset(std::fopen(options.log.c_str(), "w"));
    if (!log_file) {
      std::fprintf(stderr, "vel: cannot open log file '%s': %s\n", options.log.c_str(), std::strerror(errno));
      return 2;
    }
  } else if (!options.no_log) {
    view.emplace(stderr, to_stderr ? LogView::all_lines : shown_log_lines);
  }
  std::FILE *log = log_file ? log_file.get() : view ? view->stream() : nullptr;
  vel_domain_set_log_file(domain, log);
  auto end_log_line = [&] {
    if (view) view->end_line();
  };

  std::vector<vel_node_t *> generated;
  std::optional<io::GenerationError> failure;
  bool propagation_failed = false;
  if (options.propagate) {
    if (const int code = compile_and_propagate(*model, {})) {
      failure = io::GenerationError{code, failure_subject(*model)};
      propagation_failed = true;
    }
  }
  const bool tables_as_text = options.format == "text" || options.format == "csv";
  for (vel_node_t *node : propagation_failed ? std::vector<vel_node_t *>{} : *nodes) {
    const auto start = std::chrono::steady_clock::now();
    const int code = vel_node_generate_table(node);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    if (code != 0) {
      failure = io::GenerationError{code, vel_node_get_name(node)};
      break;
    }
    if (options.stats) {
      end_log_line();
      std::fprintf(stderr, "%s: %zu entries, %.3f ms\n", vel_node_get_name(node),
                   vel_table_get_size(vel_node_get_table(node)), took.count());
    }
    if (tables_as_text) write_table(options.format, node, generated.empty());
    generated.push_back(node);
  }

  vel_domain_set_log_file(domain, nullptr);
  end_log_line();
  if (view && view->hidden_lines() > 0)
    std::fprintf(stderr, "\xE2\x80\xA6 %zu more log lines; use --log FILE to keep them all\n", view->hidden_lines());
  if (options.format == "json")
    io::write_json_document(std::cout, model->name, generated, failure ? &*failure : nullptr);
  std::cout.flush();
  if (propagation_failed) {
    report_inference_failure(failure->node, failure->code);
    return 1;
  }
  if (failure) {
    report_library_failure(failure->node, failure->code);
    report_results_hint(failure->code, options.propagate, *model);
    return 1;
  }
  return 0;
}

}  // namespace vel::cli
