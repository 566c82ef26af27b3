#include "check_findings.h"

#include <algorithm>
#include <cstdio>
#include <tuple>

namespace vel::cli {

bool Findings::has_errors() const {
  return std::any_of(items_.begin(), items_.end(), [](const Finding &f) { return f.error; });
}

void Findings::print(const std::string &file) {
  auto key = [](const Finding &f) {
    return std::make_tuple(f.at.line, f.at.column, f.node, !f.error, f.text);
  };
  std::stable_sort(items_.begin(), items_.end(),
                   [&](const Finding &a, const Finding &b) { return key(a) < key(b); });
  items_.erase(std::unique(items_.begin(), items_.end(),
                           [&](const Finding &a, const Finding &b) { return key(a) == key(b); }),
               items_.end());
  // An error at an item says more than a warning there: errors sort first.
  auto shadowed = [&](const Finding &f) {
    return !f.error && std::any_of(items_.begin(), items_.end(), [&](const Finding &e) {
             return e.error && e.node == f.node && e.at.line == f.at.line &&
                    e.at.column == f.at.column;
           });
  };
  for (const Finding &f : items_) {
    if (shadowed(f)) continue;
    std::fprintf(stderr, "%s:%zu:%zu: node %s: %s: %s\n", file.c_str(), f.at.line, f.at.column,
                 f.node.c_str(), f.error ? "error" : "warning", f.text.c_str());
  }
}

io::Position item_position(const io::LoadedModel &model, const vel_node_t *node,
                           io::Position io::NodeSource::*item) {
  const auto found = model.sources.find(node);
  if (found == model.sources.end()) return {};
  const io::Position at = found->second.*item;
  return at.line ? at : found->second.name;
}

io::Position expression_position(const io::LoadedModel &model, const vel_node_t *node, long index) {
  const auto found = model.sources.find(node);
  if (found == model.sources.end()) return {};
  const std::vector<io::Position> &expressions = found->second.expressions;
  if (index >= 0 && static_cast<std::size_t>(index) < expressions.size()) return expressions[index];
  return item_position(model, node, &io::NodeSource::model);
}

}  // namespace vel::cli
