// Files read whole, and the names files give to what they hold.
#pragma once

#include <string>

namespace vel::io {

// The bytes of the file at `path`; throws LoadError "PATH: reason" when it
// cannot be read.
std::string read_file_text(const std::string &path);

// The file name without directory and extension ("weather" for
// "models/weather.yaml").
std::string file_stem(const std::string &path);

}  // namespace vel::io
