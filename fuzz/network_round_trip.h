// What the BIF and XMLBIF targets do with a network that loads: write it in
// every format; a BIF or XMLBIF text written must load again and be written
// again to the very same text, in its own format and in the other one.
#pragma once

#include "io/model_file.h"

namespace vel::fuzz {

void check_round_trips(const vel::io::LoadedModel &network);

}  // namespace vel::fuzz
