// vel generate: the tables of the selected nodes, one node at a time, in
// order, stopping at the first failure.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <unordered_set>

#include "commands.h"
#include "io/json_text.h"
#include "io/table_output.h"
#include "log_view.h"
#include "messages.h"
#include "progress.h"
#include "propagation.h"

namespace vel::cli {

namespace {

constexpr std::size_t shown_log_lines = 20;

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

bool has_literal_table(const io::LoadedModel &model, const vel_node_t *node) {
  const auto found = model.sources.find(node);
  return found != model.sources.end() && found->second.table.line != 0;
}

// The nodes to show: the named ones in the order given (each once), or every
// node with a model that has a table, in file order (with --all, the nodes
// with a literal table among them).  Nothing when a name is unknown.
std::optional<std::vector<vel_node_t *>> select_nodes(const GenerateOptions &options,
                                                      const io::LoadedModel &model) {
  vel_domain_t *domain = model.domain.get();
  if (options.nodes.empty() && !options.all) return nodes_with_models(domain);
  std::vector<vel_node_t *> nodes;
  if (options.nodes.empty()) {
    const std::vector<vel_node_t *> generated = nodes_with_models(domain);
    const std::unordered_set<vel_node_t *> with_model(generated.begin(), generated.end());
    for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node))
      if (with_model.count(node) || has_literal_table(model, node)) nodes.push_back(node);
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

// Where the tables go: standard output, or one CSV file per table.
class TableWriter {
 public:
  explicit TableWriter(const GenerateOptions &options) : options_(options) {}

  // False (with the reason on standard error) when the directory cannot be made.
  bool prepare() {
    if (options_.output_dir.empty()) return true;
    std::error_code error;
    std::filesystem::create_directories(options_.output_dir, error);
    if (!error) return true;
    std::fprintf(stderr, "vel: cannot create directory '%s': %s\n", options_.output_dir.c_str(),
                 error.message().c_str());
    return false;
  }

  // False (with the reason on standard error) when a file cannot be written.
  bool write(vel_node_t *node) {
    if (options_.format != "text" && options_.format != "csv") return true;
    if (!options_.output_dir.empty()) {
      const std::string path = options_.output_dir + "/" + vel_node_get_name(node) + ".csv";
      std::ofstream file(path, std::ios::binary);
      if (file) io::write_table_csv(file, node, false);
      if (file.flush()) return true;
      std::fprintf(stderr, "vel: cannot write '%s': %s\n", path.c_str(), std::strerror(errno));
      return false;
    }
    if (written_++ > 0) std::cout << '\n';
    if (options_.format == "text") io::write_table_text(std::cout, node);
    else io::write_table_csv(std::cout, node);
    std::cout.flush();
    return true;
  }

 private:
  const GenerateOptions &options_;
  std::size_t written_ = 0;
};

// The generator's log: a file of the user's, all of it on standard error,
// none, or the default view of its first lines.
struct LogSetup {
  std::unique_ptr<std::FILE, FileCloser> file;
  std::optional<LogView> view;
  std::FILE *stream = nullptr;

  bool open(const GenerateOptions &options) {
    const bool to_stderr = options.log_given && options.log == "-";
    if (!options.no_log && options.log_given && !to_stderr) {
      file.reset(std::fopen(options.log.c_str(), "w"));
      if (!file) {
        std::fprintf(stderr, "vel: cannot open log file '%s': %s\n", options.log.c_str(),
                     std::strerror(errno));
        return false;
      }
    } else if (!options.no_log) {
      view.emplace(stderr, to_stderr ? LogView::all_lines : shown_log_lines);
    }
    stream = file ? file.get() : view ? view->stream() : nullptr;
    return true;
  }

  // Ends a line the generator left open, before the program writes its own.
  void end_line() {
    if (view) view->end_line();
  }
};

std::size_t entries_of(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  return table ? vel_table_get_size(table) : 0;
}

}  // namespace

std::vector<vel_node_t *> nodes_with_models(vel_domain_t *domain) {
  std::vector<vel_node_t *> nodes;
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    const bool real_function =
        vel_node_get_category(node) == vel_category_function && vel_node_get_kind(node) < 0;
    if (vel_node_get_model(node) && !real_function) nodes.push_back(node);
  }
  return nodes;
}

int run_generate(const GenerateOptions &options) {
  const bool json = options.format == "json";
  std::string load_message;
  std::optional<io::LoadedModel> model = load_or_report(options.file, &load_message);
  if (!model) {
    if (json) io::write_json_load_failure(std::cout, load_message);
    return 2;
  }
  vel_domain_t *domain = model->domain.get();
  const std::optional<std::vector<vel_node_t *>> nodes = select_nodes(options, *model);
  if (!nodes) return 2;
  if (options.propagate && model->inference_block) {
    report_propagate_refused(options.file);
    return 2;
  }
  TableWriter writer(options);
  LogSetup log;
  if (!writer.prepare() || !log.open(options)) return 2;
  vel_domain_set_log_file(domain, log.stream);

  std::vector<vel_node_t *> shown;
  std::optional<io::GenerationError> failure;
  bool write_failed = false;
  if (options.propagate) {
    if (const int code = compile_and_propagate(*model, {}))
      failure = io::GenerationError{code, failure_subject(*model), inference_failure(code)};
  }
  if (!failure) {
    Progress progress(nodes->size());
    for (vel_node_t *node : *nodes) {
      const bool literal = !vel_node_get_model(node) && options.nodes.empty();
      if (!literal) {
        progress.started(vel_node_get_name(node));
        const auto start = std::chrono::steady_clock::now();
        const int code = vel_node_generate_table(node);
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        if (code != 0) {
          failure = io::GenerationError{code, vel_node_get_name(node), vel_error_message()};
          break;
        }
        progress.finished(entries_of(node));
        if (options.stats) {
          progress.clear();
          log.end_line();
          std::fprintf(stderr, "%s: %zu entries, %.3f ms\n", vel_node_get_name(node), entries_of(node),
                       took.count());
        }
      }
      progress.clear();
      if (!writer.write(node)) {
        write_failed = true;
        break;
      }
      shown.push_back(node);
    }
  }

  log.end_line();
  if (log.view && log.view->hidden_lines() > 0)
    std::fprintf(stderr, "\xE2\x80\xA6 %zu more log lines; use --log FILE to keep them all\n",
                 log.view->hidden_lines());
  if (failure && !log.stream)
    if (vel_node_t *node = vel_domain_get_node_by_name(domain, failure->node.c_str()))
      failure->message = generation_failure(node, failure->code);
  if (failure)
    failure->message = with_results_hint(failure->message, failure->code, options.propagate, *model);
  vel_domain_set_log_file(domain, nullptr);
  if (json) io::write_json_document(std::cout, model->name, shown, failure ? &*failure : nullptr);
  std::cout.flush();
  if (write_failed) return 2;
  if (failure) {
    report_library_failure(failure->node, failure->code, failure->message);
    return 1;
  }
  return 0;
}

}  // namespace vel::cli
