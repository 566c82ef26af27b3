// Every refusal of the model-file loader and the BIF and XMLBIF readers, with
// its exact message at the offending item.
#include <gtest/gtest.h>

#include <string>

#include "case_file.h"
#include "io/model_file.h"
#include "io/network_file.h"

namespace {

using Load = vel::io::LoadedModel (*)(const std::string &, const std::string &);

void expect_refused(Load load, const std::string &text, const std::string &file, const std::string &message) {
  try {
    load(text, file);
    ADD_FAILURE() << "accepted: " << text;
  } catch (const vel::io::LoadError &error) {
    EXPECT_EQ(error.what(), message) << text;
  }
}

// The cases of tests/io/data/<cases>, each loaded as `file`.
void expect_all_refused(Load load, const std::string &cases, const std::string &file) {
  for (const auto &c : vel_test::read_cases("io/data/" + cases)) expect_refused(load, c["text"], file, c["message"]);
}

TEST(Rejections, ModelFiles) {
  expect_all_refused(vel::io::load_model_text, "model_file_rejections.tsv", "model.yaml");
}

TEST(Rejections, Bif) {
  expect_all_refused(vel::io::load_bif_text, "bif_rejections.tsv", "net.bif");
  // 26 binary parents: a default row would ask for 2^27 entries.
  std::string text, parents;
  for (char c = 'a'; c <= 'z'; ++c) {
    text += std::string("variable ") + c + " { type discrete [ 2 ] { x, y }; }\n";
    parents += std::string(c == 'a' ? "" : ", ") + c;
  }
  text += "variable A { type discrete [ 2 ] { a0, a1 }; }\nprobability ( A | " + parents +
          " ) { default 0.5, 0.5; }\n";
  expect_refused(vel::io::load_bif_text, text, "net.bif",
                 "net.bif:28:1: with the table of 'A' the network would have more than 33554432 entries");
}

TEST(Rejections, Xmlbif) { expect_all_refused(vel::io::load_xmlbif_text, "xmlbif_rejections.tsv", "net.xml"); }

}  // namespace
