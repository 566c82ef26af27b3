// Different domains used from several threads at once: each thread loads its
// own domains and, round after round, generates, checks, evaluates, prints
// and fails to parse, and must see exactly what one thread alone sees: the
// same tables, log lines, values, texts and thread-local error code,
// message and position.  Built under the thread sanitizer too (VEL_TSAN),
// which reports any data race between them.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "case_file.h"
#include "io/model_file.h"
#include "vel/vel.h"

namespace {

constexpr int thread_count = 4;
constexpr int rounds = 25;

const char *const models[] = {
    "examples/weather.yaml",
    "examples/maintenance.yaml",
    "examples/lead_time.yaml",
    "tests/golden/models/function_parents.yaml",
    "tests/golden/models/inference_readers.yaml",
    "tests/golden/models/fail_utility_evaluation.yaml",
    "tests/golden/models/fail_label_missing.yaml",
};
constexpr int model_count = sizeof models / sizeof models[0];

// The thread-local error state after a call, as text: the code, and after a
// failure the message with the position (a parse) or the expression index
// (a generation) that go with it.
std::string error_state(bool parse = false) {
  const int code = vel_error_code();
  std::string text = std::to_string(code);
  if (code != 0)
    text += std::string(" ") + vel_error_message() + " @" +
            std::to_string(parse ? vel_error_position() : vel_error_expression_index());
  return text + "\n";
}

void count_report(void *context, int kind, vel_node_t *, std::size_t index) {
  *static_cast<std::string *>(context) += "report " + std::to_string(kind) + " " + std::to_string(index) +
                                          ": " + vel_error_message() + "\n";
}

// Everything one round does to a freshly loaded domain, written down.
std::string one_round(const std::string &text, const std::string &file) {
  std::ostringstream out;
  vel::io::LoadedModel model = vel::io::load_model_text(text, file);
  vel_domain_t *domain = model.domain.get();
  char *log_text = nullptr;
  std::size_t log_size = 0;
  std::FILE *log = open_memstream(&log_text, &log_size);
  vel_domain_set_log_file(domain, log);

  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    out << vel_node_get_name(node) << ":\n";
    if (vel_model_t *node_model = vel_node_get_model(node)) {
      for (std::size_t i = 0; i < vel_model_get_size(node_model); ++i) {
        char printed[512];
        if (const vel_expression_t *expression = vel_model_get_expression(node_model, i)) {
          vel_expression_print(expression, printed, sizeof printed);
          out << "  " << printed << "\n";
        }
      }
      std::string reports;
      vel_node_check_model(node, &count_report, &reports);
      out << reports << error_state();
      vel_node_try_generate_table(node);
      out << error_state();
    }
    for (int mode : {vel_mode_inference, vel_mode_configured}) {
      double value = 0;
      if (vel_node_get_kind(node) < 0 && vel_node_get_category(node) == vel_category_function)
        out << vel_node_compute_value(node, mode, &value) << " " << value << "\n";
    }
    // A syntax error, whose message and position belong to this thread.
    if (vel_parse_expression("Normal(0, 1", node) == nullptr) out << error_state(true);
  }
  out << "generate " << vel_domain_generate_tables(domain) << " " << error_state();
  for (vel_node_t *node = vel_domain_get_first_node(domain); node; node = vel_node_get_next(node)) {
    if (vel_table_t *table = vel_node_get_table(node)) {
      const float *data = vel_table_get_data(table);
      for (std::size_t i = 0; i < vel_table_get_size(table); ++i) out << data[i] << " ";
      out << "\n";
    }
  }
  vel_domain_set_log_file(domain, nullptr);
  std::fclose(log);
  out << "log:\n" << std::string(log_text, log_size);
  std::free(log_text);
  return out.str();
}

TEST(DomainsInThreads, EveryThreadSeesWhatOneThreadAloneSees) {
  std::vector<std::string> texts, expected;
  for (const char *path : models) {
    texts.push_back(vel_test::read_file(std::string(VEL_SOURCE_DIR) + "/" + path));
    expected.push_back(one_round(texts.back(), path));
  }
  // Each thread starts at another model, so that different models run at
  // the same time.
  std::vector<int> mismatches(thread_count, 0);
  std::vector<std::string> first_mismatch(thread_count);
  std::vector<std::thread> threads;
  for (int t = 0; t < thread_count; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < rounds; ++round) {
        const int m = (t + round) % model_count;
        const std::string seen = one_round(texts[m], models[m]);
        if (seen != expected[m] && mismatches[t]++ == 0) first_mismatch[t] = seen;
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  for (int t = 0; t < thread_count; ++t)
    EXPECT_EQ(mismatches[t], 0) << "thread " << t << " first saw:\n" << first_mismatch[t];
}

}  // namespace
