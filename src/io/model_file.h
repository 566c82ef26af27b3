// Model files: a YAML (or JSON) description of one domain, loaded into a
// domain built through the public builder.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "vel/vel.h"

namespace vel::io {

struct DomainDeleter {
  void operator()(vel_domain_t *domain) const { vel_domain_delete(domain); }
};
using DomainPtr = std::unique_ptr<vel_domain_t, DomainDeleter>;

// A loaded model file: the domain and the name the file gives it.
struct LoadedModel {
  DomainPtr domain;
  std::string name;
};

// A file that cannot be loaded.  what() is the whole message:
// "FILE:LINE:COLUMN: message" (1-based), or "FILE: reason" when the file
// cannot be read at all.
class LoadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads and loads the file at `path`; throws LoadError.  Nothing is left
// half-built: on failure the domain built so far is deleted.
LoadedModel load_model_file(const std::string &path);

// Loads model-file text; `file_name` prefixes the messages and, without a
// `domain` key, gives the domain its name (the file name without directory
// and extension).
LoadedModel load_model_text(const std::string &text, const std::string &file_name);

}  // namespace vel::io
