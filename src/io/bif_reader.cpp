// BIF, the text format of the public benchmark-network repositories:
//
//   network NAME { property ...; }
//   variable X { type discrete [ 2 ] { yes, no }; property ...; }
//   probability ( X | A, B ) { (a0, b0) 0.1, 0.9; default 0.5, 0.5; }
//   probability ( R ) { table 0.3, 0.7; }
//
// Blocks may come in any order: the variables are read first, the
// probability blocks in a second pass over their text.  Numbers are
// separated by commas or blanks.  A `table` lists the node's first state for
// every parent configuration, then its second, and so on (the node's state
// slowest, the last parent fastest); it is converted to the library's order.
// The older form `probability ( X A B )`, without the bar, is read too.
#include <string>
#include <unordered_map>
#include <vector>

#include "io/bif_tokens.h"
#include "io/file_text.h"
#include "io/network_file.h"
#include "io/network_description.h"
#include "io/text_positions.h"

namespace vel::io {

namespace {

using detail::BifLexer;
using detail::BifToken;
using detail::fail_at;
using detail::NetworkDescription;
using detail::TableDescription;
using detail::VariableDescription;

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

class BifReader {
 public:
  BifReader(const std::string &text, const std::string &file) : lexer_(text, file), file_(file) {}

  NetworkDescription read() {
    std::vector<BifLexer::Mark> blocks;
    for (BifToken token = lexer_.next(); token.kind != BifToken::end; token = lexer_.next()) {
      if (token.is("network")) {
        read_network(token);
      } else if (token.is("variable")) {
        read_variable();
      } else if (token.is("probability")) {
        blocks.push_back(mark_before(token));
        skip_probability();
      } else {
        fail(token, "expected 'network', 'variable' or 'probability', found " + token.describe());
      }
    }
    if (network_.name.empty()) network_.name = file_stem(file_);

    index_ = detail::index_variables(file_, network_);
    table_of_.assign(network_.variables.size(), false);
    for (const BifLexer::Mark &block : blocks) {
      lexer_.reset(block);
      read_probability(lexer_.next());
    }
    return std::move(network_);
  }

 private:
  [[noreturn]] void fail(const BifToken &at, const std::string &message) const {
    fail_at(file_, at.at, message);
  }

  BifLexer::Mark mark_before(const BifToken &token) {
    // The keyword was just read: its text ends where the lexer stands.
    const BifLexer::Mark after = lexer_.mark();
    return {after.offset - token.text.size(), token.at};
  }

  BifToken expect(char mark) {
    const BifToken token = lexer_.next();
    if (!token.is(mark)) fail(token, std::string("expected '") + mark + "', found " + token.describe());
    return token;
  }

  // A name or state: a word or a quoted string, in UTF-8.
  BifToken expect_name(const std::string &what) {
    const BifToken token = lexer_.next();
    if (token.kind != BifToken::word && token.kind != BifToken::string)
      fail(token, "expected " + what + ", found " + token.describe());
    if (!detail::is_utf8(token.text)) fail(token, "names and states must be UTF-8 text");
    return token;
  }

  void skip_optional(char mark) {
    if (lexer_.peek().is(mark)) lexer_.next();
  }

  // property ... ;  (the keyword already read)
  void skip_property() {
    for (BifToken token = lexer_.next(); !token.is(';'); token = lexer_.next())
      if (token.kind == BifToken::end) fail(token, "expected ';', found end of file");
  }

  void read_network(const BifToken &keyword) {
    if (network_seen_) fail(keyword, "a second 'network' block");
    network_seen_ = true;
    const BifToken name = expect_name("the network's name");
    // "unknown" is what writers put when the network has no name.
    if (name.text != "unknown" && !name.text.empty()) network_.name = name.text;
    expect('{');
    for (BifToken token = lexer_.next(); !token.is('}'); token = lexer_.next()) {
      if (!token.is("property")) fail(token, "expected 'property' or '}', found " + token.describe());
      skip_property();
    }
    skip_optional(';');
  }

  void read_variable() {
    const BifToken name = expect_name("a variable name");
    VariableDescription variable;
    variable.name = name.text;
    variable.name_at = name.at;
    state_index_.emplace_back();
    expect('{');
    bool typed = false;
    for (BifToken token = lexer_.next(); !token.is('}'); token = lexer_.next()) {
      if (token.is("property")) {
        skip_property();
      } else if (token.is("type")) {
        if (typed) fail(token, "a second 'type' for " + quoted(variable.name));
        typed = true;
        variable.states_at = token.at;
        read_states(variable);
      } else {
        fail(token, "expected 'type', 'property' or '}', found " + token.describe());
      }
    }
    if (!typed) fail(name, "variable " + quoted(variable.name) + " has no 'type'");
    skip_optional(';');
    network_.variables.push_back(std::move(variable));
  }

  // discrete [ N ] { s1, s2, ... };  (after `type`)
  void read_states(VariableDescription &variable) {
    const BifToken kind = lexer_.next();
    if (!kind.is("discrete")) fail(kind, "expected 'discrete', found " + kind.describe());
    expect('[');
    const BifToken count = lexer_.next();
    std::size_t declared = 0;
    if (count.kind != BifToken::word || !parse_count(count.text, declared))
      fail(count, "expected the number of states, found " + count.describe());
    expect(']');
    const BifToken open = expect('{');
    std::unordered_map<std::string_view, std::size_t> &index = state_index_.back();
    for (BifToken token = lexer_.peek(); !token.is('}'); token = lexer_.peek()) {
      if (!variable.states.empty()) skip_optional(',');
      const BifToken state = expect_name("a state name");
      if (state.text.empty()) fail(state, "empty state name");
      if (!index.emplace(state.text, variable.states.size()).second)
        fail(state, "duplicate state " + quoted(state.text) + " of " + quoted(variable.name));
      variable.states.emplace_back(state.text);
    }
    lexer_.next();
    expect(';');
    if (variable.states.empty()) fail(open, "variable " + quoted(variable.name) + " has no states");
    if (declared != variable.states.size())
      fail(count, "variable " + quoted(variable.name) + " declares " + std::to_string(declared) +
                      " states and lists " + std::to_string(variable.states.size()));
  }

  static bool parse_count(std::string_view text, std::size_t &count) {
    if (text.empty() || text.size() > 18) return false;
    count = 0;
    for (const char c : text) {
      if (c < '0' || c > '9') return false;
      count = count * 10 + static_cast<std::size_t>(c - '0');
    }
    return true;
  }

  void skip_probability() {
    for (BifToken token = lexer_.next(); !token.is('}'); token = lexer_.next())
      if (token.kind == BifToken::end) fail(token, "expected '}', found end of file");
    skip_optional(';');
  }

  std::size_t variable_index(const BifToken &name) const {
    const auto found = index_.find(std::string(name.text));
    if (found == index_.end()) fail(name, "unknown variable " + quoted(name.text));
    return found->second;
  }

  // probability ( X | A, B ) { ... }  (the keyword given)
  void read_probability(const BifToken &keyword) {
    expect('(');
    const BifToken name = expect_name("a variable name");
    TableDescription table;
    table.variable = variable_index(name);
    table.at = keyword.at;
    if (table_of_[table.variable]) fail(name, "a second probability block for " + quoted(name.text));
    table_of_[table.variable] = true;
    skip_optional('|');
    for (BifToken token = lexer_.peek(); !token.is(')'); token = lexer_.peek()) {
      if (!table.parents.empty()) skip_optional(',');
      const BifToken parent = expect_name("a parent name");
      detail::add_parent(file_, network_, index_, table, parent.text, parent.at);
    }
    lexer_.next();
    Entries entries(table, detail::table_entries(file_, network_, table),
                    network_.variables[table.variable].states.size());
    expect('{');
    for (BifToken token = lexer_.next(); !token.is('}'); token = lexer_.next()) {
      if (token.is('(')) read_row(entries, token);
      else if (token.is("default")) read_default(entries, token);
      else if (token.is("table")) read_table(entries, token);
      else if (token.is("property")) skip_property();
      else fail(token, "expected '(', 'table', 'default', 'property' or '}', found " + token.describe());
    }
    skip_optional(';');
    finish(entries, keyword);
    network_.tables.push_back(std::move(table));
  }

  // A table being filled: its rows (one per parent configuration) of
  // `states` entries each.
  struct Entries {
    Entries(TableDescription &table, std::size_t size, std::size_t states) : table(table), size(size), states(states) {}
    TableDescription &table;
    std::size_t size;
    std::size_t states;
    std::vector<bool> given;           // rows written so far
    std::vector<double> fallback;      // the default row
    bool rows = false, whole = false;  // rows, or a `table`

    std::size_t rows_count() const { return size / states; }
  };

  void start(Entries &entries, const BifToken &at, bool whole) {
    if ((whole && (entries.rows || !entries.fallback.empty())) || (!whole && entries.whole))
      fail(at, quoted(variable_name(entries)) + " has both a 'table' and rows");
    if (entries.table.entries.empty()) {
      entries.table.entries.assign(entries.size, 0.0);
      entries.given.assign(entries.rows_count(), false);
    }
  }

  const std::string &variable_name(const Entries &entries) const {
    return network_.variables[entries.table.variable].name;
  }

  // Numbers up to ';', separated by commas or blanks; `store(i, value)` for
  // the i-th.  Exactly `count` of them.
  template <typename Store>
  void read_numbers(std::size_t count, const std::string &what, Store store) {
    std::size_t read = 0;
    BifToken token = lexer_.next();
    for (; !token.is(';'); token = lexer_.next()) {
      if (read > 0 && token.is(',')) token = lexer_.next();
      if (token.kind != BifToken::word) fail(token, "expected a number, found " + token.describe());
      if (read == count)
        fail(token, what + " needs " + std::to_string(count) + " numbers; found more");
      store(read++, detail::read_entry(file_, token.text, token.at));
    }
    if (read < count)
      fail(token, what + " needs " + std::to_string(count) + " numbers; found " + std::to_string(read));
  }

  // ( a, b ) p, q;  (the '(' given)
  void read_row(Entries &entries, const BifToken &open) {
    start(entries, open, false);
    entries.rows = true;
    std::size_t row = 0;
    for (std::size_t i = 0; i < entries.table.parents.size(); ++i) {
      const VariableDescription &parent = network_.variables[entries.table.parents[i]];
      if (i > 0) skip_optional(',');
      const BifToken state = expect_name("a state of " + quoted(parent.name));
      const auto &index = state_index_[entries.table.parents[i]];
      const auto found = index.find(state.text);
      if (found == index.end()) fail(state, quoted(state.text) + " is not a state of " + quoted(parent.name));
      row = row * parent.states.size() + found->second;
    }
    expect(')');
    if (entries.given[row])
      fail(open, "a second row " + row_text(entries, row) + " for " + quoted(variable_name(entries)));
    entries.given[row] = true;
    double *data = entries.table.entries.data() + row * entries.states;
    read_numbers(entries.states, "a row of " + quoted(variable_name(entries)),
                 [&](std::size_t i, double value) { data[i] = value; });
  }

  void read_default(Entries &entries, const BifToken &keyword) {
    start(entries, keyword, false);
    if (!entries.fallback.empty()) fail(keyword, "a second 'default' row for " + quoted(variable_name(entries)));
    entries.fallback.assign(entries.states, 0.0);
    read_numbers(entries.states, "the default row of " + quoted(variable_name(entries)),
                 [&](std::size_t i, double value) { entries.fallback[i] = value; });
  }

  void read_table(Entries &entries, const BifToken &keyword) {
    start(entries, keyword, true);
    if (entries.whole) fail(keyword, "a second 'table' for " + quoted(variable_name(entries)));
    entries.whole = true;
    const std::size_t rows = entries.rows_count();
    read_numbers(entries.size, "the table of " + quoted(variable_name(entries)),
                 [&](std::size_t i, double value) {
                   entries.table.entries[(i % rows) * entries.states + i / rows] = value;
                 });
    entries.given.assign(rows, true);
  }

  void finish(Entries &entries, const BifToken &keyword) {
    if (entries.table.entries.empty()) return;  // parents only
    entries.table.has_entries = true;
    for (std::size_t row = 0; row < entries.given.size(); ++row) {
      if (entries.given[row]) continue;
      if (entries.fallback.empty())
        fail(keyword,
             quoted(variable_name(entries)) + " has no row " + row_text(entries, row) + " and no default");
      std::copy(entries.fallback.begin(), entries.fallback.end(),
                entries.table.entries.begin() + static_cast<std::ptrdiff_t>(row * entries.states));
    }
  }

  // "(a, b)": the parent states of a row.
  std::string row_text(const Entries &entries, std::size_t row) const {
    const std::vector<std::size_t> &parents = entries.table.parents;
    std::vector<std::string_view> names(parents.size());
    for (std::size_t i = parents.size(); i-- > 0;) {
      const std::vector<std::string> &states = network_.variables[parents[i]].states;
      names[i] = states[row % states.size()];
      row /= states.size();
    }
    std::string text = "(";
    for (std::size_t i = 0; i < names.size(); ++i) text += (i ? ", " : "") + std::string(names[i]);
    return text + ")";
  }

  BifLexer lexer_;
  const std::string &file_;
  NetworkDescription network_;
  bool network_seen_ = false;
  std::vector<std::unordered_map<std::string_view, std::size_t>> state_index_;  // per variable
  std::unordered_map<std::string, std::size_t> index_;
  std::vector<bool> table_of_;  // variables with a probability block
};

}  // namespace

LoadedModel load_bif_text(const std::string &text, const std::string &file_name) {
  return detail::build_network(file_name, BifReader(text, file_name).read());
}

}  // namespace vel::io
