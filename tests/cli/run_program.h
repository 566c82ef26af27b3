// Runs the built vel program with arguments and captures what it writes.
#pragma once

#include <string>
#include <vector>

#include "case_file.h"  // read_file

namespace vel_test {

struct Run {
  int status = -1;  // exit status; -1 if the program did not exit normally
  std::string out;
  std::string err;
};

Run run_vel(const std::vector<std::string> &arguments);

// A fresh directory for one test's files, removed with everything in it.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;
  const std::string &path() const { return path_; }
  // Writes `text` to a file of that name here and returns its path.
  std::string write(const std::string &name, const std::string &text) const;

 private:
  std::string path_;
};
// Path of a file under tests/cli/data.
std::string data_file(const std::string &name);

}  // namespace vel_test
