// The C entry of libvel_io.so: a file loaded by the program's loaders, its
// evidence entered, handed over as a plain domain.
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "io/network_file.h"
#include "vel/vel_io.h"

namespace {

// A malloc'd copy, so that C callers free it with vel_io_free; NULL when
// memory runs out.
char *copy_text(const char *text) noexcept {
  const std::size_t size = std::strlen(text) + 1;
  char *copy = static_cast<char *>(std::malloc(size));
  if (copy) std::memcpy(copy, text, size);
  return copy;
}

// "PATH: what", for failures that carry no position of their own.
char *failure_text(const char *path, const char *what) noexcept {
  try {
    return copy_text((std::string(path ? path : "(null)") + ": " + what).c_str());
  } catch (...) {
    return nullptr;
  }
}

// A file without an inference block holds evidence to enter before
// propagating; with one the loader has set the stated evidence already.
// Returns 0 or the library's code.
int enter_evidence(const vel::io::LoadedModel &model) {
  if (model.inference_block) return 0;
  for (const vel::io::FileEvidence &evidence : model.evidence) {
    const int code =
        evidence.likelihood.empty()
            ? vel_node_enter_evidence(evidence.node, static_cast<std::size_t>(evidence.state))
            : vel_node_enter_likelihood(evidence.node, evidence.likelihood.data(),
                                        evidence.likelihood.size());
    if (code != 0) return code;
  }
  return 0;
}

}  // namespace

extern "C" vel_domain_t *vel_io_load_file(const char *path, char **name, char **error) {
  if (name) *name = nullptr;
  char *reason = nullptr;
  try {
    if (!path) {
      reason = copy_text("(null): the path is NULL");
    } else {
      vel::io::LoadedModel model = vel::io::load_network_file(path);
      const int code = enter_evidence(model);
      if (code != 0) {
        reason = failure_text(path, vel_error_description(code));
      } else if (name && !(*name = copy_text(model.name.c_str()))) {
        reason = failure_text(path, "out of memory");
      } else {
        if (error) *error = nullptr;
        return model.domain.release();
      }
    }
  } catch (const vel::io::LoadError &failure) {
    reason = copy_text(failure.what());
  } catch (const std::bad_alloc &) {
    reason = failure_text(path, "out of memory");
  } catch (const std::exception &failure) {
    reason = failure_text(path, failure.what());
  } catch (...) {
    reason = failure_text(path, "the file could not be loaded");
  }
  if (error) *error = reason;
  else std::free(reason);
  return nullptr;
}

extern "C" void vel_io_free(void *memory) { std::free(memory); }
