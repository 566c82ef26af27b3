// What the BIF and XMLBIF targets do with a network that loads: write it in
// every format; a BIF or XMLBIF text written must load again and be written
// again to the very same text, in its own format and in the other one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "io/model_file.h"

namespace vel::fuzz {

void check_round_trips(const vel::io::LoadedModel &network);

// One input of a network reader's target: loaded as the file `name` by
// `load`, round-tripped when it loads; a refusal must begin with "NAME:".
using NetworkLoader = vel::io::LoadedModel (*)(const std::string &text, const std::string &name);
void fuzz_network_reader(const std::uint8_t *data, std::size_t size, NetworkLoader load,
                         const char *name);

}  // namespace vel::fuzz
