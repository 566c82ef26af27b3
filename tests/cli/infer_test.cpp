// vel infer, and --propagate for generate and evaluate: the documents, the
// evidence from the command line, and the refusals.  The values are derived
// by hand in the data file's comment.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run_program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using vel_test::data_file;
using vel_test::run_vel;

const std::string umbrella = data_file("inference/umbrella.yaml");

const std::string beliefs_json =
    "{\"domain\": \"umbrella\", \"evidence\": {\"Wet\": \"wet\"},\n"
    " \"probability_of_evidence\": 0.28125,\n"
    " \"beliefs\": [\n"
    "   {\"node\": \"Rain\", \"states\": [\"false\", \"true\"], \"probabilities\": [0.33333334, 0.6666667]},\n"
    "   {\"node\": \"Wet\", \"states\": [\"dry\", \"wet\"], \"probabilities\": [0, 1]},\n"
    "   {\"node\": \"Take\", \"states\": [\"false\", \"true\"], \"probabilities\": [0.5, 0.5]},\n"
    "   {\"node\": \"Cover\", \"states\": [\"open\", \"closed\"], \"probabilities\": [0.3333333, 0.6666667]},\n"
    "   {\"node\": \"Sky\", \"states\": [\"clear\", \"cloudy\"], \"probabilities\": [0.33333334, 0.6666667]}],\n"
    " \"expected_utilities\": [{\"node\": \"Comfort\", \"value\": -2.3333333}], \"error\": null}\n";

TEST(Infer, DocumentsAndEvidenceFromTheCommandLine) {
  const vel_test::Expected cases[] = {
      {{}, 0,
       "probability of the evidence: 0.28125\n"
       "Rain:  false 0.33333334  true 0.6666667\n"
       "Wet:  dry 0  wet 1\n"
       "Take:  false 0.5  true 0.5\n"
       "Cover:  open 0.3333333  closed 0.6666667\n"
       "Sky:  clear 0.33333334  cloudy 0.6666667\n"
       "Comfort: expected utility -2.3333333\n"
       "clique tables: 14 entries\n",
       ""},
      {{"--format", "json"}, 0, beliefs_json, ""},
      // Max-marginals; Take's tie goes to its first state.  The most probable
      // configuration's probability is 1/4 * 3/4 * 1/2 * Cover's float(2/3).
      {{"--max", "--format", "json"}, 0,
       "{\"domain\": \"umbrella\", \"evidence\": {\"Wet\": \"wet\"},\n"
       " \"probability_of_evidence\": 0.28125,\n"
       " \"beliefs\": [\n"
       "   {\"node\": \"Rain\", \"states\": [\"false\", \"true\"], \"probabilities\": [0.5, 1]},\n"
       "   {\"node\": \"Wet\", \"states\": [\"dry\", \"wet\"], \"probabilities\": [0, 1]},\n"
       "   {\"node\": \"Take\", \"states\": [\"false\", \"true\"], \"probabilities\": [1, 1]},\n"
       "   {\"node\": \"Cover\", \"states\": [\"open\", \"closed\"], \"probabilities\": [0.49999997, 1]},\n"
       "   {\"node\": \"Sky\", \"states\": [\"clear\", \"cloudy\"], \"probabilities\": [0.5, 1]}],\n"
       " \"expected_utilities\": [{\"node\": \"Comfort\", \"value\": -2.3333333}],\n"
       " \"configuration\": {\"Rain\": \"true\", \"Wet\": \"wet\", \"Take\": \"false\", \"Cover\": \"closed\", "
       "\"Sky\": \"cloudy\"},\n"
       " \"probability_of_configuration\": 0.06250000186264515, \"error\": null}\n",
       ""},
      {{"--evidence", "Sky=clear", "--evidence", "Rain=true", "--format", "json"}, 1,
       "{\"domain\": \"umbrella\", \"evidence\": {\"Rain\": \"true\", \"Wet\": \"wet\", \"Sky\": \"clear\"},\n"
       " \"probability_of_evidence\": null,\n \"beliefs\": [],\n \"expected_utilities\": [], \"error\": {\"code\": 4, "
       "\"name\": \"vel_error_impossible_evidence\", \"node\": \"umbrella\", \"message\": \"the evidence Rain = "
       "true, Wet = wet, Sky = clear is impossible (probability 0)\"}}\n",
       "vel: umbrella: error 4 (vel_error_impossible_evidence): the evidence Rain = true, Wet = wet, "
       "Sky = clear is impossible (probability 0)\n"},
      {{"--evidence", "Wet=soaked"}, 2, "", "vel: --evidence Wet=soaked: names no state of the node\n"},
      {{"--evidence", "Rain"}, 2, "", "vel: --evidence Rain: is not NODE=STATE\n"},
  };
  for (const auto &c : cases) vel_test::expect_run({"infer", umbrella}, c);
}

// Without results a table or value that reads them fails, and says how to
// get them; --propagate gets them, but not beside stated results.
TEST(Infer, PropagateForGenerateAndEvaluate) {
  const std::string cover_table =
      "Cover: conditional probability table\n"
      "     open     closed\n"
      "--------------------\n"
      "0.3333333  0.6666667\n";
  const auto generated = run_vel({"generate", umbrella, "--node", "Cover", "--no-log", "--propagate"});
  EXPECT_EQ(generated.status, 0);
  EXPECT_EQ(generated.out, cover_table);
  const auto evaluated = run_vel({"evaluate", umbrella, "--node", "Chance", "--propagate"});
  EXPECT_EQ(evaluated.out, "0.6666666865348816\n");

  const std::string hint = "; use --propagate, or state results in an inference block\n";
  EXPECT_EQ(run_vel({"generate", umbrella, "--no-log"}).err,
            "vel: Cover: error 17 (vel_error_not_compiled): Evaluation of function node Chance failed" + hint);

  const std::string stated = data_file("functions/pump.yaml");
  for (const char *command : {"generate", "evaluate"}) {
    const auto refused = run_vel({command, stated, "--node", "Net", "--propagate"});
    EXPECT_EQ(refused.status, 2) << command;
    EXPECT_EQ(refused.err, "vel: " + stated + ": --propagate cannot be used with an inference block, which states the results\n");
  }
  EXPECT_THAT(run_vel({"infer", stated}).err, HasSubstr("note: the inference block is ignored"));
}

}  // namespace
