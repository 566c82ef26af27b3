#include "io/yaml_documents.h"

#include <sstream>

#include <yaml-cpp/eventhandler.h>

namespace vel::io::detail {

namespace {

// Notes where a document starts and where its first content (anything but
// a null) stands.
class DocumentProbe : public YAML::EventHandler {
 public:
  YAML::Mark start;
  bool content = false;
  YAML::Mark content_mark;

  void OnDocumentStart(const YAML::Mark &mark) override { start = mark; }
  void OnDocumentEnd() override {}
  void OnNull(const YAML::Mark &, YAML::anchor_t) override {}
  void OnAlias(const YAML::Mark &mark, YAML::anchor_t) override { note(mark); }
  void OnScalar(const YAML::Mark &mark, const std::string &, YAML::anchor_t,
                const std::string &) override {
    note(mark);
  }
  void OnSequenceStart(const YAML::Mark &mark, const std::string &, YAML::anchor_t,
                       YAML::EmitterStyle::value) override {
    note(mark);
  }
  void OnSequenceEnd() override {}
  void OnMapStart(const YAML::Mark &mark, const std::string &, YAML::anchor_t,
                  YAML::EmitterStyle::value) override {
    note(mark);
  }
  void OnMapEnd() override {}

 private:
  void note(const YAML::Mark &mark) {
    if (!content) content_mark = mark;
    content = true;
  }
};

bool same_place(const YAML::Mark &a, const YAML::Mark &b) {
  return a.pos == b.pos && a.line == b.line && a.column == b.column;
}

}  // namespace

YAML::Node load_single_document(const Source &source, const std::string &text) {
  std::istringstream in(text);
  YAML::Parser parser(in);
  DocumentProbe first;
  if (!parser.HandleNextDocument(first)) return YAML::Node();
  // Null documents after the first are harmless ("---" alone); the parser
  // stuck in one place is the loop of a stray ',' and ends the reading.
  YAML::Mark last = first.start;
  for (bool at_first = true;; at_first = false) {
    DocumentProbe next;
    if (!parser.HandleNextDocument(next)) break;
    if (next.content) source.fail(next.content_mark, "a model file holds one YAML document");
    if (!at_first && same_place(next.start, last))
      source.fail(next.start, "unexpected text where a YAML document should start");
    last = next.start;
  }
  return YAML::Load(text);
}

}  // namespace vel::io::detail
