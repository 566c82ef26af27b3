#pragma once

namespace vel::cli {

inline constexpr const char *program_version = "0.1.0";

}  // namespace vel::cli
