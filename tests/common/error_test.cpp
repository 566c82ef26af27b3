// Every error code's name and description, as users of the library and the
// program read them.
#include <gtest/gtest.h>

#include <cstring>

#include "case_file.h"
#include "vel/vel.h"

namespace {

TEST(ErrorCodes, NamesMatchTheirCodes) {
  for (const auto &c : vel_test::read_cases("common/data/error_names.tsv")) {
    const int code = c.integer("code");
    EXPECT_EQ(vel_error_name(code), c["name"]) << code;
    EXPECT_GT(std::strlen(vel_error_description(code)), 0u) << code;
    EXPECT_EQ(std::strchr(vel_error_description(code), '\n'), nullptr) << code;
  }
  EXPECT_STREQ(vel_error_name(99), "vel_error_unknown");
}

}  // namespace
