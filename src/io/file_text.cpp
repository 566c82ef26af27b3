#include "io/file_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "io/model_file.h"

namespace vel::io {

namespace {

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

}  // namespace

std::string read_file_text(const std::string &path) {
  errno = 0;
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) throw LoadError(path + ": " + std::strerror(errno));
  std::string text;
  char buffer[65536];
  std::size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) text.append(buffer, count);
  if (std::ferror(file.get())) throw LoadError(path + ": " + std::strerror(errno));
  return text;
}

std::string file_stem(const std::string &path) {
  const std::size_t slash = path.find_last_of('/');
  std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::size_t dot = base.find_last_of('.');
  if (dot != std::string::npos && dot > 0) base.erase(dot);
  return base;
}

}  // namespace vel::io
