// Recursive-descent parser of the expression text form.  Trees are built
// through the public constructors, so the parser can only produce what the
// builder accepts; it checks names, arities and nesting itself first so that
// the message names the position and what was expected.
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

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

bool refers_to_node(const vel_expression_t *expression) {
  if (expression->operator_ == vel_op_node) return true;
  if (expression->operator_ >= vel_op_number || expression->arguments == nullptr) return false;
  for (vel_expression_t *const *argument = expression->arguments; *argument; ++argument)
    if (refers_to_node(*argument)) return true;
  return false;
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

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

std::string ordinal_argument(const char *call, size_t index) {
  return std::string(call) + ": argument " + std::to_string(index + 1);
}

class Parser {
 public:
  Parser(std::string_view text, vel_node_t *node) : text_(text), node_(node) { advance(); }

  Owned parse() {
    Parsed result = expression(1);
    if (token_.kind != TokenKind::end) fail(token_.offset, "unexpected " + quoted(token_.text));
    return std::move(result.expression);
  }

 private:
  [[noreturn]] void fail(size_t offset, std::string message, int code = vel_error_usage) {
    throw SyntaxError{offset, std::move(message), code};
  }

  void advance() {
    LexError error;
    if (!read_token(text_, cursor_, token_, error)) fail(error.offset, std::move(error.message));
  }

  void check_nesting(int level) {
    if (level > max_nesting) fail(token_.offset, nesting_message);
  }

  // The builder's refusal (out of memory, say) keeps its own code and text.
  [[noreturn]] void builder_failed(size_t offset) {
    int code = _vel_error_code != 0 ? _vel_error_code : vel_error_usage;
    fail(offset, vel_error_message(), code);
  }

  Parsed leaf(vel_expression_t *expression, size_t offset) {
    if (!expression) builder_failed(offset);
    return Parsed{Owned(expression), 1, offset};
  }

  // Builds operator `code` over `arguments`; `offset` locates the operator.
  Parsed make(int code, std::vector<Parsed> &arguments, size_t offset, size_t start) {
    int height = 0;
    for (const Parsed &argument : arguments) height = std::max(height, argument.height);
    if (height + 1 > max_nesting) fail(offset, nesting_message);
    std::vector<vel_expression_t *> list;
    list.reserve(arguments.size() + 1);
    for (const Parsed &argument : arguments) list.push_back(argument.expression.get());
    list.push_back(nullptr);
    vel_expression_t *made = vel_make_operator(code, list.data());
    if (!made) builder_failed(offset);
    for (Parsed &argument : arguments) argument.expression.release();
    return Parsed{Owned(made), height + 1, start};
  }

  Parsed binary(int code, Parsed left, Parsed right, size_t offset) {
    size_t start = left.offset;
    std::vector<Parsed> arguments;
    arguments.push_back(std::move(left));
    arguments.push_back(std::move(right));
    return make(code, arguments, offset, start);
  }

  Parsed expression(int level) {
    check_nesting(level);
    return comparison(level);
  }

  Parsed comparison(int level) {
    Parsed left = additive(level);
    int code = comparison_code(token_.kind);
    if (code == 0) return left;
    size_t offset = token_.offset;
    advance();
    Parsed right = additive(level);
    Parsed result = binary(code, std::move(left), std::move(right), offset);
    if (comparison_code(token_.kind) != 0) fail(token_.offset, "comparison operators do not chain");
    return result;
  }

  Parsed additive(int level) {
    Parsed left = multiplicative(level);
    while (token_.kind == TokenKind::plus || token_.kind == TokenKind::minus) {
      int code = token_.kind == TokenKind::plus ? vel_op_add : vel_op_subtract;
      size_t offset = token_.offset;
      advance();
      Parsed right = multiplicative(level);
      left = binary(code, std::move(left), std::move(right), offset);
    }
    return left;
  }

  Parsed multiplicative(int level) {
    Parsed left = unary(level);
    while (token_.kind == TokenKind::star || token_.kind == TokenKind::slash) {
      int code = token_.kind == TokenKind::star ? vel_op_multiply : vel_op_divide;
      size_t offset = token_.offset;
      advance();
      Parsed right = unary(level);
      left = binary(code, std::move(left), std::move(right), offset);
    }
    return left;
  }

  Parsed unary(int level) {
    check_nesting(level);
    if (token_.kind != TokenKind::minus) return power(level);
    size_t offset = token_.offset;
    advance();
    Parsed operand = unary(level + 1);
    // A minus on a constant is the negative constant (so -0 is -0.0).
    if (is_number_leaf(operand.expression.get()))
      return leaf(vel_make_number(-operand.expression->number), offset);
    std::vector<Parsed> arguments;
    arguments.push_back(std::move(operand));
    return make(vel_op_negate, arguments, offset, offset);
  }

  Parsed power(int level) {
    Parsed base = primary(level);
    if (token_.kind != TokenKind::caret) return base;
    size_t offset = token_.offset;
    advance();
    Parsed exponent = unary(level + 1);
    return binary(vel_op_power, std::move(base), std::move(exponent), offset);
  }

  Parsed primary(int level) {
    size_t offset = token_.offset;
    switch (token_.kind) {
      case TokenKind::number: {
        double value = token_.number;
        advance();
        return leaf(vel_make_number(value), offset);
      }
      case TokenKind::label: {
        Parsed result = leaf(vel_make_label(token_.label.c_str()), offset);
        advance();
        return result;
      }
      case TokenKind::name: {
        std::string_view name = token_.text;
        advance();
        if (token_.kind == TokenKind::left_paren) return call(name, offset, level);
        if (name == "true" || name == "false") return leaf(vel_make_truth(name == "true"), offset);
        return reference(name, offset);
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

  Parsed reference(std::string_view name, size_t offset) {
    vel_node_t *const *parents = vel_node_get_parents(node_);
    for (vel_node_t *const *parent = parents; parent && *parent; ++parent) {
      const char *parent_name = vel_node_get_name(*parent);
      if (parent_name && name == parent_name) return leaf(vel_make_node_reference(*parent), offset);
    }
    const char *own = vel_node_get_name(node_);
    fail(offset, "unknown node " + quoted(name) + ": not a parent of " + (own ? own : "the node"));
  }

  Parsed call(std::string_view name, size_t offset, int level) {
    const OperatorInfo *info = find_call(name);
    if (!info) fail(offset, "unknown function " + quoted(name));
    advance();  // past '('
    std::vector<Parsed> arguments;
    if (token_.kind != TokenKind::right_paren) {
      for (;;) {
        arguments.push_back(expression(level + 1));
        if (token_.kind == TokenKind::right_paren) break;
        if (token_.kind != TokenKind::comma)
          fail(token_.offset, "expected ',' or ')' after argument " +
                                  std::to_string(arguments.size()) + " of " + info->name);
        advance();
      }
    }
    advance();  // past ')'
    check_arguments(*info, arguments, offset);
    return make(info->code, arguments, offset, offset);
  }

  void check_arguments(const OperatorInfo &info, const std::vector<Parsed> &arguments,
                       size_t offset) {
    int count = static_cast<int>(arguments.size());
    if (!arity_fits(info, count)) {
      std::string allowed = arity_text(info);
      std::string message = std::string(info.name) + " takes ";
      if (info.even_count)
        message += "an even number of arguments, 2 or more";
      else
        message += allowed + (allowed == "1" ? " argument" : " arguments");
      fail(offset, message + ", got " + std::to_string(count));
    }
    for (size_t i = 0; i < arguments.size(); ++i) {
      if ((info.node_arguments >> i & 1u) && arguments[i].expression->operator_ != vel_op_node)
        fail(arguments[i].offset, ordinal_argument(info.name, i) + " must be a node name");
    }
    if (info.needs_node && !refers_to_node(arguments[0].expression.get()))
      fail(arguments[0].offset, ordinal_argument(info.name, 0) + " must refer to a node");
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
