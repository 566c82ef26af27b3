// Transcripts: runs of the vel program written down with what each answers,
// in the files tests/cli/transcripts/*.transcript.
//
//   $ ARGUMENTS   a run: arguments split at blanks; 'quoted text' is one
//                 argument; {data} stands for the folder tests/cli/data
//   = STATUS      its exit status (0 when no line says otherwise)
//   > LINE        a line of its standard output ('>' alone: an empty line)
//   ! LINE        a line of its standard error
//
// A run's stdout and stderr are exactly the lines given. Lines starting with
// '#' and blank lines are skipped; {data} is replaced in the lines too.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "run_program.h"

namespace {

// A run of the program and what it must answer: its exit status and all it
// writes on stdout and stderr.
struct Expected {
  std::vector<std::string> arguments;
  int status;
  std::string out;
  std::string err;
};

void expect_run(const Expected &expected) {
  SCOPED_TRACE(testing::PrintToString(expected.arguments));
  const vel_test::Run run = vel_test::run_vel(expected.arguments);
  EXPECT_EQ(run.status, expected.status);
  EXPECT_EQ(run.out, expected.out);
  EXPECT_EQ(run.err, expected.err);
}

std::string with_data(std::string text) {
  const std::string data = vel_test::data_file(""), mark = "{data}/";
  for (std::size_t at; (at = text.find(mark)) != std::string::npos;) text.replace(at, mark.size(), data);
  return text;
}

std::vector<std::string> arguments_of(const std::string &text) {
  std::vector<std::string> arguments;
  std::string current;
  bool quoted = false, any = false;
  for (const char c : text) {
    if (c == '\'') {
      quoted = !quoted;
      any = true;
    } else if (c == ' ' && !quoted) {
      if (any) arguments.push_back(with_data(current));
      current.clear();
      any = false;
    } else {
      current += c;
      any = true;
    }
  }
  if (any) arguments.push_back(with_data(current));
  return arguments;
}

std::vector<Expected> read_transcript(const std::string &path) {
  std::istringstream in(vel_test::read_file(path));
  std::vector<Expected> runs;
  for (std::string line; std::getline(in, line);) {
    if (line == "$" || line.rfind("$ ", 0) == 0) {
      runs.push_back({arguments_of(line.substr(1)), 0, "", ""});
    } else if (line.empty() || line[0] == '#') {
      continue;
    } else if (runs.empty()) {
      ADD_FAILURE() << path << ": a line before the first run: " << line;
    } else if (line.rfind("= ", 0) == 0) {
      runs.back().status = std::stoi(line.substr(2));
    } else if (line[0] == '>' || line[0] == '!') {
      (line[0] == '>' ? runs.back().out : runs.back().err) += with_data(line.substr(line.size() > 1 ? 2 : 1)) + "\n";
    } else {
      ADD_FAILURE() << path << ": not a transcript line: " << line;
    }
  }
  return runs;
}

std::vector<std::string> transcripts() {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(std::string(VEL_SOURCE_DIR) + "/tests/cli/transcripts"))
    names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

class Transcript : public testing::TestWithParam<std::string> {};

TEST_P(Transcript, EveryRunAnswersAsWritten) {
  const std::string path = std::string(VEL_SOURCE_DIR) + "/tests/cli/transcripts/" + GetParam() + ".transcript";
  const std::vector<Expected> runs = read_transcript(path);
  ASSERT_FALSE(runs.empty()) << path;
  for (const auto &run : runs) expect_run(run);
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript, testing::ValuesIn(transcripts()),
                         [](const testing::TestParamInfo<std::string> &info) { return info.param; });

}  // namespace
