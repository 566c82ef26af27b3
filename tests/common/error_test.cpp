#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "case_file.h"
#include "common/error.h"

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

TEST(ErrorCodes, CodeIsThreadLocalAndReadable) {
  vel::fail(vel_error_computation);
  EXPECT_EQ(vel_error_code(), 38);
  int seen_in_other_thread = -1;
  std::thread([&] { seen_in_other_thread = vel_error_code(); }).join();
  EXPECT_EQ(seen_in_other_thread, 0);
  _vel_error_code = 0;
}

TEST(ErrorCodes, MessageAndPositionAreKept) {
  vel::set_error_message("expected ')'", 7);
  EXPECT_STREQ(vel_error_message(), "expected ')'");
  EXPECT_EQ(vel_error_position(), 7);
  vel::set_error_message(nullptr);
  EXPECT_STREQ(vel_error_message(), "");
}

}  // namespace
