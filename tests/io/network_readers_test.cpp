// What the BIF and XMLBIF readers build, and how a file's format is chosen.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "case_file.h"
#include "io/network_file.h"
#include "loaded_model_access.h"

namespace {

using vel::io::LoadedModel;
using vel_test::node;

TEST(BifReader, BlocksInAnyOrderRowsDefaultsAndTables) {
  const LoadedModel model =
      vel::io::load_bif_text(vel_test::test_file_text("io/data/rows_defaults_tables.bif"), "net.bif");
  EXPECT_EQ(model.name, "test net");
  EXPECT_EQ(vel_test::names_of(vel_test::nodes_of(model)), (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_EQ(vel_test::labels_of(node(model, "B")), (std::vector<std::string>{"b 0", "b1"}));
  EXPECT_EQ(vel_test::labels_of(node(model, "D")), (std::vector<std::string>{"12+", "Asy/Patch", "x"}));
  EXPECT_EQ(vel_test::names_of(vel_node_get_parents(node(model, "C"))), (std::vector<std::string>{"A", "B"}));
  // A `table` lists C's first state for every configuration of A and B first.
  EXPECT_EQ(vel_test::entries_of(node(model, "C")), (std::vector<float>{0.1f, 0.9f, 0.2f, 0.8f, 0.3f, 0.7f, 0.4f, 0.6f}));
  EXPECT_EQ(vel_test::entries_of(node(model, "D")), (std::vector<float>{1, 0, 0, 0.2f, 0.3f, 0.5f}));
  EXPECT_EQ(vel_test::entries_of(node(model, "A")), (std::vector<float>{0.25f, 0.75f}));

  const vel::io::NodeSource &d = model.sources.at(node(model, "D"));
  EXPECT_EQ(d.name.line, 12u);
  EXPECT_EQ(d.name.column, 10u);
  EXPECT_EQ(d.states.line, 12u);
  EXPECT_EQ(d.states.column, 14u);
  EXPECT_EQ(d.table.line, 13u);
  EXPECT_EQ(d.table.column, 1u);
}

TEST(XmlbifReader, CategoriesEscapesAndTablesInStorageOrder) {
  const LoadedModel model =
      vel::io::load_xmlbif_text(vel_test::test_file_text("io/data/categories_escapes.xml"), "id.xml");
  EXPECT_EQ(model.name, "d&c");
  EXPECT_EQ(vel_test::labels_of(node(model, "Weather")), (std::vector<std::string>{"<5", "5-12"}));
  EXPECT_EQ(vel_node_get_category(node(model, "Weather")), vel_category_chance);
  EXPECT_EQ(vel_node_get_category(node(model, "Umbrella")), vel_category_decision);
  EXPECT_EQ(vel_node_get_category(node(model, "Comfort")), vel_category_utility);
  EXPECT_EQ(vel_test::names_of(vel_node_get_parents(node(model, "Umbrella"))), (std::vector<std::string>{"Weather"}));
  EXPECT_EQ(vel_test::entries_of(node(model, "Comfort")), (std::vector<float>{1, -2, 3.5f, 40}));
  EXPECT_EQ(vel_test::entries_of(node(model, "Weather")), (std::vector<float>{0.3f, 0.7f}));
  EXPECT_EQ(model.sources.at(node(model, "Comfort")).table.line, 18u);
}

TEST(NetworkFile, FormatByExtensionThenByContent) {
  using vel::io::NetworkFormat;
  const struct {
    const char *path;
    const char *text;
    NetworkFormat format;
  } cases[] = {
      {"a/net.BIF", "", NetworkFormat::bif},
      {"net.xmlbif", "", NetworkFormat::xmlbif},
      {"net.json", "<", NetworkFormat::model_file},
      {"net", "\xEF\xBB\xBF  <?xml version=\"1.0\"?>", NetworkFormat::xmlbif},
      {"v1.2/net", "// c\n/* c */ variable A {", NetworkFormat::bif},
      {"net.txt", "nodes: []", NetworkFormat::model_file},
  };
  for (const auto &c : cases) EXPECT_EQ(vel::io::network_format(c.path, c.text), c.format) << c.path;
}

}  // namespace
