// vel export: networks and model files through BIF, XMLBIF and UAI and back,
// and toulbar2 as an outside reader of the UAI files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>

#include <nlohmann/json.hpp>

#include "io/network_file.h"
#include "loaded_model_access.h"
#include "run_program.h"

namespace {

using vel::io::LoadedModel;
using vel_test::run_vel;
using vel_test::TempDir;
using vel_test::entries_of;
using vel_test::labels_of;
using vel_test::names_of;
using vel_test::nodes_of;

const char *const networks[] = {"asia", "cancer", "child", "earthquake", "sachs"};

std::string network_path(const std::string &name) {
  return std::string(VEL_SOURCE_DIR) + "/tests/data/networks/" + name + ".bif";
}

// Every node read back has the table nodes and the very entries of the
// original node of its name.
void expect_tables_of(const LoadedModel &original, const LoadedModel &back, const std::string &context) {
  for (vel_node_t *node : nodes_of(back)) {
    vel_node_t *source = vel_domain_get_node_by_name(original.domain.get(), vel_node_get_name(node));
    ASSERT_NE(source, nullptr) << context << ": " << vel_node_get_name(node);
    vel_table_t *table = vel_node_get_table(node), *source_table = vel_node_get_table(source);
    EXPECT_EQ(names_of(vel_table_get_nodes(table), vel_table_get_node_count(table)),
              names_of(vel_table_get_nodes(source_table), vel_table_get_node_count(source_table)))
        << context << ": " << vel_node_get_name(node);
    EXPECT_EQ(entries_of(node), entries_of(source)) << context << ": " << vel_node_get_name(node);
  }
}

vel_test::Run export_to(const std::string &file, const std::string &format, const std::string &out,
                        bool chance_only = false) {
  std::vector<std::string> arguments{"export", file, "--to", format, "-o", out};
  if (chance_only) arguments.push_back("--chance-only");
  return run_vel(arguments);
}

TEST(Export, StandardNetworksReadBackWithTheirTablesAndFormatsAreStable) {
  const TempDir directory;
  for (const std::string name : networks) {
    const LoadedModel original = vel::io::load_network_file(network_path(name));
    for (const std::string format : {"bif", "xmlbif"}) {
      const std::string first = directory.path() + "/" + name + "." + format;
      const std::string second = directory.path() + "/" + name + ".again." + format;
      const auto run = export_to(network_path(name), format, first);
      ASSERT_EQ(run.status, 0) << name << " " << format << ": " << run.err;
      EXPECT_EQ(run.out + run.err, "");
      const LoadedModel back = vel::io::load_network_file(first);
      const std::vector<vel_node_t *> nodes = nodes_of(original), back_nodes = nodes_of(back);
      ASSERT_EQ(names_of(back_nodes), names_of(nodes)) << name << " " << format;
      for (std::size_t i = 0; i < nodes.size(); ++i)
        EXPECT_EQ(labels_of(back_nodes[i]), labels_of(nodes[i])) << name << " " << format;
      expect_tables_of(original, back, name + " " + format);
      // The file exported again from what was read back is the same file.
      ASSERT_EQ(export_to(first, format, second).status, 0);
      EXPECT_EQ(vel_test::read_file(second), vel_test::read_file(first)) << name << " " << format;
    }
  }
}

TEST(Export, ModelFilesKeepTheirGeneratedTables) {
  const TempDir directory;
  for (const std::string name : {"lead_time", "maintenance", "weather"}) {
    const std::string path = std::string(VEL_SOURCE_DIR) + "/examples/" + name + ".yaml";
    const LoadedModel original = vel::io::load_network_file(path);
    ASSERT_EQ(vel_domain_generate_tables(original.domain.get()), 0) << name;
    std::vector<std::string> chance_names;
    for (vel_node_t *node : nodes_of(original))
      if (vel_node_get_category(node) != vel_category_utility) chance_names.push_back(vel_node_get_name(node));

    const std::string xml = directory.path() + "/" + name + ".xml";
    ASSERT_EQ(export_to(path, "xmlbif", xml).status, 0) << name;
    const LoadedModel from_xml = vel::io::load_network_file(xml);
    EXPECT_EQ(names_of(nodes_of(from_xml)), names_of(nodes_of(original)));
    for (vel_node_t *node : nodes_of(from_xml))
      EXPECT_EQ(vel_node_get_category(node),
                vel_node_get_category(vel_domain_get_node_by_name(original.domain.get(), vel_node_get_name(node))));
    expect_tables_of(original, from_xml, name + " xmlbif");

    const std::string bif = directory.path() + "/" + name + ".bif";
    ASSERT_EQ(export_to(path, "bif", bif, true).status, 0) << name;
    const LoadedModel from_bif = vel::io::load_network_file(bif);
    EXPECT_EQ(names_of(nodes_of(from_bif)), chance_names);
    expect_tables_of(original, from_bif, name + " bif");
    if (name == "weather") {
      EXPECT_EQ(labels_of(vel_domain_get_node_by_name(from_bif.domain.get(), "Temp")),
                (std::vector<std::string>{"-inf_0", "0_10", "10_20", "20_inf"}));
      EXPECT_EQ(vel_node_get_category(vel_domain_get_node_by_name(from_bif.domain.get(), "Heating")),
                vel_category_chance);
    }
    if (name == "maintenance") {
      EXPECT_EQ(labels_of(vel_domain_get_node_by_name(from_bif.domain.get(), "Hours")),
                (std::vector<std::string>{"8", "16", "24"}));
    }
  }
}

// A generation failure ends the export before anything is written (the
// transcript export holds the refusals).
TEST(Export, NothingIsWrittenWhenGenerationFails) {
  const TempDir directory;
  const std::string out = directory.path() + "/out";
  const auto run = run_vel({"export", vel_test::data_file("two_failures.yaml"), "--to", "bif", "-o", out});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, testing::StartsWith("vel: Umbrella: error 34 (vel_error_invalid_expression): "));
  EXPECT_FALSE(std::filesystem::exists(out));
}

// toulbar2's output for the network's UAI export, or nothing when toulbar2 is
// not installed.
std::optional<std::string> run_toulbar2(const TempDir &directory, const std::string &name) {
  if (std::system("command -v toulbar2 >/dev/null 2>&1") != 0) return std::nullopt;
  const std::string uai = directory.path() + "/" + name + ".uai", log = directory.path() + "/toulbar2.log";
  EXPECT_EQ(export_to(network_path(name), "uai", uai).status, 0) << name;
  const int status = std::system(("toulbar2 '" + uai + "' > '" + log + "' 2>&1").c_str());
  EXPECT_EQ(status, 0) << uai;
  return vel_test::read_file(log);
}

double toulbar2_probability(const std::string &log) {
  std::smatch match;
  if (!std::regex_search(log, match, std::regex(R"(Optimum: .* prob: ([0-9.e+-]+))"))) return -1;
  return std::stod(match[1]);
}

// toulbar2 reads every exported UAI file, and the probability of the most
// probable configuration it finds is the one `vel infer --max` reports (which
// the inference tests check against an independent NumPy computation).
TEST(Toulbar2, ReadsEveryExportedUaiFileWithItsMostProbableConfiguration) {
  const TempDir directory;
  for (const std::string name : networks) {
    const std::optional<std::string> log = run_toulbar2(directory, name);
    if (!log) GTEST_SKIP() << "toulbar2 is not installed";
    const std::size_t count = nodes_of(vel::io::load_network_file(network_path(name))).size();
    EXPECT_THAT(*log, testing::HasSubstr("Read " + std::to_string(count) + " variables")) << name;
    EXPECT_THAT(*log, testing::HasSubstr("and " + std::to_string(count) + " cost functions")) << name;
    EXPECT_THAT(*log, testing::Not(testing::ContainsRegex("Warning|Error|error"))) << name << "\n" << *log;
    const auto infer = run_vel({"infer", network_path(name), "--max", "--format", "json"});
    ASSERT_EQ(infer.status, 0) << name << ": " << infer.err;
    const double vel_probability = nlohmann::json::parse(infer.out).at("probability_of_configuration");
    EXPECT_NEAR(toulbar2_probability(*log) / vel_probability, 1, 1e-3) << name;
  }
}

}  // namespace
