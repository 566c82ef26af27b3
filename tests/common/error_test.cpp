#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "common/error.h"

namespace {

struct NamedCode {
  int code;
  const char *name;
};

TEST(ErrorCodes, NamesMatchTheirCodes) {
  const NamedCode cases[] = {
      {0, "vel_error_none"},
      {1, "vel_error_usage"},
      {2, "vel_error_io"},
      {3, "vel_error_out_of_memory"},
      {4, "vel_error_impossible_evidence"},
      {5, "vel_error_too_large"},
      {17, "vel_error_not_compiled"},
      {18, "vel_error_negative_entry"},
      {21, "vel_error_not_propagated"},
      {34, "vel_error_invalid_expression"},
      {36, "vel_error_division_by_zero"},
      {37, "vel_error_invalid_argument"},
      {38, "vel_error_computation"},
      {39, "vel_error_state_range"},
      {40, "vel_error_invalid_state_values"},
      {47, "vel_error_unsupported"},
  };
  for (const NamedCode &c : cases) {
    EXPECT_STREQ(vel_error_name(c.code), c.name) << c.code;
    EXPECT_GT(std::strlen(vel_error_description(c.code)), 0u) << c.code;
    EXPECT_EQ(std::strchr(vel_error_description(c.code), '\n'), nullptr) << c.code;
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
