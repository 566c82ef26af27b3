// The special functions take some steps in 80-bit extended precision and
// round to double once; their results are defined by that format, so a build
// where long double is anything else must not compile.
#pragma once

#include <cfloat>

static_assert(LDBL_MANT_DIG == 64 && LDBL_MAX_EXP == 16384,
              "the special functions need long double to be the x87 80-bit extended format");
