// Prints an expression in the text form the parser reads, with the fewest
// parentheses that keep the tree's shape.  Binary operators, `^` included,
// are written with a space on each side ("a + b * c", "2 ^ -1"); unary minus
// is written against its operand ("-x", "--x").
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <string>

#include "common/error.h"
#include "host/operators.h"
#include "host/records.h"
#include "vel/vel.h"

namespace vel::host {
namespace {

constexpr int max_depth = 1000;

// Binding strength of what an expression prints as; an operand slot asks for
// at least a given strength and parenthesises anything weaker.
enum Precedence {
  any_precedence = 0,
  comparison_precedence = 1,
  additive_precedence = 2,
  multiplicative_precedence = 3,
  unary_precedence = 4,
  power_precedence = 5,
  primary_precedence = 6,
};

struct PrintError {
  const char *message;
};

bool is_comparison(uint32_t code) {
  return code >= vel_op_equals && code <= vel_op_greater_or_equal;
}

bool is_negative_number(const vel_expression_t *expression) {
  return expression->operator_ == vel_op_number && std::signbit(expression->number);
}

int precedence(const vel_expression_t *expression) {
  uint32_t code = expression->operator_;
  if (is_comparison(code)) return comparison_precedence;
  if (code == vel_op_add || code == vel_op_subtract) return additive_precedence;
  if (code == vel_op_multiply || code == vel_op_divide) return multiplicative_precedence;
  if (code == vel_op_negate || is_negative_number(expression)) return unary_precedence;
  if (code == vel_op_power) return power_precedence;
  return primary_precedence;
}

// Strength each operand slot of a binary operator needs: left, right.
void operand_precedences(uint32_t code, int &left, int &right) {
  if (is_comparison(code)) {
    left = right = additive_precedence;  // a < b < c does not parse
  } else if (code == vel_op_add || code == vel_op_subtract) {
    left = additive_precedence;
    right = multiplicative_precedence;
  } else if (code == vel_op_multiply || code == vel_op_divide) {
    left = multiplicative_precedence;
    right = unary_precedence;
  } else {  // power: a primary base, a unary exponent (right-associative)
    left = primary_precedence;
    right = unary_precedence;
  }
}

void append_number(std::string &out, double value) {
  if (!std::isfinite(value)) throw PrintError{"number leaf is not finite"};
  char digits[32];
  auto result = std::to_chars(digits, digits + sizeof digits, value);
  out.append(digits, result.ptr);
}

void append_label(std::string &out, const char *label) {
  if (!label) throw PrintError{"label leaf without text"};
  out += '"';
  for (const char *c = label; *c; ++c) {
    if (*c == '"' || *c == '\\') out += '\\';
    out += *c;
  }
  out += '"';
}

void print(std::string &out, const vel_expression_t *expression, int depth);

void print_operand(std::string &out, const vel_expression_t *operand, int required, int depth,
                   bool force_parentheses = false) {
  if (!operand) throw PrintError{"missing argument"};
  bool parenthesise = force_parentheses || precedence(operand) < required;
  if (parenthesise) out += '(';
  print(out, operand, depth);
  if (parenthesise) out += ')';
}

void print(std::string &out, const vel_expression_t *expression, int depth) {
  if (depth > max_depth) throw PrintError{"expression nested deeper than 1000"};
  uint32_t code = expression->operator_;
  switch (code) {
    case vel_op_number: append_number(out, expression->number); return;
    case vel_op_label: append_label(out, expression->label); return;
    case vel_op_truth: out += expression->truth ? "true" : "false"; return;
    case vel_op_node: {
      const char *name = expression->node ? vel_node_get_name(expression->node) : nullptr;
      if (!name) throw PrintError{"node reference without a named node"};
      out += name;
      return;
    }
    default: break;
  }
  const OperatorInfo *info = find_operator(static_cast<int>(code));
  if (!info) throw PrintError{"unknown operator code"};
  vel_expression_t *const *arguments = expression->arguments;
  if (code == vel_op_negate) {
    out += '-';
    // "-(-3)": without parentheses the minus would fold into the constant.
    const vel_expression_t *operand = arguments ? arguments[0] : nullptr;
    print_operand(out, operand, unary_precedence, depth + 1,
                  operand && is_negative_number(operand));
    return;
  }
  if (!info->is_call) {
    if (!arguments || !arguments[0]) throw PrintError{"missing argument"};
    int left = 0;
    int right = 0;
    operand_precedences(code, left, right);
    print_operand(out, arguments[0], left, depth + 1);
    out += ' ';
    out += info->name;
    out += ' ';
    print_operand(out, arguments[1], right, depth + 1);
    return;
  }
  out += info->name;
  out += '(';
  for (size_t i = 0; arguments && arguments[i]; ++i) {
    if (i > 0) out += ", ";
    print_operand(out, arguments[i], any_precedence, depth + 1);
  }
  out += ')';
}

}  // namespace
}  // namespace vel::host

extern "C" size_t vel_expression_print(const vel_expression_t *expression, char *buffer,
                                       size_t size) {
  constexpr size_t failure = static_cast<size_t>(-1);
  if (size > 0 && buffer) buffer[0] = '\0';
  if (!expression || (!buffer && size > 0)) {
    vel::set_error_message(!expression ? "no expression given" : "no buffer given", 0);
    vel::fail(vel_error_usage);
    return failure;
  }
  try {
    std::string text;
    vel::host::print(text, expression, 1);
    if (size > 0) {
      size_t copied = text.size() < size ? text.size() : size - 1;
      std::memcpy(buffer, text.data(), copied);
      buffer[copied] = '\0';
    }
    _vel_error_code = vel_error_none;
    return text.size();
  } catch (const vel::host::PrintError &error) {
    vel::set_error_message(error.message, 0);
    vel::fail(vel_error_usage);
  } catch (const std::bad_alloc &) {
    vel::set_error_message("out of memory while printing", 0);
    vel::fail(vel_error_out_of_memory);
  }
  return failure;
}
