// JSON text: every string and number that the program writes into a JSON
// document goes through these, so that escaping and number forms are the
// same everywhere.
#pragma once

#include <string>

namespace vel::io {

// A JSON string literal; bytes that are not UTF-8 become U+FFFD.
std::string json_string(const std::string &text);
// A number as its shortest text; non-finite values as the strings "nan",
// "inf", "-inf".
std::string json_number(float value);
std::string json_number(double value);

}  // namespace vel::io
