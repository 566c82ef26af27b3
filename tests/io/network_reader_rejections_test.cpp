// Malformed BIF and XMLBIF: one message each, at the offending item.
#include <gtest/gtest.h>

#include <span>
#include <string>

#include "io/network_file.h"

namespace {

struct Rejection {
  std::string text;
  std::string message;
};

const std::string a = "variable A { type discrete [ 2 ] { a0, a1 }; }\n";
const std::string ab = a + "variable B { type discrete [ 2 ] { b0, b1 }; }\n";

// 26 binary parents: a default row would ask for 2^27 entries.
std::string wide_default() {
  std::string text, parents;
  for (char c = 'a'; c <= 'z'; ++c) {
    text += std::string("variable ") + c + " { type discrete [ 2 ] { x, y }; }\n";
    parents += std::string(c == 'a' ? "" : ", ") + c;
  }
  return text + a + "probability ( A | " + parents + " ) { default 0.5, 0.5; }\n";
}

const Rejection bif_rejections[] = {
    {"variable A { type discrete [ 2 ] { a0, a1 }", "net.bif:1:44: expected ';', found end of file"},
    {a + "probability ( A ) { table 0.5, 0.5;", "net.bif:2:36: expected '}', found end of file"},
    {a + "probability ( A ) { table 0.5,", "net.bif:2:31: expected '}', found end of file"},
    {"/* open\nvariable", "net.bif:1:1: unterminated comment"},
    {"variable \"A { }", "net.bif:1:10: unterminated string"},
    {"varible A { }", "net.bif:1:1: expected 'network', 'variable' or 'probability', found 'varible'"},
    {"variable A { type discrete [ 3 ] { a0, a1 }; }", "net.bif:1:30: variable 'A' declares 3 states and lists 2"},
    {"variable A { type discrete [ 1 ] { a0, a1 }; }", "net.bif:1:30: variable 'A' declares 1 states and lists 2"},
    {"variable A { type discrete [ 0 ] { }; }", "net.bif:1:34: variable 'A' has no states"},
    {"variable A { type discrete [ 2 ] { a0, a0 }; }", "net.bif:1:40: duplicate state 'a0' of 'A'"},
    {"variable A { type discrete [ 1 ] { \"\" }; }", "net.bif:1:36: empty state name"},
    {"variable A { type discrete [ 1 ] { \xff }; }", "net.bif:1:36: names and states must be UTF-8 text"},
    {"variable A { type discrete [ 1 ] { a\x01 }; }", "net.bif:1:37: unexpected control character"},
    {"variable A { }", "net.bif:1:10: variable 'A' has no 'type'"},
    {"variable A { type continuous; }", "net.bif:1:19: expected 'discrete', found 'continuous'"},
    {a + a, "net.bif:2:10: duplicate variable 'A'"},
    {"variable dog-out { type discrete [ 1 ] { a }; }",
     "net.bif:1:10: cannot create node 'dog-out': invalid node name 'dog-out'"},
    {a + "probability ( Z ) { }", "net.bif:2:15: unknown variable 'Z'"},
    {a + "probability ( A | Z ) { }", "net.bif:2:19: unknown parent 'Z'"},
    {ab + "probability ( A | B, B ) { }", "net.bif:3:22: duplicate parent 'B'"},
    {a + "probability ( A | A ) { }", "net.bif:2:19: variable 'A' cannot be its own parent"},
    {a + "probability ( A ) { }\nprobability ( A ) { }", "net.bif:3:15: a second probability block for 'A'"},
    {ab + "probability ( A | B ) { }\nprobability ( B | A ) { }",
     "net.bif:4:19: cannot add A as a parent of B: it would close a directed cycle"},
    {ab + "probability ( A | B ) { (b0) 0.5; }", "net.bif:3:33: a row of 'A' needs 2 numbers; found 1"},
    {ab + "probability ( A | B ) { (b0) 0.5, 0.25 0.25; }", "net.bif:3:40: a row of 'A' needs 2 numbers; found more"},
    {ab + "probability ( A | B ) { (b2) 0.5, 0.5; }", "net.bif:3:26: 'b2' is not a state of 'B'"},
    {ab + "probability ( A | B ) { (b0, b1) 0.5, 0.5; }", "net.bif:3:28: expected ')', found ','"},
    {ab + "probability ( A | B ) { (b0) 0.5, 0.5; (b0) 1, 0; }",
     "net.bif:3:40: a second row (b0) for 'A'"},
    {ab + "probability ( A | B ) { (b0) 0.5, 0.5; }", "net.bif:3:1: 'A' has no row (b1) and no default"},
    {ab + "probability ( A | B ) { table 0.5, 0.5, 1; }", "net.bif:3:42: the table of 'A' needs 4 numbers; found 3"},
    {ab + "probability ( A | B ) { table 1, 0, 1, 0; (b0) 0.5, 0.5; }",
     "net.bif:3:43: 'A' has both a 'table' and rows"},
    {a + "probability ( A ) { table 0.5, abc; }", "net.bif:2:32: expected a number, found 'abc'"},
    {a + "probability ( A ) { table 0.5, 1e39; }",
     "net.bif:2:32: a table entry must be a finite number in single-precision range"},
    {wide_default(), "net.bif:28:1: with the table of 'A' the network would have more than 33554432 entries"},
};

template <typename Load>
void expect_refused(std::span<const Rejection> rejections, Load load, const std::string &file) {
  for (const Rejection &rejection : rejections) {
    try {
      load(rejection.text, file);
      ADD_FAILURE() << "accepted: " << rejection.text;
    } catch (const vel::io::LoadError &error) {
      EXPECT_EQ(error.what(), rejection.message) << rejection.text;
    }
  }
}

TEST(NetworkReaderRejections, Bif) { expect_refused(bif_rejections, vel::io::load_bif_text, "net.bif"); }

std::string xml(const std::string &network) { return "<BIF VERSION=\"0.3\"><NETWORK>\n" + network + "</NETWORK></BIF>"; }

const std::string x = "<VARIABLE><NAME>X</NAME><OUTCOME>x0</OUTCOME><OUTCOME>x1</OUTCOME></VARIABLE>\n";

const Rejection xmlbif_rejections[] = {
    {"<BIF><NETWORK><VARIABLE>", "net.xml:1:25: malformed XML: no element found"},
    {"<BIF><NETWORK><NAME>\xff</NAME>", "net.xml:1:21: malformed XML: not well-formed (invalid token)"},
    {"<NETWORK/>", "net.xml:1:1: expected <BIF>, found <NETWORK>"},
    {"<BIF/>", "net.xml:1:7: an XMLBIF file needs a NETWORK"},
    {"<BIF><NETWORK/><NETWORK/></BIF>", "net.xml:1:16: a second NETWORK"},
    {"<!DOCTYPE BIF [<!ENTITY a \"aaaa\">]><BIF/>", "net.xml:1:27: entity declarations are not supported"},
    {xml("<VARIABLE><NAME>X<NAME>Y</NAME></NAME></VARIABLE>"), "net.xml:2:18: unexpected element <NAME> in <NAME>"},
    {xml("<VARIABLE>text</VARIABLE>"), "net.xml:2:11: unexpected text in <VARIABLE>"},
    {xml("<VARIABLE><OUTCOME>a</OUTCOME></VARIABLE>"), "net.xml:2:1: a VARIABLE needs a NAME"},
    {xml("<VARIABLE TYPE=\"random\"><NAME>X</NAME></VARIABLE>"), "net.xml:2:1: unknown variable TYPE 'random'"},
    {xml("<VARIABLE><NAME>X</NAME></VARIABLE>"), "net.xml:2:1: variable 'X' has no OUTCOME"},
    {xml("<VARIABLE TYPE=\"utility\"><NAME>U</NAME><OUTCOME>u</OUTCOME></VARIABLE>"),
     "net.xml:2:40: utility variable 'U' takes no OUTCOME"},
    {xml(x + x), "net.xml:3:11: duplicate variable 'X'"},
    {xml(x + "<DEFINITION><TABLE>1</TABLE></DEFINITION>"), "net.xml:3:1: a DEFINITION needs a FOR"},
    {xml(x + "<DEFINITION><FOR>Y</FOR></DEFINITION>"), "net.xml:3:13: unknown variable 'Y'"},
    {xml(x + "<DEFINITION><FOR>X</FOR><GIVEN>Y</GIVEN></DEFINITION>"), "net.xml:3:25: unknown parent 'Y'"},
    {xml(x + "<DEFINITION><FOR>X</FOR></DEFINITION><DEFINITION><FOR>X</FOR></DEFINITION>"),
     "net.xml:3:50: a second DEFINITION for 'X'"},
    {xml(x + "<VARIABLE TYPE=\"utility\"><NAME>U</NAME></VARIABLE>"
             "<DEFINITION><FOR>X</FOR><GIVEN>U</GIVEN></DEFINITION>"),
     "net.xml:3:75: utility variable 'U' cannot be a parent"},
    {xml(x + "<DEFINITION><FOR>X</FOR><TABLE>0.5 0.25 0.25</TABLE></DEFINITION>"),
     "net.xml:3:25: the TABLE of 'X' needs 2 numbers; found 3"},
    {xml(x + "<DEFINITION><FOR>X</FOR><TABLE>0.5\n  nan</TABLE></DEFINITION>"),
     "net.xml:4:3: a table entry must be a finite number in single-precision range"},
};

TEST(NetworkReaderRejections, Xmlbif) { expect_refused(xmlbif_rejections, vel::io::load_xmlbif_text, "net.xml"); }

}  // namespace
