// The host's table of expression operators: call names, arities, which
// arguments must be node references, and the result type the builder sets.
// The builder and the parser share it so that both enforce the same shapes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vel::host {

struct OperatorInfo {
  int code;
  const char *name;        // call name ("Normal", "state_index") or infix symbol ("+")
  int min_arguments;
  int max_arguments;       // -1: no upper limit
  bool even_count;         // NoisyOR: arguments come in whole pairs
  uint32_t node_arguments; // bit i set: argument i must be a node reference
  bool needs_node;         // probability: the argument must refer to some node
  uint32_t result_type;    // type the builder sets; 0: set by typing (if)
  bool is_call;            // written as name(arguments) in the text form
  const char *parameters;  // what a call takes, for arity messages; nullptr: infix
};

// Operator with this code, or nullptr (leaves 114..117 included, with zero arities).
const OperatorInfo *find_operator(int code);
// Call operator with this name (codes 60..100 and state_index), or nullptr.
const OperatorInfo *find_call(std::string_view name);
// Whether `count` arguments suit the operator.
bool arity_fits(const OperatorInfo &info, int count);
// Human text of the allowed counts: "1 argument", "2 or 3 arguments",
// "1 or more arguments", "an even number of arguments, 2 or more".
const char *arity_text(const OperatorInfo &info);
// Why `count` arguments do not suit the operator, naming its parameters:
// "Weibull takes shape, scale and an optional location (2 or 3 arguments),
// got 1"; "operator - takes 2 arguments, got 1".
std::string arity_message(const OperatorInfo &info, std::size_t count);

}  // namespace vel::host
