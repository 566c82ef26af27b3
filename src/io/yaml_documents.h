// Reading the one YAML document of a model file so that no input can make the
// reader loop: yaml-cpp 0.7's multi-document loader appends null documents
// forever after a stray ',' at document level, so the documents are counted
// with a parser that is stopped when it no longer moves.
#pragma once

#include <string>

#include <yaml-cpp/yaml.h>

#include "io/yaml_reading.h"

namespace vel::io::detail {

// The first document of `text` (a null node when there is none).  A second
// document with content, or text the parser cannot get past, is refused
// through `source` at its position.
YAML::Node load_single_document(const Source &source, const std::string &text);

}  // namespace vel::io::detail
