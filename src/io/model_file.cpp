#include "io/model_file.h"

#include <vector>

#include "io/file_text.h"
#include "io/loader_parts.h"
#include "io/yaml_documents.h"
#include "io/yaml_reading.h"

namespace vel::io {

namespace {

using detail::Entry;
using detail::Source;

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

  std::vector<detail::NodeDecl> decls = detail::declare_nodes(source, nodes, model.domain.get());
  detail::connect_parents(source, decls);
  detail::attach_models_and_tables(source, decls, default_samples);
  const Entry inference = detail::find(root, "inference");
  model.inference_block = inference.present();
  if (inference.present()) detail::set_inference_state(source, inference, model.domain.get());
  detail::set_node_results(source, decls, model.inference_block, model.evidence);
  for (detail::NodeDecl &decl : decls) model.sources.emplace(decl.node, std::move(decl.where));
  return model;
}

}  // namespace

LoadedModel load_model_text(const std::string &text, const std::string &file_name) {
  const Source source{file_name, detail::reading_allowance(text.size())};
  try {
    return build(source, detail::load_single_document(source, text));
  } catch (const YAML::Exception &error) {
    // Malformed YAML, and anything else yaml-cpp refuses, at its own mark.
    source.fail(error.mark, error.msg);
  }
}

LoadedModel load_model_file(const std::string &path) {
  return load_model_text(read_file_text(path), path);
}

}  // namespace vel::io
