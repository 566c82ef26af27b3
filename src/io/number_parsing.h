// Numbers in the text of the files the loaders read.
#pragma once

#include <string_view>

namespace vel::io::detail {

// The numeric value of `text`: decimal text, the infinities "inf"/"-inf"
// (also YAML's ".inf"/"-.inf") and decimal text beyond double range, as
// +-vel_infinity, and NaN ("nan", ".nan").  False if it is no number.
bool parse_number(std::string_view text, double &value);

}  // namespace vel::io::detail
