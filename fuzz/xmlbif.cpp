// The XMLBIF reader: what loads is written in every format and read back.
#include <cstddef>
#include <cstdint>

#include "io/network_file.h"
#include "network_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  vel::fuzz::fuzz_network_reader(data, size, vel::io::load_xmlbif_text, "fuzz.xmlbif");
  return 0;
}
