// Tables out: the JSON document, with the failure that ended the run, and
// number text (the generate transcript holds the text and CSV layouts).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "case_file.h"
#include "io/json_text.h"
#include "io/model_file.h"
#include "io/table_output.h"
#include "loaded_model_access.h"

namespace {

class TableOutput : public testing::Test {
 protected:
  vel_node_t *node(const char *name) { return vel_test::node(model_, name); }
  vel::io::LoadedModel model_ = vel::io::load_model_text(vel_test::test_file_text("cli/data/plant.yaml"), "plant.yaml");
  std::ostringstream out_;
};

TEST_F(TableOutput, JsonDocumentWithTheFailureThatEndedTheRun) {
  const vel::io::GenerationError error{34, "Temp", "Node Temp: \"x\"\nsecond line"};
  vel::io::write_json_document(out_, model_.name, {node("Season"), node("Temp")}, &error);
  vel::io::write_json_document(out_, "pl\"ant\xff", {}, nullptr);  // escaped; not UTF-8: U+FFFD
  EXPECT_EQ(out_.str(),
            "{\n"
            "  \"domain\": \"plant\",\n"
            "  \"tables\": [\n"
            "    {\"node\": \"Season\", \"table\": \"conditional probability\",\n"
            "     \"nodes\": [\"Season\"],\n"
            "     \"states\": [[\"winter, dry\", \"wet, \\\"cold\\\"\"]],\n"
            "     \"shape\": [2],\n"
            "     \"data\": [0.1, 0.9]},\n"
            "    {\"node\": \"Temp\", \"table\": \"conditional probability\",\n"
            "     \"nodes\": [\"Season\", \"Temp\"],\n"
            "     \"states\": [[\"winter, dry\", \"wet, \\\"cold\\\"\"], [\"[-inf;0)\", \"[0;10.5)\"]],\n"
            "     \"shape\": [2, 2],\n"
            "     \"data\": [0.5, 0.5, 0.33333334, -0]}\n"
            "  ],\n"
            "  \"error\": {\"code\": 34, \"name\": \"vel_error_invalid_expression\", \"node\": \"Temp\", "
            "\"message\": \"Node Temp: \\\"x\\\"\\nsecond line\"}\n"
            "}\n"
            "{\n  \"domain\": \"pl\\\"ant\xEF\xBF\xBD\",\n  \"tables\": [],\n  \"error\": null\n}\n");
}

TEST(NumberText, NonFiniteValuesAreWordsAndJsonStrings) {
  const float inf = std::numeric_limits<float>::infinity();
  EXPECT_EQ(vel::io::shortest_text(inf), "inf");
  EXPECT_EQ(vel::io::json_number(-inf), "\"-inf\"");
  EXPECT_EQ(vel::io::json_number(std::nan("")), "\"nan\"");
  EXPECT_EQ(vel::io::json_number(0.1), "0.1");  // the double's shortest text
}

}  // namespace
