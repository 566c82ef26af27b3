// Ownership of expression trees.
#pragma once

#include "host/records.h"

namespace vel::host {

// Deepest tree the builder accepts (a leaf has depth 1).
constexpr uint32_t max_expression_depth = 1000;

// Frees an expression and its whole subtree, whatever its owner.
void delete_tree(vel_expression_t *expression) noexcept;

}  // namespace vel::host
