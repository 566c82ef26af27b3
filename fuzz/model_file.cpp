// The model-file loader, then what vel check and vel generate do with what
// loads: the library's checks, trial generation, check's warnings,
// generation, and the values of real-valued function nodes.  Tables beyond
// the caps below are skipped, not reported: they are legitimate, only slow.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "check_findings.h"
#include "io/model_file.h"
#include "vel/vel.h"

namespace {

constexpr const char *file_name = "fuzz.yaml";
constexpr double max_node_work = 2e4;   // table entries times samples per row
constexpr double max_total_work = 1e5;  // the same over all nodes of one input
constexpr std::size_t max_samples = 4;  // samples per interval parent state

// Table entries times the sample points of a row (one per state of each
// interval parent).
double generation_work(vel_node_t *node, std::size_t samples) {
  double work = vel_node_get_kind(node) == vel_kind_discrete
                    ? static_cast<double>(vel_node_get_number_of_states(node))
                    : 1.0;
  for (vel_node_t *const *parent = vel_node_get_parents(node); *parent; ++parent) {
    if (vel_node_get_kind(*parent) != vel_kind_discrete) continue;
    work *= static_cast<double>(vel_node_get_number_of_states(*parent));
    if (vel_node_get_subtype(*parent) == vel_subtype_interval) work *= static_cast<double>(samples);
  }
  return work;
}

bool is_real_function_node(const vel_node_t *node) {
  return vel_node_get_category(node) == vel_category_function && vel_node_get_kind(node) < 0;
}

std::FILE *null_log() {
  static std::FILE *log = std::fopen("/dev/null", "w");
  return log;
}

void exercise(vel::io::LoadedModel &model) {
  vel_domain_t *domain = model.domain.get();
  vel_domain_set_log_file(domain, null_log());
  double total = 0;
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    if (is_real_function_node(node)) {
      double value = 0;
      vel_node_compute_value(node, vel_mode_inference, &value);
      vel_node_compute_value(node, vel_mode_configured, &value);
      continue;
    }
    vel_model_t *node_model = vel_node_get_model(node);
    if (!node_model) continue;
    std::size_t samples = vel_model_get_samples_per_interval(node_model);
    if (samples > max_samples) {
      samples = max_samples;
      vel_model_set_samples_per_interval(node_model, samples);
    }
    const double work = generation_work(node, samples);
    if (work > max_node_work || total + 2 * work > max_total_work) continue;
    total += 2 * work;
    vel_node_check_model(node, nullptr, nullptr);
    vel_node_try_generate_table(node);
    vel_node_generate_table(node);
  }
  vel::cli::Findings findings;
  vel::cli::find_warnings(model, findings);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  try {
    vel::io::LoadedModel model = vel::io::load_model_text(text, file_name);
    exercise(model);
  } catch (const vel::io::LoadError &error) {
    // Every refusal says where: "fuzz.yaml:LINE:COLUMN: message".
    const std::string message = error.what();
    if (message.rfind(std::string(file_name) + ":", 0) != 0) {
      std::fprintf(stderr, "a load error without the file's name: %s\n", message.c_str());
      std::abort();
    }
  }
  return 0;
}
