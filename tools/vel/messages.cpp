#include "messages.h"

#include <cstdio>

#include "io/network_file.h"

namespace vel::cli {

std::optional<io::LoadedModel> load_or_report(const std::string &file) {
  try {
    return io::load_network_file(file);
  } catch (const io::LoadError &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return std::nullopt;
  }
}

void report_library_failure(const std::string &node, int code) {
  const char *name = vel_error_name(code);
  const char *description = vel_error_description(code);
  std::fprintf(stderr, "vel: %s: error %d (%s): %s\n", node.c_str(), code, name ? name : "unknown",
               description ? description : "");
}

void report_unknown_node(const std::string &file, const std::string &name) {
  std::fprintf(stderr, "vel: %s: no node named '%s'\n", file.c_str(), name.c_str());
}

}  // namespace vel::cli
