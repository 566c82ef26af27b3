#include "progress.h"

#include <cstdio>
#include <unistd.h>

namespace vel::cli {

namespace {

constexpr std::chrono::milliseconds first_show{1000};
constexpr std::chrono::milliseconds interval{500};

}  // namespace

Progress::Progress(std::size_t nodes) : total_(nodes), start_(std::chrono::steady_clock::now()) {
  if (isatty(STDERR_FILENO)) thread_ = std::thread([this] { watch(); });
}

Progress::~Progress() {
  if (!thread_.joinable()) return;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  wake_.notify_one();
  thread_.join();
  clear();
}

void Progress::started(const std::string &node) {
  std::lock_guard<std::mutex> lock(mutex_);
  current_ = node;
}

void Progress::finished(std::size_t entries) {
  std::lock_guard<std::mutex> lock(mutex_);
  ++done_;
  entries_ += entries;
}

void Progress::clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!shown_) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  shown_ = false;
}

void Progress::watch() {
  std::unique_lock<std::mutex> lock(mutex_);
  if (wake_.wait_until(lock, start_ + first_show, [this] { return stop_; })) return;
  do show();
  while (!wake_.wait_for(lock, interval, [this] { return stop_; }));
}

// Called with the mutex held.
void Progress::show() {
  std::fprintf(stderr, "\r\033[Kvel: generating %s (%zu of %zu nodes done, %zu entries so far)",
               current_.c_str(), done_, total_, entries_);
  std::fflush(stderr);
  shown_ = true;
}

}  // namespace vel::cli
