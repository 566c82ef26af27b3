// The warnings of vel check: what the library accepts but is almost
// certainly a mistake.  Expressions are walked whole, so that a branch the
// tables never take is looked at too.
#include <cmath>
#include <string>
#include <unordered_map>

#include "check_findings.h"
#include "io/table_output.h"
#include "io/table_view.h"

namespace vel::cli {

namespace {

std::string name_of(const vel_node_t *node) { return vel_node_get_name(node); }

std::size_t states_of(const vel_node_t *node) { return vel_node_get_number_of_states(node); }

bool has_label(const vel_node_t *node, const char *label) {
  for (std::size_t s = 0; s < states_of(node); ++s)
    if (std::string(vel_node_get_state_label(node, s)) == label) return true;
  return false;
}

bool has_value(const vel_node_t *node, double value) {
  for (std::size_t s = 0; s < states_of(node); ++s)
    if (vel_node_get_state_value(node, s) == value) return true;
  return false;
}

bool in_some_interval(const vel_node_t *node, double value) {
  for (std::size_t s = 0; s < states_of(node); ++s)
    if (vel_node_get_state_value(node, s) <= value && value < vel_node_get_state_value(node, s + 1))
      return true;
  return false;
}

int subtype(const vel_node_t *node) { return vel_node_get_subtype(node); }

const char *subtype_phrase(const vel_node_t *node) {
  switch (subtype(node)) {
    case vel_subtype_labeled: return "a labeled node";
    case vel_subtype_boolean: return "a boolean node";
    case vel_subtype_numbered: return "a numbered node";
    case vel_subtype_interval: return "an interval node";
    default: return "a node without states";
  }
}

// Walks one expression of `node`'s model and reports what names no state.
class ExpressionWalk {
 public:
  ExpressionWalk(vel_node_t *node, io::Position at, Findings &findings)
      : node_(node), at_(at), findings_(findings) {}

  // `result`: the subtree's value becomes the node's (not a condition or a
  // parameter).
  void walk(const vel_expression_t *e, bool result) {
    const int code = vel_expression_get_operator(e);
    if (result) check_result(e, code);
    if (code == vel_op_equals || code == vel_op_not_equals) check_comparison(e);
    if (code >= vel_op_number) return;
    for (std::size_t i = 0; const vel_expression_t *argument = vel_expression_get_argument(e, i); ++i)
      walk(argument, result && passes_result(e, code, i));
  }

 private:
  void warn(const std::string &text) { findings_.warning(at_, name_of(node_), text); }

  // Which arguments carry the value of a conditional or truncation.
  static bool passes_result(const vel_expression_t *e, int code, std::size_t i) {
    if (code == vel_op_if) return i > 0;
    if (code != vel_op_truncate) return false;
    const vel_expression_t *argument = vel_expression_get_argument(e, i);
    return vel_expression_get_type(argument) == vel_type_distribution ||
           vel_expression_get_operator(argument) == vel_op_if;
  }

  void check_comparison(const vel_expression_t *e) {
    const vel_expression_t *a = vel_expression_get_argument(e, 0);
    const vel_expression_t *b = vel_expression_get_argument(e, 1);
    if (vel_expression_get_operator(a) != vel_op_node) std::swap(a, b);
    if (vel_expression_get_operator(a) != vel_op_node) return;
    const vel_node_t *other = vel_expression_get_node(a);
    const int constant = vel_expression_get_operator(b);
    if (constant == vel_op_label && subtype(other) == vel_subtype_labeled &&
        !has_label(other, vel_expression_get_label(b)))
      warn(name_of(other) + " has no state labeled \"" + vel_expression_get_label(b) + "\"");
    if (constant == vel_op_number && subtype(other) == vel_subtype_numbered &&
        !has_value(other, vel_expression_get_number(b)))
      warn(name_of(other) + " has no state with value " +
           io::shortest_text(vel_expression_get_number(b)));
  }

  void check_result(const vel_expression_t *e, int code) {
    const int own = subtype(node_);
    if (code == vel_op_label && own == vel_subtype_labeled &&
        !has_label(node_, vel_expression_get_label(e)))
      warn(name_of(node_) + " has no state labeled \"" + vel_expression_get_label(e) + "\"");
    if (code == vel_op_number && own == vel_subtype_numbered &&
        !has_value(node_, vel_expression_get_number(e)))
      warn(name_of(node_) + " has no state with value " + io::shortest_text(vel_expression_get_number(e)));
    if (code == vel_op_number && own == vel_subtype_interval &&
        !in_some_interval(node_, vel_expression_get_number(e)))
      warn(name_of(node_) + " has no interval that holds " +
           io::shortest_text(vel_expression_get_number(e)));
    check_distribution(e, code, own);
  }

  void check_distribution(const vel_expression_t *e, int code, int own) {
    const char *name = code <= vel_op_aggregate ? vel_operator_name(code) : nullptr;
    if (!name) return;
    const std::string applies = std::string(name) + " applies to ";
    const std::string but = ", but " + name_of(node_) + " is " + subtype_phrase(node_);
    const bool continuous = code >= vel_op_Normal && code <= vel_op_PERT;
    const bool counts = code >= vel_op_Binomial && code <= vel_op_Geometric;
    if (code == vel_op_Uniform) {
      if (own != vel_subtype_interval && own != vel_subtype_numbered)
        warn(applies + "interval and numbered nodes" + but);
    } else if (continuous && own != vel_subtype_interval) {
      warn(applies + "interval nodes" + but);
    } else if (counts && own != vel_subtype_interval && own != vel_subtype_numbered) {
      warn(applies + "numbered and interval nodes" + but);
    } else if (code == vel_op_NoisyOR && own != vel_subtype_boolean) {
      warn(applies + "boolean nodes" + but);
    } else if (code == vel_op_Distribution) {
      std::size_t weights = 0;
      while (vel_expression_get_argument(e, weights)) ++weights;
      if (weights != states_of(node_))
        warn("Distribution has " + std::to_string(weights) + " weights, but " + name_of(node_) +
             " has " + std::to_string(states_of(node_)) + " states");
    }
  }

  vel_node_t *node_;
  io::Position at_;
  Findings &findings_;
};

void check_labels(const io::LoadedModel &model, vel_node_t *node, Findings &findings) {
  if (subtype(node) != vel_subtype_labeled) return;
  std::unordered_map<std::string, std::size_t> first;
  for (std::size_t s = 0; s < states_of(node); ++s) {
    const std::string label = vel_node_get_state_label(node, s);
    const auto [earlier, fresh] = first.emplace(label, s);
    if (!fresh)
      findings.warning(item_position(model, node, &io::NodeSource::states), name_of(node),
                       "duplicate state label \"" + label + "\" (states " +
                           std::to_string(earlier->second) + " and " + std::to_string(s) + ")");
  }
}

std::string row_text(const io::detail::TableView &view, std::size_t row) {
  if (view.row_nodes.empty()) return "the table";
  const std::vector<std::size_t> states = view.row_states(row);
  std::string text = "the row for ";
  for (std::size_t i = 0; i < states.size(); ++i)
    text += (i ? ", " : "") + name_of(view.row_nodes[i]) + " = " + io::state_text(view.row_nodes[i], states[i]);
  return text;
}

void check_table(const io::LoadedModel &model, vel_node_t *node, Findings &findings) {
  const auto source = model.sources.find(node);
  if (source == model.sources.end() || source->second.table.line == 0) return;
  if (vel_node_get_kind(node) != vel_kind_discrete) return;  // utilities need not sum to 1
  const io::detail::TableView view = io::detail::view_table(node);
  const io::Position at = source->second.table;
  for (std::size_t row = 0; row < view.rows; ++row) {
    double sum = 0.0;
    for (std::size_t column = 0; column < view.columns.size(); ++column) {
      const float entry = view.entry(row, column);
      sum += entry;
      if (entry < 0)
        findings.warning(at, name_of(node), row_text(view, row) + " has a negative entry (" +
                                                 io::shortest_text(entry) + ")");
    }
    if (!(std::fabs(sum - 1.0) <= 1e-6))
      findings.warning(at, name_of(node), row_text(view, row) + " sums to " + io::shortest_text(static_cast<float>(sum)) +
                                               ", not 1");
  }
}

void check_expressions(const io::LoadedModel &model, vel_node_t *node, Findings &findings) {
  vel_model_t *node_model = vel_node_get_model(node);
  if (!node_model) return;
  const std::size_t size = vel_model_get_size(node_model);
  for (std::size_t i = 0; i < size; ++i) {
    const vel_expression_t *e = vel_model_get_expression(node_model, i);
    if (!e) continue;
    ExpressionWalk(node, expression_position(model, node, static_cast<long>(i)), findings).walk(e, true);
  }
}

}  // namespace

void find_warnings(const io::LoadedModel &model, Findings &findings) {
  for (vel_node_t *node = vel_domain_get_first_node(model.domain.get()); node; node = vel_node_get_next(node)) {
    check_labels(model, node, findings);
    check_table(model, node, findings);
    check_expressions(model, node, findings);
  }
}

}  // namespace vel::cli
