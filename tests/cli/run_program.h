// Runs the built vel program with arguments and captures what it writes.
#pragma once

#include <string>
#include <vector>

namespace vel_test {

struct Run {
  int status = -1;  // exit status; -1 if the program did not exit normally
  std::string out;
  std::string err;
};

Run run_vel(const std::vector<std::string> &arguments);

std::string read_file(const std::string &path);
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

// A run of the program and what it must answer: the exit status, all of
// stdout, and stderr: the whole of it when `err` is empty or ends in a
// newline, else its beginning.
struct Expected {
  std::vector<std::string> arguments;
  int status;
  std::string out;
  std::string err;
};
// Runs `command` followed by the case's arguments and `extra`, and checks
// what it answers.
void expect_run(const std::vector<std::string> &command, const Expected &expected,
                const std::vector<std::string> &extra = {});

}  // namespace vel_test
