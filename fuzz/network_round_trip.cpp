#include "network_round_trip.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

#include "io/network_export.h"
#include "io/network_file.h"

namespace vel::fuzz {

namespace {

using vel::io::ExportFormat;

constexpr const char *network_name = "fuzz";

[[noreturn]] void fail(const std::string &what, const std::string &text) {
  std::fprintf(stderr, "%s\n--- text ---\n%s\n", what.c_str(), text.c_str());
  std::abort();
}

struct Written {
  std::string text;
  bool chance_only;  // decisions written as chance nodes, utilities left out
};

// The network in `format`, with decision and utility nodes when the format
// holds them, else without; nothing when the format cannot hold it at all.
std::optional<Written> written(vel_domain_t *domain, ExportFormat format) {
  for (bool chance_only : {false, true}) {
    std::ostringstream out;
    try {
      vel::io::write_network(out, domain, network_name, format, chance_only);
      return Written{out.str(), chance_only};
    } catch (const vel::io::ExportError &) {
      if (!out.str().empty()) fail("a refused export wrote something", out.str());
    }
  }
  return std::nullopt;
}

std::string text_of(const std::optional<Written> &network) {
  return network ? network->text : "(refused)";
}

vel::io::LoadedModel reread(const std::string &text, ExportFormat format) {
  try {
    return format == ExportFormat::bif ? vel::io::load_bif_text(text, "again.bif")
                                       : vel::io::load_xmlbif_text(text, "again.xml");
  } catch (const vel::io::LoadError &error) {
    fail(std::string("a written network does not load: ") + error.what(), text);
  }
}

}  // namespace

void check_round_trips(const vel::io::LoadedModel &network) {
  vel_domain_t *domain = network.domain.get();
  written(domain, ExportFormat::uai);
  for (ExportFormat format : {ExportFormat::bif, ExportFormat::xmlbif}) {
    const std::optional<Written> text = written(domain, format);
    if (!text) continue;
    const vel::io::LoadedModel again = reread(text->text, format);
    // What was written whole is the same network in every format; what lost
    // its decisions and utilities is still the same text in its own.
    for (ExportFormat other : {ExportFormat::bif, ExportFormat::xmlbif}) {
      if (text->chance_only && other != format) continue;
      const std::optional<Written> first = written(domain, other);
      const std::optional<Written> second = written(again.domain.get(), other);
      if (text_of(first) != text_of(second))
        fail(std::string("written in ") + vel::io::format_name(format) + " and read back, the network is written in " +
                 vel::io::format_name(other) + " differently:\n" + text_of(first) + "\n---\n" + text_of(second),
             text->text);
    }
  }
}

}  // namespace vel::fuzz

namespace vel::fuzz {

void fuzz_network_reader(const std::uint8_t *data, std::size_t size, NetworkLoader load,
                         const char *name) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  try {
    check_round_trips(load(text, name));
  } catch (const vel::io::LoadError &error) {
    // Every refusal says where: "NAME:LINE:COLUMN: message".
    if (std::string(error.what()).rfind(std::string(name) + ":", 0) != 0) {
      std::fprintf(stderr, "a load error without the file's name: %s\n", error.what());
      std::abort();
    }
  }
}

}  // namespace vel::fuzz
