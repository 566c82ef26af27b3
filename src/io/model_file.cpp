#include "io/model_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "io/loader_parts.h"
#include "io/yaml_reading.h"

namespace vel::io {

namespace {

using detail::Entry;
using detail::Source;

struct FileCloser {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

std::string file_stem(const std::string &path) {
  const std::size_t slash = path.find_last_of('/');
  std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  const std::size_t dot = base.find_last_of('.');
  if (dot != std::string::npos && dot > 0) base.erase(dot);
  return base;
}

LoadedModel build(const Source &source, const YAML::Node &root) {
  if (!root.IsMap()) source.fail(root, "a model file must be a mapping with a 'nodes' list");
  detail::check_mapping(source, root, {"domain", "samples_per_interval", "nodes", "inference"},
                        "a model file");

  LoadedModel model;
  const Entry name = detail::find(root, "domain");
  model.name = name.present() ? detail::read_text(source, name, "the domain name") : file_stem(source.file);

  const Entry samples = detail::find(root, "samples_per_interval");
  const std::size_t default_samples = samples.present() ? detail::read_count(source, samples) : 25;

  const Entry nodes = detail::find(root, "nodes");
  if (!nodes.present()) source.fail(root, "missing key 'nodes'");

  model.domain.reset(vel_domain_new());
  if (!model.domain) source.fail(root, "cannot create the domain: " + detail::library_reason());

  const std::vector<detail::NodeDecl> decls = detail::declare_nodes(source, nodes, model.domain.get());
  detail::connect_parents(source, decls);
  detail::attach_models_and_tables(source, decls, default_samples);
  const Entry inference = detail::find(root, "inference");
  model.inference_block = inference.present();
  if (inference.present()) detail::set_inference_state(source, inference, model.domain.get());
  detail::set_node_results(source, decls, model.inference_block, model.evidence);
  return model;
}

}  // namespace

LoadedModel load_model_text(const std::string &text, const std::string &file_name) {
  const Source source{file_name};
  try {
    const std::vector<YAML::Node> documents = YAML::LoadAll(text);
    for (std::size_t i = 1; i < documents.size(); ++i)
      if (!documents[i].IsNull()) source.fail(documents[i], "a model file holds one YAML document");
    return build(source, documents.empty() ? YAML::Node() : documents[0]);
  } catch (const YAML::Exception &error) {
    // Malformed YAML, and anything else yaml-cpp refuses, at its own mark.
    source.fail(error.mark, error.msg);
  }
}

LoadedModel load_model_file(const std::string &path) {
  errno = 0;
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) throw LoadError(path + ": " + std::strerror(errno));
  std::string text;
  char buffer[65536];
  std::size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) text.append(buffer, count);
  if (std::ferror(file.get())) throw LoadError(path + ": " + std::strerror(errno));
  return load_model_text(text, path);
}

}  // namespace vel::io
