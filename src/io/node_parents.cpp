// Second stage of loading: the parents of every node, in file order, refusing
// any edge that would close a directed cycle (the library finds those in time
// proportional to the nodes between the edge's ends).
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "io/loader_parts.h"

namespace vel::io::detail {

namespace {

bool ends_with(const std::string &text, const std::string &tail) {
  return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

}  // namespace

void connect_parents(const Source &source, const std::vector<NodeDecl> &decls) {
  std::unordered_map<std::string, const NodeDecl *> by_name;
  for (const NodeDecl &decl : decls) by_name.emplace(decl.name, &decl);
  for (const NodeDecl &decl : decls) {
    const Entry parents = find(decl.map, "parents");
    if (is_null(parents)) continue;
    require_sequence(source, parents, "'parents'");
    charge_list(source, parents.value);
    const bool is_function = vel_node_get_category(decl.node) == vel_category_function;
    std::unordered_set<std::string> seen;
    for (const YAML::Node &item : parents.value) {
      if (!item.IsScalar()) source.fail(item, "a parent must be a node name");
      charge_text(source, item);
      const std::string &name = item.Scalar();
      const auto found = by_name.find(name);
      if (found == by_name.end()) source.fail(item, "unknown parent '" + name + "'");
      const NodeDecl *parent = found->second;
      if (parent->node == decl.node) source.fail(item, "node '" + name + "' cannot be its own parent");
      if (!seen.insert(name).second) source.fail(item, "duplicate parent '" + name + "'");
      if (vel_node_get_kind(parent->node) > 0 && !is_function)
        source.fail(item, "continuous parent '" + name + "' of '" + decl.name +
                              "': only function nodes may have continuous parents");
      if (vel_node_add_parent(decl.node, parent->node) != 0) {
        const std::string reason = library_reason();
        if (ends_with(reason, "would close a directed cycle"))
          source.fail(item, "parent '" + name + "' of '" + decl.name + "' closes a directed cycle");
        source.fail(item, "cannot add parent '" + name + "' to '" + decl.name + "': " + reason);
      }
    }
  }
}

}  // namespace vel::io::detail
