// The program's view of the generator's log on standard error: a stream that
// passes the first lines on, counts the rest, and can end a line that the
// generator left open before the program shows anything else.
#pragma once

#include <cstddef>
#include <cstdio>
#include <limits>

namespace vel::cli {

class LogView {
 public:
  static constexpr std::size_t all_lines = std::numeric_limits<std::size_t>::max();

  // Lines beyond `shown` are counted, not written to `out`.
  LogView(std::FILE *out, std::size_t shown);
  ~LogView();
  LogView(const LogView &) = delete;
  LogView &operator=(const LogView &) = delete;

  // The stream to hand to the domain; nullptr if it could not be made.
  std::FILE *stream() const { return stream_; }
  // Flushes the stream and ends a shown line left without its newline.
  void end_line();
  // Lines started but not shown.
  std::size_t hidden_lines() const { return started_ > shown_ ? started_ - shown_ : 0; }

 private:
  static ssize_t write(void *cookie, const char *data, std::size_t size);
  void pass(const char *data, std::size_t size);

  std::FILE *out_;
  std::FILE *stream_ = nullptr;
  std::size_t shown_;
  std::size_t started_ = 0;
  bool at_line_start_ = true;
};

}  // namespace vel::cli
