// The XMLBIF reader: what loads is written in every format and read back.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "io/network_file.h"
#include "network_round_trip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  try {
    vel::fuzz::check_round_trips(vel::io::load_xmlbif_text(text, "fuzz.xmlbif"));
  } catch (const vel::io::LoadError &error) {
    // Every refusal says where: "fuzz.xmlbif:LINE:COLUMN: message".
    if (std::string(error.what()).rfind("fuzz.xmlbif:", 0) != 0) {
      std::fprintf(stderr, "a load error without the file's name: %s\n", error.what());
      std::abort();
    }
  }
  return 0;
}
