// The expression parser: whatever parses must print, the printed text must
// parse again, and printing that tree must give the same text.  Names are
// resolved against a fixed node with a parent of every kind.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vel/vel.h"

namespace {

vel_node_t *make_parent(vel_domain_t *domain, int kind, int subtype, const char *name) {
  vel_node_t *parent = vel_domain_new_node(domain, vel_category_chance, kind, subtype, name);
  if (subtype == vel_subtype_labeled) {
    vel_node_set_number_of_states(parent, 2);
    vel_node_set_state_label(parent, 0, "low");
    vel_node_set_state_label(parent, 1, "high");
  } else if (subtype == vel_subtype_numbered || subtype == vel_subtype_interval) {
    vel_node_set_number_of_states(parent, 2);
    for (std::size_t i = 0; i < (subtype == vel_subtype_interval ? 3u : 2u); ++i)
      vel_node_set_state_value(parent, i, static_cast<double>(i));
  }
  return parent;
}

// A real-valued function node X whose parents are A (labeled), B (boolean),
// N (numbered), I (interval), C (continuous) and F (real-valued function).
vel_node_t *fixed_node() {
  static vel_node_t *node = [] {
    vel_domain_t *domain = vel_domain_new();
    vel_node_t *x = vel_domain_new_node(domain, vel_category_function, vel_kind_stateless,
                                        vel_subtype_none, "X");
    vel_node_t *parents[] = {
        make_parent(domain, vel_kind_discrete, vel_subtype_labeled, "A"),
        make_parent(domain, vel_kind_discrete, vel_subtype_boolean, "B"),
        make_parent(domain, vel_kind_discrete, vel_subtype_numbered, "N"),
        make_parent(domain, vel_kind_discrete, vel_subtype_interval, "I"),
        make_parent(domain, vel_kind_continuous, vel_subtype_none, "C"),
        vel_domain_new_node(domain, vel_category_function, vel_kind_stateless, vel_subtype_none, "F")};
    for (vel_node_t *parent : parents)
      if (vel_node_add_parent(x, parent) != 0) std::abort();
    return x;
  }();
  return node;
}

[[noreturn]] void fail(const char *what, const std::string &input, const std::string &text) {
  std::fprintf(stderr, "%s\ninput: %s\ntext:  %s\nerror: %s\n", what, input.c_str(), text.c_str(),
               vel_error_message());
  std::abort();
}

std::string printed(const vel_expression_t *expression, const std::string &input) {
  const std::size_t length = vel_expression_print(expression, nullptr, 0);
  if (length == static_cast<std::size_t>(-1)) fail("a parsed expression does not print", input, "");
  std::string text(length + 1, '\0');
  if (vel_expression_print(expression, text.data(), text.size()) != length)
    fail("printing twice gives different lengths", input, "");
  text.resize(length);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string input(reinterpret_cast<const char *>(data), size);
  vel_node_t *node = fixed_node();
  vel_expression_t *expression = vel_parse_expression(input.c_str(), node);
  if (!expression) {
    if (vel_error_code() == vel_error_none || vel_error_message()[0] == '\0')
      fail("a refusal without an error code and message", input, "");
    return 0;
  }
  const std::string first = printed(expression, input);
  vel_expression_delete(expression);

  vel_expression_t *again = vel_parse_expression(first.c_str(), node);
  if (!again) fail("printed text does not parse", input, first);
  const std::string second = printed(again, input);
  vel_expression_delete(again);
  if (second != first) fail("printing the reparsed tree gives other text", input, first + "\n       " + second);
  return 0;
}
