// XMLBIF 0.3: <BIF><NETWORK><NAME/> then VARIABLE elements (TYPE nature,
// decision or utility; NAME, OUTCOME, PROPERTY) and DEFINITION (or
// PROBABILITY) elements (FOR, GIVEN, TABLE, PROPERTY).  A TABLE lists, for
// each configuration of the GIVEN variables (the last fastest), one entry
// per OUTCOME of the FOR variable: the library's own order.
//
// Expat reads the XML; the handlers accept only the elements above, so the
// nesting never goes deeper than four, and refuse entity declarations, so no
// text expands beyond what the file holds.
#include <expat.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/file_text.h"
#include "io/network_file.h"
#include "io/network_description.h"
#include "io/text_positions.h"

namespace vel::io {

namespace {

using detail::fail_at;
using detail::NetworkDescription;
using detail::TableDescription;
using detail::VariableDescription;

constexpr std::string_view xml_blanks = " \t\r\n";

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(xml_blanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(xml_blanks) + 1 - start);
}

enum class Element { none, bif, network, variable, definition, name, outcome, property, for_, given, table };

bool holds_text(Element element) { return element >= Element::name; }

// Element text with where each piece of it started, to point into it.
struct Text {
  struct Piece {
    std::size_t offset;
    Position at;
  };
  std::string text;
  std::vector<Piece> pieces;
  Position at;  // the element

  Position position_of(std::size_t offset) const {
    auto piece = std::upper_bound(pieces.begin(), pieces.end(), offset,
                                  [](std::size_t o, const Piece &p) { return o < p.offset; });
    if (piece == pieces.begin()) return at;
    --piece;
    return detail::advance(piece->at, std::string_view(text).substr(piece->offset, offset - piece->offset));
  }
};

struct Definition {
  Position at;
  std::optional<Text> for_name;
  std::vector<Text> given;
  std::optional<Text> table;
};

struct Variable {
  VariableDescription described;
  Position at;
  bool named = false;
};

class XmlbifReader {
 public:
  explicit XmlbifReader(const std::string &file) : file_(file) {}

  NetworkDescription read(const std::string &text) {
    std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr), XML_ParserFree);
    if (!parser) fail_at(file_, {1, 1}, "cannot create the XML parser");
    parser_ = parser.get();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(parser_, &XmlbifReader::on_start, &XmlbifReader::on_end);
    XML_SetCharacterDataHandler(parser_, &XmlbifReader::on_text);
    XML_SetEntityDeclHandler(parser_, &XmlbifReader::on_entity);

    constexpr std::size_t slice = std::size_t{1} << 20;
    std::size_t offset = 0;
    do {
      const std::size_t length = std::min(slice, text.size() - offset);
      const bool last = offset + length == text.size();
      if (XML_Parse(parser_, text.data() + offset, static_cast<int>(length), last) != XML_STATUS_OK) {
        if (error_) throw LoadError(*error_);
        fail_at(file_, here(), std::string("malformed XML: ") + XML_ErrorString(XML_GetErrorCode(parser_)));
      }
      offset += length;
    } while (offset < text.size());
    if (!network_seen_) fail_at(file_, here(), "an XMLBIF file needs a NETWORK");
    return resolve();
  }

 private:
  Position here() const {
    return {static_cast<std::size_t>(XML_GetCurrentLineNumber(parser_)),
            static_cast<std::size_t>(XML_GetCurrentColumnNumber(parser_)) + 1};
  }

  // Handlers cannot throw through expat: they note the error and stop it.
  void stop(Position at, const std::string &message) {
    if (error_) return;
    error_ = detail::load_error(file_, at, message);
    XML_StopParser(parser_, XML_FALSE);
  }

  static XmlbifReader &self(void *data) { return *static_cast<XmlbifReader *>(data); }

  static void on_start(void *data, const XML_Char *name, const XML_Char **attributes) {
    XmlbifReader &reader = self(data);
    if (!reader.error_) reader.start(name, attributes);
  }
  static void on_end(void *data, const XML_Char *) {
    XmlbifReader &reader = self(data);
    if (!reader.error_) reader.end();
  }
  static void on_text(void *data, const XML_Char *text, int length) {
    XmlbifReader &reader = self(data);
    if (!reader.error_) reader.add_text(std::string_view(text, static_cast<std::size_t>(length)));
  }
  static void on_entity(void *data, const XML_Char *, int, const XML_Char *, int, const XML_Char *,
                        const XML_Char *, const XML_Char *, const XML_Char *) {
    XmlbifReader &reader = self(data);
    reader.stop(reader.here(), "entity declarations are not supported");
  }

  // The element `name` may stand inside `parent`.
  static Element child(Element parent, std::string_view name) {
    switch (parent) {
      case Element::none: return name == "BIF" ? Element::bif : Element::none;
      case Element::bif: return name == "NETWORK" ? Element::network : Element::none;
      case Element::network:
        if (name == "NAME") return Element::name;
        if (name == "PROPERTY") return Element::property;
        if (name == "VARIABLE") return Element::variable;
        if (name == "DEFINITION" || name == "PROBABILITY") return Element::definition;
        return Element::none;
      case Element::variable:
        if (name == "NAME") return Element::name;
        if (name == "OUTCOME") return Element::outcome;
        if (name == "PROPERTY") return Element::property;
        return Element::none;
      case Element::definition:
        if (name == "FOR") return Element::for_;
        if (name == "GIVEN") return Element::given;
        if (name == "TABLE") return Element::table;
        if (name == "PROPERTY") return Element::property;
        return Element::none;
      default: return Element::none;
    }
  }

  void start(std::string_view name, const XML_Char **attributes) {
    const Position at = here();
    const Element parent = stack_.empty() ? Element::none : stack_.back();
    const Element element = child(parent, name);
    if (element == Element::none) {
      if (stack_.empty()) return stop(at, "expected <BIF>, found <" + std::string(name) + ">");
      return stop(at, "unexpected element <" + std::string(name) + "> in <" + open_names_.back() + ">");
    }
    stack_.push_back(element);
    open_names_.emplace_back(name);
    text_ = Text{{}, {}, at};
    if (element == Element::network) {
      if (network_seen_) return stop(at, "a second NETWORK");
      network_seen_ = true;
    } else if (element == Element::variable) {
      variables_.push_back({});
      variables_.back().at = at;
      std::string_view type = "nature";
      for (const XML_Char **attribute = attributes; *attribute; attribute += 2)
        if (std::string_view(attribute[0]) == "TYPE") type = trimmed(attribute[1]);
      int &category = variables_.back().described.category;
      if (type == "nature") category = vel_category_chance;
      else if (type == "decision") category = vel_category_decision;
      else if (type == "utility") category = vel_category_utility;
      else stop(at, "unknown variable TYPE " + quoted(type));
    } else if (element == Element::definition) {
      definitions_.push_back({});
      definitions_.back().at = at;
    }
  }

  void add_text(std::string_view text) {
    if (stack_.empty() || !holds_text(stack_.back())) {
      if (text.find_first_not_of(xml_blanks) != std::string_view::npos)
        stop(here(), "unexpected text in <" + std::string(stack_.empty() ? "" : open_names_.back()) + ">");
      return;
    }
    text_.pieces.push_back({text_.text.size(), here()});
    text_.text.append(text);
  }

  void end() {
    const Element element = stack_.back();
    const Element parent = stack_.size() > 1 ? stack_[stack_.size() - 2] : Element::none;
    stack_.pop_back();
    open_names_.pop_back();
    const std::string_view text = trimmed(text_.text);  // expat hands over UTF-8
    switch (element) {
      case Element::name:
        if (parent == Element::network) {
          network_name_ = text;
        } else {
          Variable &variable = variables_.back();
          if (variable.named) return stop(text_.at, "a second NAME in <VARIABLE>");
          variable.named = true;
          variable.described.name = text;
          variable.described.name_at = text_.at;
        }
        break;
      case Element::outcome: {
        VariableDescription &variable = variables_.back().described;
        if (variable.states.empty()) variable.states_at = text_.at;
        variable.states.emplace_back(text);
        break;
      }
      case Element::variable: finish_variable(variables_.back()); break;
      case Element::for_:
        if (definitions_.back().for_name) return stop(text_.at, "a second FOR in <DEFINITION>");
        definitions_.back().for_name = std::move(text_);
        break;
      case Element::given: definitions_.back().given.push_back(std::move(text_)); break;
      case Element::table:
        if (definitions_.back().table) return stop(text_.at, "a second TABLE in <DEFINITION>");
        definitions_.back().table = std::move(text_);
        break;
      case Element::definition:
        if (!definitions_.back().for_name) return stop(definitions_.back().at, "a DEFINITION needs a FOR");
        break;
      default: break;
    }
    text_ = Text{};
  }

  void finish_variable(const Variable &variable) {
    if (!variable.named) return stop(variable.at, "a VARIABLE needs a NAME");
    const VariableDescription &described = variable.described;
    const bool utility = described.category == vel_category_utility;
    if (utility && !described.states.empty())
      return stop(described.states_at, "utility variable " + quoted(described.name) + " takes no OUTCOME");
    if (!utility && described.states.empty())
      return stop(variable.at, "variable " + quoted(described.name) + " has no OUTCOME");
  }

  NetworkDescription resolve() {
    NetworkDescription network;
    network.name = network_name_.empty() ? file_stem(file_) : network_name_;
    for (Variable &variable : variables_) {
      if (variable.described.states_at.line == 0) variable.described.states_at = variable.at;
      network.variables.push_back(std::move(variable.described));
    }
    const auto index = detail::index_variables(file_, network);
    std::vector<bool> defined(network.variables.size(), false);
    for (Definition &definition : definitions_) {
      const Text &name = *definition.for_name;
      const std::string target(trimmed(name.text));
      const auto found = index.find(target);
      if (found == index.end()) fail_at(file_, name.at, "unknown variable " + quoted(target));
      if (defined[found->second]) fail_at(file_, name.at, "a second DEFINITION for " + quoted(target));
      defined[found->second] = true;
      TableDescription table;
      table.variable = found->second;
      table.at = definition.table ? definition.table->at : definition.at;
      for (const Text &given : definition.given)
        detail::add_parent(file_, network, index, table, trimmed(given.text), given.at);
      const std::size_t size = detail::table_entries(file_, network, table);
      if (definition.table) read_entries(network, table, *definition.table, size);
      network.tables.push_back(std::move(table));
    }
    return network;
  }

  void read_entries(const NetworkDescription &network, TableDescription &table, const Text &text, std::size_t size) {
    // Count first: the entries are allocated only for a table of the right size.
    std::size_t count = 0;
    for_each_word(text.text, [&](std::size_t, std::string_view) { ++count; });
    if (count != size)
      fail_at(file_, text.at, "the TABLE of " + quoted(network.variables[table.variable].name) + " needs " +
                                  std::to_string(size) + " numbers; found " + std::to_string(count));
    table.entries.reserve(size);
    for_each_word(text.text, [&](std::size_t offset, std::string_view word) {
      table.entries.push_back(detail::read_entry(file_, word, text.position_of(offset)));
    });
    table.has_entries = true;
  }

  template <typename Visit>
  static void for_each_word(std::string_view text, Visit visit) {
    std::size_t start = text.find_first_not_of(xml_blanks);
    while (start != std::string_view::npos) {
      const std::size_t end = std::min(text.find_first_of(xml_blanks, start), text.size());
      visit(start, text.substr(start, end - start));
      start = text.find_first_not_of(xml_blanks, end);
    }
  }

  const std::string &file_;
  XML_Parser parser_ = nullptr;
  std::optional<LoadError> error_;
  std::vector<Element> stack_;
  std::vector<std::string> open_names_;
  Text text_;
  bool network_seen_ = false;
  std::string network_name_;
  std::vector<Variable> variables_;
  std::vector<Definition> definitions_;
};

}  // namespace

LoadedModel load_xmlbif_text(const std::string &text, const std::string &file_name) {
  return detail::build_network(file_name, XmlbifReader(file_name).read(text));
}

}  // namespace vel::io
