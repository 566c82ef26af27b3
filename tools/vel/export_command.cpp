// vel export: the tables of every node with a model generated, then the whole
// network written in BIF, XMLBIF or UAI, to a file or standard output.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "commands.h"
#include "io/network_export.h"
#include "messages.h"

namespace vel::cli {

namespace {

io::ExportFormat format_of(const std::string &name) {
  if (name == "bif") return io::ExportFormat::bif;
  if (name == "xmlbif") return io::ExportFormat::xmlbif;
  return io::ExportFormat::uai;
}

}  // namespace

int run_export(const ExportOptions &options) {
  std::optional<io::LoadedModel> model = load_or_report(options.file);
  if (!model) return 2;
  vel_domain_t *domain = model->domain.get();
  for (vel_node_t *node : nodes_with_models(domain)) {
    const int code = vel_node_generate_table(node);
    if (code != 0) {
      report_library_failure(vel_node_get_name(node), code, generation_failure(node, code));
      return 1;
    }
  }

  // The whole text first: a refused network leaves no file behind.
  std::ostringstream text;
  try {
    io::write_network(text, domain, model->name, format_of(options.format), options.chance_only);
  } catch (const io::ExportError &error) {
    std::fprintf(stderr, "vel: %s: %s\n", options.file.c_str(), error.what());
    return 2;
  }
  if (options.output.empty()) {
    std::cout << text.str();
    std::cout.flush();
    return 0;
  }
  std::ofstream out(options.output, std::ios::binary);
  if (out) out << text.str();
  if (out) out.close();
  if (!out) {
    std::fprintf(stderr, "vel: cannot write '%s': %s\n", options.output.c_str(), std::strerror(errno));
    return 2;
  }
  return 0;
}

}  // namespace vel::cli
