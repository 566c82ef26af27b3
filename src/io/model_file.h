// Model files: a YAML (or JSON) description of one domain, loaded into a
// domain built through the public builder.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "vel/vel.h"

namespace vel::io {

struct DomainDeleter {
  void operator()(vel_domain_t *domain) const { vel_domain_delete(domain); }
};
using DomainPtr = std::unique_ptr<vel_domain_t, DomainDeleter>;

// Where an item stands in its file: 1-based line and column; 0 when unknown.
struct Position {
  std::size_t line = 0;
  std::size_t column = 0;
};

// Where the items of one node stand, for messages about them after loading.
struct NodeSource {
  Position name;                      // the node's entry
  Position states;                    // its states
  Position table;                     // its literal table
  Position model;                     // its model
  std::vector<Position> expressions;  // one per expression index; may be empty
};

// A node's `evidence` in the file: a state, or one likelihood per state.
struct FileEvidence {
  vel_node_t *node = nullptr;
  long long state = -1;            // -1: a likelihood
  std::vector<double> likelihood;  // empty: a state
};

// A loaded model file: the domain, the name the file gives it, and where each
// node's items stand in the file.  Without an `inference` block, `evidence`
// is evidence to enter before propagating; with one it is the propagated
// evidence state of the stated results, set in the domain already.
struct LoadedModel {
  DomainPtr domain;
  std::string name;
  std::unordered_map<const vel_node_t *, NodeSource> sources;
  std::vector<FileEvidence> evidence;  // in file order
  bool inference_block = false;        // the file states results of inference
};

// A file that cannot be loaded.  what() is the whole message:
// "FILE:LINE:COLUMN: message" (1-based), or "FILE: reason" when the file
// cannot be read at all.
class LoadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The state of a discrete node that `text` names the way a file names it (a
// label, false/true, a numbered state's value, a number inside an interval);
// -1 when it names none.
long long state_named(vel_node_t *node, const std::string &text);

// Reads and loads the file at `path`; throws LoadError.  Nothing is left
// half-built: on failure the domain built so far is deleted.
LoadedModel load_model_file(const std::string &path);

// Loads model-file text; `file_name` prefixes the messages and, without a
// `domain` key, gives the domain its name (the file name without directory
// and extension).
LoadedModel load_model_text(const std::string &text, const std::string &file_name);

}  // namespace vel::io
