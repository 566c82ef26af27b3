// Recursive-descent parser of the expression text form.  Trees are built
// through the public constructors, so the parser can only produce what the
// builder accepts; it checks names, arities and nesting itself first so that
// the message names the position and what was expected.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "host/record_queries.h"
#include "common/error.h"
#include "host/lexer.h"
#include "host/operators.h"
#include "host/records.h"
#include "vel/vel.h"

namespace vel::host {
namespace {

// Nesting of parentheses, calls and operators, and height of the tree: the
// builder refuses trees higher than this, and the limit also bounds the
// parser's own recursion.
constexpr int max_nesting = 1000;
constexpr const char *nesting_message = "nesting deeper than 1000";

struct ExpressionDeleter {
  void operator()(vel_expression_t *expression) const { vel_expression_delete(expression); }
};
using Owned = std::unique_ptr<vel_expression_t, ExpressionDeleter>;

struct Parsed {
  Owned expression;
  int height = 1;     // records on the longest path down to a leaf
  size_t offset = 0;  // where the subexpression starts in the text
};

struct SyntaxError {
  size_t offset;
  std::string message;
  int code;
};

bool is_number_leaf(const vel_expression_t *expression) {
  return expression->operator_ == vel_op_number;
}

int comparison_code(TokenKind kind) {
  switch (kind) {
    case TokenKind::equals: return vel_op_equals;
    case TokenKind::not_equals: return vel_op_not_equals;
    case TokenKind::less: return vel_op_less_than;
    case TokenKind::greater: return vel_op_greater_than;
    case TokenKind::less_or_equal: return vel_op_less_or_equal;
    case TokenKind::greater_or_equal: return vel_op_greater_or_equal;
    default: return 0;
  }
}

// Error paths live out of line so that the frames of the recursive parsing
// functions stay small: the nesting limit is what bounds the stack.
[[noreturn, gnu::noinline, gnu::cold]] void fail(size_t offset, std::string message,
                                                 int code = vel_error_usage) {
  throw SyntaxError{offset, std::move(message), code};
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_unexpected(const Token &token) {
  fail(token.offset, "unexpected '" + std::string(token.text) + "'");
}

// The builder's refusal (out of memory, say) keeps its own code and text.
[[noreturn, gnu::noinline, gnu::cold]] void builder_failed(size_t offset) {
  int code = _vel_error_code != 0 ? _vel_error_code : vel_error_usage;
  fail(offset, vel_error_message(), code);
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_after_argument(size_t offset, size_t count,
                                                                const char *call) {
  fail(offset, "expected ',' or ')' after argument " + std::to_string(count) + " of " + call);
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_unknown_function(size_t offset,
                                                                  std::string_view name) {
  fail(offset, "unknown function '" + std::string(name) + "'");
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_unknown_node(size_t offset,
                                                              std::string_view name,
                                                              const vel_node_t *node) {
  const char *own = vel_node_get_name(node);
  fail(offset, "unknown node '" + std::string(name) + "': not a parent of " +
                   (own ? own : "the node"));
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_arity(size_t offset, const OperatorInfo &info,
                                                       size_t count) {
  fail(offset, arity_message(info, count));
}

[[noreturn, gnu::noinline, gnu::cold]] void fail_argument(size_t offset, const char *call,
                                                          size_t index, const char *what) {
  fail(offset, std::string(call) + ": argument " + std::to_string(index + 1) + " " + what);
}

Parsed leaf(vel_expression_t *expression, size_t offset) {
  if (!expression) builder_failed(offset);
  return Parsed{Owned(expression), 1, offset};
}

// Builds operator `code` over `count` arguments; `offset` locates the
// operator for messages, `start` is where its text begins.
[[gnu::noinline]] Parsed make(int code, Parsed *arguments, size_t count, size_t offset,
                              size_t start) {
  int height = 0;
  for (size_t i = 0; i < count; ++i) height = std::max(height, arguments[i].height);
  if (height + 1 > max_nesting) fail(offset, nesting_message);
  std::vector<vel_expression_t *> list(count + 1, nullptr);
  for (size_t i = 0; i < count; ++i) list[i] = arguments[i].expression.get();
  vel_expression_t *made = vel_make_operator(code, list.data());
  if (!made) builder_failed(offset);
  for (size_t i = 0; i < count; ++i) arguments[i].expression.release();
  return Parsed{Owned(made), height + 1, start};
}

// Replaces `left` by the operator `code` over `left` and `right`.
[[gnu::noinline]] void combine(int code, Parsed &left, Parsed &right, size_t offset) {
  Parsed pair[2] = {std::move(left), std::move(right)};
  size_t start = pair[0].offset;
  left = make(code, pair, 2, offset, start);
}

// A minus on a constant is the negative constant (so -0 is -0.0).
[[gnu::noinline]] void negate(Parsed &operand, size_t offset) {
  if (is_number_leaf(operand.expression.get())) {
    operand = leaf(vel_make_number(-operand.expression->number), offset);
    return;
  }
  operand = make(vel_op_negate, &operand, 1, offset, offset);
}

[[gnu::noinline]] void check_arguments(const OperatorInfo &info, std::vector<Parsed> &arguments,
                                       size_t offset) {
  if (!arity_fits(info, static_cast<int>(arguments.size())))
    fail_arity(offset, info, arguments.size());
  for (size_t i = 0; i < arguments.size(); ++i) {
    // Only the first arguments can be required node references.
    if (i < 32 && (info.node_arguments >> i & 1u) &&
        arguments[i].expression->operator_ != vel_op_node)
      fail_argument(arguments[i].offset, info.name, i, "must be a node name");
  }
  if (info.needs_node && !refers_to(arguments[0].expression.get(), nullptr))
    fail_argument(arguments[0].offset, info.name, 0, "must refer to a node");
}

// Recursive descent over the grammar.  `level` counts the parentheses, call
// arguments and operator operands around the current position; every
// recursion goes one level deeper, so the limit bounds the stack as well.
class Parser {
 public:
  Parser(std::string_view text, vel_node_t *node) : text_(text), node_(node) { advance(); }

  Owned parse() {
    Parsed result = expression(1);
    if (token_.kind == TokenKind::right_paren) fail(token_.offset, "unexpected ')'");
    if (token_.kind != TokenKind::end) fail_unexpected(token_);
    return std::move(result.expression);
  }

 private:
  [[gnu::noinline]] void advance() {
    LexError error;
    if (!read_token(text_, cursor_, token_, error)) fail(error.offset, std::move(error.message));
  }

  void check_nesting(int level) {
    if (level > max_nesting) fail(token_.offset, nesting_message);
  }

  // comparison := sum [compare-op sum]
  Parsed expression(int level) {
    check_nesting(level);
    Parsed left = sum(level);
    int code = comparison_code(token_.kind);
    if (code == 0) return left;
    size_t offset = token_.offset;
    advance();
    Parsed right = sum(level);
    combine(code, left, right, offset);
    if (comparison_code(token_.kind) != 0)
      fail(token_.offset, "comparison operators do not chain");
    return left;
  }

  // Sums of products, both left-associative, in one loop: `total` holds the
  // sum so far (waiting for its next term under `pending`), `term` the
  // product being built.
  Parsed sum(int level) {
    Parsed total;
    int pending = 0;
    size_t pending_offset = 0;
    Parsed term = unary(level);
    for (;;) {
      TokenKind kind = token_.kind;
      size_t offset = token_.offset;
      if (kind == TokenKind::star || kind == TokenKind::slash) {
        advance();
        Parsed right = unary(level);
        combine(kind == TokenKind::star ? vel_op_multiply : vel_op_divide, term, right, offset);
        continue;
      }
      if (pending != 0) combine(pending, total, term, pending_offset);
      else total = std::move(term);
      if (kind != TokenKind::plus && kind != TokenKind::minus) return total;
      pending = kind == TokenKind::plus ? vel_op_add : vel_op_subtract;
      pending_offset = offset;
      advance();
      term = unary(level);
    }
  }

  // unary := '-' unary | primary ['^' unary]
  Parsed unary(int level) {
    check_nesting(level);
    size_t offset = token_.offset;
    if (token_.kind == TokenKind::minus) {
      advance();
      Parsed operand = unary(level + 1);
      negate(operand, offset);
      return operand;
    }
    Parsed base = primary(level);
    if (token_.kind != TokenKind::caret) return base;
    offset = token_.offset;
    advance();
    Parsed exponent = unary(level + 1);
    combine(vel_op_power, base, exponent, offset);
    return base;
  }

  Parsed primary(int level) {
    size_t offset = token_.offset;
    switch (token_.kind) {
      case TokenKind::number:
      case TokenKind::label:
        return constant();
      case TokenKind::name: {
        std::string_view name = token_.text;
        advance();
        if (token_.kind == TokenKind::left_paren) return call(name, offset, level);
        return named(name, offset);
      }
      case TokenKind::left_paren: {
        advance();
        Parsed inner = expression(level + 1);
        if (token_.kind != TokenKind::right_paren) fail(token_.offset, "expected ')'");
        advance();
        inner.offset = offset;
        return inner;
      }
      default:
        fail(offset, "expected an expression");
    }
  }

  [[gnu::noinline]] Parsed constant() {
    size_t offset = token_.offset;
    Parsed result = leaf(token_.kind == TokenKind::number ? vel_make_number(token_.number)
                                                          : vel_make_label(token_.label.c_str()),
                         offset);
    advance();
    return result;
  }

  // `true`, `false`, or a parent of the node.
  [[gnu::noinline]] Parsed named(std::string_view name, size_t offset) {
    if (name == "true" || name == "false") return leaf(vel_make_truth(name == "true"), offset);
    vel_node_t *const *parents = vel_node_get_parents(node_);
    for (vel_node_t *const *parent = parents; parent && *parent; ++parent) {
      const char *parent_name = vel_node_get_name(*parent);
      if (parent_name && name == parent_name) return leaf(vel_make_node_reference(*parent), offset);
    }
    fail_unknown_node(offset, name, node_);
  }

  [[gnu::noinline]] Parsed call(std::string_view name, size_t offset, int level) {
    const OperatorInfo *info = find_call(name);
    if (!info) fail_unknown_function(offset, name);
    advance();  // past '('
    std::vector<Parsed> arguments;
    if (token_.kind != TokenKind::right_paren) {
      for (;;) {
        arguments.push_back(expression(level + 1));
        if (token_.kind == TokenKind::right_paren) break;
        if (token_.kind != TokenKind::comma)
          fail_after_argument(token_.offset, arguments.size(), info->name);
        advance();
      }
    }
    advance();  // past ')'
    check_arguments(*info, arguments, offset);
    return make(info->code, arguments.data(), arguments.size(), offset, offset);
  }

  std::string_view text_;
  vel_node_t *node_;
  size_t cursor_ = 0;
  Token token_;
};

// 1-based position in characters (UTF-8 continuation bytes do not count).
long character_position(std::string_view text, size_t offset) {
  long position = 1;
  for (size_t i = 0; i < offset && i < text.size(); ++i)
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) ++position;
  return position;
}

}  // namespace
}  // namespace vel::host

extern "C" vel_expression_t *vel_parse_expression(const char *text, vel_node_t *node) {
  using namespace vel::host;
  if (!text || !node) {
    vel::set_error_message(!text ? "no expression text given" : "no node given", 0);
    vel::fail(vel_error_usage);
    return nullptr;
  }
  std::string_view view(text, std::strlen(text));
  try {
    Owned result = Parser(view, node).parse();
    _vel_error_code = vel_error_none;
    return result.release();
  } catch (const SyntaxError &error) {
    vel::set_error_message(error.message.c_str(), character_position(view, error.offset));
    vel::fail(error.code);
  } catch (const std::bad_alloc &) {
    vel::set_error_message("out of memory while parsing", 0);
    vel::fail(vel_error_out_of_memory);
  } catch (...) {
    vel::set_error_message("internal error while parsing", 0);
    vel::fail(vel_error_usage);
  }
  return nullptr;
}
