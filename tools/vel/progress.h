// A line of progress on standard error while a file's tables are generated:
// shown only on a terminal and only once generation has taken about a
// second, so that quick runs and redirected output stay as they are.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace vel::cli {

class Progress {
 public:
  explicit Progress(std::size_t nodes);
  ~Progress();  // stops and clears the line
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void started(const std::string &node);
  void finished(std::size_t entries);
  // Clears the line before the program writes something of its own.
  void clear();

 private:
  void watch();
  void show();

  std::size_t total_;
  std::size_t done_ = 0;
  std::size_t entries_ = 0;
  std::string current_;
  bool shown_ = false;
  bool stop_ = false;
  std::chrono::steady_clock::time_point start_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::thread thread_;
};

}  // namespace vel::cli
