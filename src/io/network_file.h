// Networks in: model files, BIF and XMLBIF, each loaded into a domain built
// through the public API.
#pragma once

#include <string>

#include "io/model_file.h"

namespace vel::io {

enum class NetworkFormat { model_file, bif, xmlbif };

// The format of a file: by extension (.yaml/.yml/.json, .bif, .xml/.xmlbif,
// in any case), otherwise by content: '<' first is XMLBIF, a first word
// `network`, `variable` or `probability` is BIF, anything else a model file.
NetworkFormat network_format(const std::string &path, const std::string &text);

// Reads the file at `path` and loads it in its format; throws LoadError.
LoadedModel load_network_file(const std::string &path);

// BIF and XMLBIF text; `file_name` prefixes the messages and, when the
// network has no name of its own, gives the domain its name.  States become
// labeled states, rows are loaded as written.  Refused with LoadError
// "FILE:LINE:COLUMN: message": anything malformed, tables of more than 2^25
// entries in all.
LoadedModel load_bif_text(const std::string &text, const std::string &file_name);
LoadedModel load_xmlbif_text(const std::string &text, const std::string &file_name);

}  // namespace vel::io
