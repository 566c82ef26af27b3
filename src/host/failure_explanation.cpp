// The explanation of a failed generation: what the generator wrote to the
// domain's log during the call, without the "Using model for" line and the
// row diagnostics.  For the call, the domain's log is seen through a stream
// that passes every byte on to the caller's stream and keeps the lines that
// explain; nothing is kept when the domain has no log.
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "common/error.h"
#include "host/host.h"
#include "host/storage_internal.h"

namespace {

// Enough for every message the generator writes before it fails; a longer
// explanation is cut.
constexpr std::size_t kept_limit = 16384;

bool starts_with(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// "(0,2,1): 0.2 (min=0.1, max=0.3)" and "(1,0): evaluation failed".
bool is_row_line(std::string_view line) {
  if (!starts_with(line, "(")) return false;
  const std::size_t close = line.find("): ");
  if (close == std::string_view::npos) return false;
  const std::string_view rest = line.substr(close + 3);
  return rest == "evaluation failed" ||
         (rest.find(" (min=") != std::string_view::npos && rest.back() == ')');
}

class Capture {
 public:
  explicit Capture(vel_domain_t *domain) : domain_(domain), inner_(domain->log_file) {
    cookie_io_functions_t functions{};
    functions.write = &Capture::write;
    stream_ = fopencookie(this, "w", functions);
    if (!stream_) return;
    // Unbuffered: a failed write of the caller's stream shows in the
    // generator's own write, as it would without the capture.
    std::setvbuf(stream_, nullptr, _IONBF, 0);
    domain_->log_file = stream_;
    domain_->host->captured_log = inner_;
  }
  ~Capture() {
    if (!stream_) return;
    domain_->log_file = inner_;
    domain_->host->captured_log = nullptr;
    std::fclose(stream_);
  }
  Capture(const Capture &) = delete;
  Capture &operator=(const Capture &) = delete;

  // The kept lines joined by "\n"; the last line may lack its newline.
  std::string explanation() {
    end_line();
    return kept_;
  }

 private:
  static ssize_t write(void *cookie, const char *data, std::size_t size) {
    auto *capture = static_cast<Capture *>(cookie);
    const std::size_t passed = std::fwrite(data, 1, size, capture->inner_);
    if (passed == 0 && size > 0) return -1;
    capture->take(data, passed);
    return static_cast<ssize_t>(passed);
  }

  void take(const char *data, std::size_t size) noexcept {
    try {
      for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
          end_line();
        } else if (line_.size() < kept_limit) {
          line_ += data[i];
        }
      }
    } catch (...) {
      line_.clear();  // out of memory: the explanation loses this line
    }
  }

  void end_line() {
    if (!line_.empty() && !starts_with(line_, "Using model for ") && !is_row_line(line_) &&
        kept_.size() + line_.size() < kept_limit) {
      if (!kept_.empty()) kept_ += '\n';
      kept_ += line_;
    }
    line_.clear();
  }

  vel_domain_t *domain_;
  std::FILE *inner_;
  std::FILE *stream_ = nullptr;
  std::string line_;
  std::string kept_;
};

// Why vel_node_generate_table refuses the node outright.
const char *refusal(const vel_node_t *node) {
  if (!node) return "the node is NULL";
  if (!node->model) return "has no model";
  return "is a real-valued function node and has no table";
}

// The log's explanation; else what a host operation said when it failed
// (the table was too large, say); else the code's description.
void explain(int code, const std::string &text) {
  if (!text.empty()) vel::set_error_message(text.c_str());
  else if (vel_error_message()[0] == '\0') vel::set_error_message(vel_error_description(code));
}

}  // namespace

extern "C" int _vel_generate_explained(vel_node_t *node, int (*generate)(vel_node_t *)) {
  vel::set_error_message(nullptr);
  vel::set_failed_expression(-1);
  const bool refused =
      !node || !node->model || (node->kind < 0 && node->category == vel_category_function);
  if (refused || !node->domain->log_file || node->domain->host->captured_log) {
    const int code = generate(node);
    if (code != 0 && refused)
      explain(code, node ? std::string(node->name) + " " + refusal(node) : refusal(node));
    else if (code != 0)
      explain(code, "");
    return vel::fail(code);
  }
  Capture capture(node->domain);
  const int code = generate(node);
  if (code == 0) return 0;
  std::string text;
  try {
    text = capture.explanation();
  } catch (...) {
    text.clear();  // no memory for the text: the code's description stands in
  }
  explain(code, text);
  return vel::fail(code);
}
