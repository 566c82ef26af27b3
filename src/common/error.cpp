#include "common/error.h"

#include <string>

extern "C" {
constinit thread_local int _vel_error_code [[gnu::tls_model("initial-exec")]] = 0;
}

namespace {

struct CodeInfo {
  int code;
  const char *name;
  const char *description;
};

constexpr CodeInfo code_table[] = {
    {vel_error_none, "vel_error_none", "success"},
    {vel_error_usage, "vel_error_usage",
     "bad argument to an entry point, or an argument outside a numerical routine's domain"},
    {vel_error_io, "vel_error_io", "a write to the log file failed"},
    {vel_error_out_of_memory, "vel_error_out_of_memory", "memory could not be allocated"},
    {vel_error_impossible_evidence, "vel_error_impossible_evidence",
     "the evidence is impossible: its probability is 0"},
    {vel_error_too_large, "vel_error_too_large",
     "a table or setting is beyond the library's documented limit"},
    {vel_error_not_compiled, "vel_error_not_compiled",
     "a value from inference is needed but the domain is not compiled"},
    {vel_error_negative_entry, "vel_error_negative_entry",
     "a generated probability or policy entry (or a forbidden negative utility entry) is below 0"},
    {vel_error_not_propagated, "vel_error_not_propagated",
     "a value from inference is needed but the junction tree holds no equilibrium"},
    {vel_error_invalid_expression, "vel_error_invalid_expression",
     "model without expressions, missing or unfitting expression, value without a state, "
     "or operator not applicable to the node"},
    {vel_error_division_by_zero, "vel_error_division_by_zero",
     "division by zero in a numeric expression"},
    {vel_error_invalid_argument, "vel_error_invalid_argument",
     "an operator argument or distribution parameter outside its domain"},
    {vel_error_computation, "vel_error_computation",
     "a numerical computation or a function-node value cannot be produced"},
    {vel_error_state_range, "vel_error_state_range",
     "the node's states do not cover a distribution's support, or do not suit a discrete distribution"},
    {vel_error_invalid_state_values, "vel_error_invalid_state_values",
     "state values not increasing, or infinite values used wrongly"},
    {vel_error_unsupported, "vel_error_unsupported",
     "an operator, value type or node subtype that the evaluator or discretizer does not handle"},
};

const CodeInfo *find(int code) {
  for (const CodeInfo &info : code_table)
    if (info.code == code) return &info;
  return nullptr;
}

thread_local std::string last_message;
thread_local long last_position = 0;
thread_local long failed_expression = -1;

}  // namespace

namespace vel {

void set_error_message(const char *text, long position) {
  try {
    last_message = text ? text : "";
  } catch (...) {
    last_message.clear();
  }
  last_position = position;
}

void set_failed_expression(long index) { failed_expression = index; }

}  // namespace vel

extern "C" {

int vel_error_code(void) { return _vel_error_code; }

const char *vel_error_name(int code) {
  const CodeInfo *info = find(code);
  return info ? info->name : "vel_error_unknown";
}

const char *vel_error_description(int code) {
  const CodeInfo *info = find(code);
  return info ? info->description : "unknown error code";
}

const char *vel_error_message(void) { return last_message.c_str(); }

long vel_error_position(void) { return last_position; }

long vel_error_expression_index(void) { return failed_expression; }

}
