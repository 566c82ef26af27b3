// Second stage of loading: the parents of every node, in file order, refusing
// any edge that would close a directed cycle.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "io/loader_parts.h"

namespace vel::io::detail {

namespace {

const NodeDecl *find_decl(const std::vector<NodeDecl> &decls, const std::string &name) {
  for (const NodeDecl &decl : decls)
    if (decl.name == name) return &decl;
  return nullptr;
}

// Whether `target` is `start` or one of its ancestors through the parents
// connected so far.
bool is_ancestor(vel_node_t *target, vel_node_t *start) {
  std::vector<vel_node_t *> pending{start};
  std::set<vel_node_t *> seen;
  while (!pending.empty()) {
    vel_node_t *node = pending.back();
    pending.pop_back();
    if (node == target) return true;
    if (!seen.insert(node).second) continue;
    for (vel_node_t *const *parent = vel_node_get_parents(node); parent && *parent; ++parent)
      pending.push_back(*parent);
  }
  return false;
}

}  // namespace

void connect_parents(const Source &source, const std::vector<NodeDecl> &decls) {
  for (const NodeDecl &decl : decls) {
    const Entry parents = find(decl.map, "parents");
    if (is_null(parents)) continue;
    require_sequence(source, parents, "'parents'");
    const bool is_function = vel_node_get_category(decl.node) == vel_category_function;
    std::vector<std::string> seen;
    for (const YAML::Node &item : parents.value) {
      if (!item.IsScalar()) source.fail(item, "a parent must be a node name");
      const std::string &name = item.Scalar();
      const NodeDecl *parent = find_decl(decls, name);
      if (!parent) source.fail(item, "unknown parent '" + name + "'");
      if (parent->node == decl.node) source.fail(item, "node '" + name + "' cannot be its own parent");
      if (std::find(seen.begin(), seen.end(), name) != seen.end())
        source.fail(item, "duplicate parent '" + name + "'");
      seen.push_back(name);
      if (vel_node_get_kind(parent->node) > 0 && !is_function)
        source.fail(item, "continuous parent '" + name + "' of '" + decl.name +
                              "': only function nodes may have continuous parents");
      if (is_ancestor(decl.node, parent->node))
        source.fail(item, "parent '" + name + "' of '" + decl.name + "' closes a directed cycle");
      if (vel_node_add_parent(decl.node, parent->node) != 0)
        source.fail(item, "cannot add parent '" + name + "' to '" + decl.name + "': " + library_reason());
    }
  }
}

}  // namespace vel::io::detail
