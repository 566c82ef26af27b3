#include "run_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vel_test {

TempDir::TempDir() {
  char pattern[] = "/tmp/vel_cli_XXXXXX";
  const char *directory = mkdtemp(pattern);
  if (!directory) throw std::runtime_error("mkdtemp failed");
  path_ = directory;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::write(const std::string &name, const std::string &text) const {
  const std::string path = path_ + "/" + name;
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

std::string data_file(const std::string &name) { return std::string(VEL_SOURCE_DIR) + "/tests/cli/data/" + name; }

namespace {

Run run_program(const std::string &program, const std::vector<std::string> &arguments) {
  const TempDir directory;
  const std::string out_path = directory.path() + "/stdout", err_path = directory.path() + "/stderr";

  std::vector<char *> argv{const_cast<char *>(program.c_str())};
  for (const std::string &argument : arguments) argv.push_back(const_cast<char *>(argument.c_str()));
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid = 0;
  Run run;
  if (posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  run.out = read_file(out_path);
  run.err = read_file(err_path);
  return run;
}

std::string vel_path() { return std::string(VEL_BINARY_DIR) + "/bin/vel"; }

}  // namespace

Run run_vel(const std::vector<std::string> &arguments) { return run_program(vel_path(), arguments); }

}  // namespace vel_test
