// The library's version, as the build sets it.
#include "common/version.h"
#include "vel/vel.h"

extern "C" const char *vel_version(void) { return vel::version_text; }
