// Third stage of loading: models (model nodes, expressions, samples per
// interval) and literal tables.
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "io/loader_parts.h"

namespace vel::io::detail {

namespace {

std::vector<vel_node_t *> read_model_nodes(const Source &source, const NodeDecl &decl,
                                           const YAML::Node &model) {
  const Entry nodes = find(model, "nodes");
  if (!nodes.present()) source.fail(model, "missing key 'nodes'");
  std::vector<vel_node_t *> result;
  if (nodes.value.IsNull()) return result;
  require_sequence(source, nodes, "the model's 'nodes'");
  charge_list(source, nodes.value);
  // Hashed, so that a model over many parents costs no search per node.
  std::unordered_map<std::string_view, vel_node_t *> discrete_parents;
  for (vel_node_t *const *parent = vel_node_get_parents(decl.node); *parent; ++parent)
    if (vel_node_get_kind(*parent) == vel_kind_discrete)
      discrete_parents.emplace(vel_node_get_name(*parent), *parent);
  std::unordered_set<vel_node_t *> seen;
  for (const YAML::Node &item : nodes.value) {
    if (!item.IsScalar()) source.fail(item, "a model node must be a node name");
    charge_text(source, item);
    const std::string &name = item.Scalar();
    const auto found = discrete_parents.find(name);
    if (found == discrete_parents.end())
      source.fail(item, "model node '" + name + "' is not a discrete parent of '" + decl.name + "'");
    if (!seen.insert(found->second).second) source.fail(item, "duplicate model node '" + name + "'");
    result.push_back(found->second);
  }
  return result;
}

struct ExpressionDeleter {
  void operator()(vel_expression_t *expression) const { vel_expression_delete(expression); }
};
using OwnedExpression = std::unique_ptr<vel_expression_t, ExpressionDeleter>;

// The list is kept as given: null entries are missing expressions (which
// generation reports), even when every entry is null.
void read_expressions(const Source &source, NodeDecl &decl, vel_model_t *model,
                      const Entry &expressions) {
  require_sequence(source, expressions, "'expressions'");
  const std::size_t size = vel_model_get_size(model);
  const std::size_t count = expressions.value.size();
  if (count != size)
    source.fail(expressions.key, "'expressions' of '" + decl.name + "' needs " + std::to_string(size) +
                                     " entries, one per configuration of the model nodes; found " +
                                     std::to_string(count));
  charge_list(source, expressions.value);
  std::vector<OwnedExpression> parsed;
  parsed.reserve(count);
  decl.where.expressions.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const YAML::Node item = expressions.value[i];
    const Position at = position_of(item.Mark());
    decl.where.expressions.push_back(at.line ? at : position_of(expressions.key.Mark()));
    if (item.IsNull()) {
      parsed.emplace_back(nullptr);
      continue;
    }
    if (!item.IsScalar()) source.fail(item, "an expression must be a string or null");
    charge_text(source, item);
    const std::string prefix = "node " + decl.name + ", expression " + std::to_string(i) + ": ";
    parsed.emplace_back(vel_parse_expression(item.Scalar().c_str(), decl.node));
    if (!parsed.back())
      source.fail(item, prefix + vel_error_message() + " at character " + std::to_string(vel_error_position()));
  }
  std::vector<vel_expression_t *> list;
  list.reserve(count);
  for (const OwnedExpression &expression : parsed) list.push_back(expression.get());
  if (vel_model_set_expressions(model, list.data(), count) != 0)
    source.fail(expressions.key, "cannot set the expressions of '" + decl.name + "': " + library_reason());
  for (OwnedExpression &expression : parsed) static_cast<void>(expression.release());
}

void attach_model(const Source &source, NodeDecl &decl, const Entry &entry,
                  std::size_t default_samples) {
  decl.where.model = position_of(entry.key.Mark());
  if (vel_node_get_kind(decl.node) > 0)
    source.fail(entry.key, "continuous node '" + decl.name + "' takes no model");
  check_mapping(source, entry.value, {"nodes", "expressions", "samples_per_interval"}, "a model");
  std::vector<vel_node_t *> nodes = read_model_nodes(source, decl, entry.value);
  nodes.push_back(nullptr);
  vel_model_t *model = vel_node_new_model(decl.node, nodes.data());
  if (!model) source.fail(entry.key, "cannot give '" + decl.name + "' a model: " + library_reason());

  const Entry samples = find(entry.value, "samples_per_interval");
  const std::size_t count = samples.present() ? read_count(source, samples) : default_samples;
  if (vel_model_set_samples_per_interval(model, count) != 0)
    source.fail(samples.present() ? samples.value_mark() : entry.key.Mark(),
                "cannot set samples_per_interval: " + library_reason());

  const Entry expressions = find(entry.value, "expressions");
  if (!is_null(expressions)) read_expressions(source, decl, model, expressions);
}

// Entries of the node's table: its discrete parents' states, then its own;
// the largest size when the product overflows.
std::size_t table_size(vel_node_t *node) {
  std::size_t size = vel_node_get_kind(node) == vel_kind_discrete ? vel_node_get_number_of_states(node) : 1;
  for (vel_node_t *const *parent = vel_node_get_parents(node); *parent; ++parent)
    if (vel_node_get_kind(*parent) == vel_kind_discrete &&
        __builtin_mul_overflow(size, vel_node_get_number_of_states(*parent), &size))
      return SIZE_MAX;
  return size;
}

void attach_table(const Source &source, NodeDecl &decl, const Entry &entry) {
  decl.where.table = position_of(entry.key.Mark());
  const int kind = vel_node_get_kind(decl.node);
  if (kind > 0) source.fail(entry.key, "continuous node '" + decl.name + "' takes no table");
  if (kind < 0 && vel_node_get_category(decl.node) == vel_category_function)
    source.fail(entry.key, "real-valued function node '" + decl.name + "' takes no table");
  require_sequence(source, entry, "'table'");
  // The length is checked against the table's size before the table is made,
  // so that a short list never costs the memory of a huge table.
  const std::size_t size = table_size(decl.node);
  const std::size_t count = entry.value.size();
  if (count != size)
    source.fail(entry.key, "the table of '" + decl.name + "' needs " +
                               (size == SIZE_MAX ? "at least 2^64" : std::to_string(size)) +
                               " entries; found " + std::to_string(count));
  charge_list(source, entry.value);
  if (!vel_node_get_table(decl.node))
    source.fail(entry.key, "cannot make the table of '" + decl.name + "': " + library_reason());
  std::vector<double> entries;
  entries.reserve(count);
  for (const YAML::Node &item : entry.value) {
    const double value = read_number(source, item, "a table entry");
    // Entries are stored as floats: anything beyond float range would not fit.
    if (!(std::fabs(value) <= std::numeric_limits<float>::max()))
      source.fail(item, "a table entry must be a finite number in single-precision range");
    entries.push_back(value);
  }
  if (vel_node_set_table_data(decl.node, entries.data(), count) != 0)
    source.fail(entry.key, "cannot set the table of '" + decl.name + "': " + library_reason());
}

}  // namespace

void attach_models_and_tables(const Source &source, std::vector<NodeDecl> &decls,
                              std::size_t default_samples) {
  for (NodeDecl &decl : decls) {
    const Entry model = find(decl.map, "model");
    const Entry table = find(decl.map, "table");
    if (model.present() && table.present())
      source.fail(table.key, "node '" + decl.name + "' has both a model and a table");
    if (model.present()) attach_model(source, decl, model, default_samples);
    if (table.present()) attach_table(source, decl, table);
  }
}

}  // namespace vel::io::detail
