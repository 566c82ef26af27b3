#include "log_view.h"

namespace vel::cli {

LogView::LogView(std::FILE *out, std::size_t shown) : out_(out), shown_(shown) {
  cookie_io_functions_t functions{};
  functions.write = &LogView::write;
  stream_ = fopencookie(this, "w", functions);
  // Unbuffered, so that log lines and the program's own messages keep their
  // order on the terminal.
  if (stream_) std::setvbuf(stream_, nullptr, _IONBF, 0);
}

LogView::~LogView() {
  if (stream_) std::fclose(stream_);
}

ssize_t LogView::write(void *cookie, const char *data, std::size_t size) {
  static_cast<LogView *>(cookie)->pass(data, size);
  return static_cast<ssize_t>(size);
}

void LogView::pass(const char *data, std::size_t size) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < size; ++i) {
    if (at_line_start_) {
      ++started_;
      begin = i;
      at_line_start_ = false;
    }
    const bool line_end = data[i] == '\n';
    if (line_end || i + 1 == size) {
      if (started_ <= shown_) std::fwrite(data + begin, 1, i + 1 - begin, out_);
      at_line_start_ = line_end;
    }
  }
}

void LogView::end_line() {
  if (stream_) std::fflush(stream_);
  if (!at_line_start_) {
    if (started_ <= shown_) std::fputc('\n', out_);
    at_line_start_ = true;
  }
  std::fflush(out_);
}

}  // namespace vel::cli
