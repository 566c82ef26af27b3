// What the BIF and XMLBIF readers build, and how a file's format is chosen.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "case_file.h"
#include "io/network_file.h"

namespace {

using vel::io::LoadedModel;

vel_node_t *node(const LoadedModel &model, const char *name) {
  vel_node_t *found = vel_domain_get_node_by_name(model.domain.get(), name);
  EXPECT_NE(found, nullptr) << name;
  return found;
}

std::vector<std::string> names(vel_node_t *const *nodes) {
  std::vector<std::string> result;
  for (; nodes && *nodes; ++nodes) result.push_back(vel_node_get_name(*nodes));
  return result;
}

std::vector<std::string> labels(vel_node_t *node) {
  std::vector<std::string> result;
  for (std::size_t s = 0; s < vel_node_get_number_of_states(node); ++s)
    result.push_back(vel_node_get_state_label(node, s));
  return result;
}

std::vector<float> table(vel_node_t *node) {
  vel_table_t *table = vel_node_get_table(node);
  const float *data = vel_table_get_data(table);
  return {data, data + vel_table_get_size(table)};
}

TEST(BifReader, BlocksInAnyOrderRowsDefaultsAndTables) {
  const LoadedModel model =
      vel::io::load_bif_text(vel_test::test_file_text("io/data/rows_defaults_tables.bif"), "net.bif");
  EXPECT_EQ(model.name, "test net");
  std::vector<std::string> order;
  for (vel_node_t *n = vel_domain_get_first_node(model.domain.get()); n; n = vel_node_get_next(n))
    order.push_back(vel_node_get_name(n));
  EXPECT_EQ(order, (std::vector<std::string>{"A", "B", "C", "D"}));
  EXPECT_EQ(labels(node(model, "B")), (std::vector<std::string>{"b 0", "b1"}));
  EXPECT_EQ(labels(node(model, "D")), (std::vector<std::string>{"12+", "Asy/Patch", "x"}));
  EXPECT_EQ(names(vel_node_get_parents(node(model, "C"))), (std::vector<std::string>{"A", "B"}));
  // A `table` lists C's first state for every configuration of A and B first.
  EXPECT_EQ(table(node(model, "C")), (std::vector<float>{0.1f, 0.9f, 0.2f, 0.8f, 0.3f, 0.7f, 0.4f, 0.6f}));
  EXPECT_EQ(table(node(model, "D")), (std::vector<float>{1, 0, 0, 0.2f, 0.3f, 0.5f}));
  EXPECT_EQ(table(node(model, "A")), (std::vector<float>{0.25f, 0.75f}));

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
  EXPECT_EQ(labels(node(model, "Weather")), (std::vector<std::string>{"<5", "5-12"}));
  EXPECT_EQ(vel_node_get_category(node(model, "Weather")), vel_category_chance);
  EXPECT_EQ(vel_node_get_category(node(model, "Umbrella")), vel_category_decision);
  EXPECT_EQ(vel_node_get_category(node(model, "Comfort")), vel_category_utility);
  EXPECT_EQ(names(vel_node_get_parents(node(model, "Umbrella"))), (std::vector<std::string>{"Weather"}));
  EXPECT_EQ(table(node(model, "Comfort")), (std::vector<float>{1, -2, 3.5f, 40}));
  EXPECT_EQ(table(node(model, "Weather")), (std::vector<float>{0.3f, 0.7f}));
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
