#include "messages.h"

#include <cstdio>
#include <memory>

#include "io/network_file.h"

namespace vel::cli {

namespace {

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

}  // namespace

std::optional<io::LoadedModel> load_or_report(const std::string &file, std::string *message) {
  try {
    return io::load_network_file(file);
  } catch (const io::LoadError &error) {
    std::fprintf(stderr, "%s\n", error.what());
    if (message) *message = error.what();
    return std::nullopt;
  }
}

std::string generation_failure(vel_node_t *node, int code) {
  vel_domain_t *domain = vel_node_get_domain(node);
  if (vel_domain_get_log_file(domain)) return vel_error_message();
  std::unique_ptr<std::FILE, FileCloser> sink(std::fopen("/dev/null", "w"));
  if (!sink) return vel_error_description(code);
  vel_domain_set_log_file(domain, sink.get());
  vel_node_try_generate_table(node);
  std::string message = vel_error_message();
  vel_domain_set_log_file(domain, nullptr);
  return message.empty() ? vel_error_description(code) : message;
}

void report_library_failure(const std::string &node, int code, const std::string &message) {
  std::fprintf(stderr, "vel: %s: error %d (%s): %s\n", node.c_str(), code, vel_error_name(code),
               message.c_str());
}

void report_unknown_node(const std::string &file, const std::string &name) {
  std::fprintf(stderr, "vel: %s: no node named '%s'\n", file.c_str(), name.c_str());
}

}  // namespace vel::cli
