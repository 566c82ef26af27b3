// vel: generate, check and evaluate the models of a model file, and infer.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "commands.h"
#include "version.h"

int main(int argc, char **argv) {
  using namespace vel::cli;
  CLI::App app{"Generates the tables of the nodes of a model file from their models, and infers.", "vel"};
  app.set_version_flag("--version", std::string("vel ") + program_version);
  app.require_subcommand(1);

  GenerateOptions generate;
  CLI::App *generate_command = app.add_subcommand("generate", "Generate tables and print them");
  generate_command->add_option("FILE", generate.file, "Model file")->required();
  generate_command
      ->add_option("--node", generate.nodes, "Generate this node (repeatable; default: every node with a model)")
      ->allow_extra_args(false);
  generate_command->add_option("--format", generate.format, "Output format (default text)")
      ->check(CLI::IsMember({"text", "json", "csv", "none"}));
  CLI::Option *log = generate_command->add_option(
      "--log", generate.log, "Write every log line to PATH ('-': standard error)");
  CLI::Option *no_log = generate_command->add_flag("--no-log", generate.no_log, "Run without a log");
  log->excludes(no_log);
  generate_command->add_flag("--stats", generate.stats, "Report entries and time per table on standard error");
  generate_command->add_flag("--propagate", generate.propagate,
                             "Compile the domain and propagate the file's evidence first");

  std::string check_file;
  CLI::App *check_command = app.add_subcommand("check", "Check every model without generating");
  check_command->add_option("FILE", check_file, "Model file")->required();

  EvaluateOptions evaluate;
  CLI::App *evaluate_command = app.add_subcommand("evaluate", "Compute a real-valued function node's value");
  evaluate_command->add_option("FILE", evaluate.file, "Model file")->required();
  evaluate_command->add_option("--node", evaluate.node, "The function node")->required();
  evaluate_command->add_option("--mode", evaluate.mode, "Values from inference (default) or configuration")
      ->check(CLI::IsMember({"inference", "configured"}));
  evaluate_command->add_option("--format", evaluate.format, "Output format (default text)")
      ->check(CLI::IsMember({"text", "json"}));
  evaluate_command->add_flag("--propagate", evaluate.propagate,
                             "Compile the domain and propagate the file's evidence first");

  InferOptions infer;
  CLI::App *infer_command =
      app.add_subcommand("infer", "Compile, propagate the evidence, print beliefs and expected utilities");
  infer_command->add_option("FILE", infer.file, "Model file")->required();
  infer_command
      ->add_option("--evidence", infer.evidence,
                   "NODE=STATE: evidence replacing the file's for NODE (NODE=: none); repeatable")
      ->allow_extra_args(false);
  infer_command->add_flag("--max", infer.max, "Max-marginals and the most probable configuration");
  infer_command->add_option("--format", infer.format, "Output format (default text)")
      ->check(CLI::IsMember({"text", "json"}));

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    // Help and version end with status 0; every argument error is a usage
    // error, status 2, whatever code the parser would give it.
    return app.exit(error) == 0 ? 0 : 2;
  }

  try {
    if (*generate_command) {
      generate.log_given = log->count() > 0;
      return run_generate(generate);
    }
    if (*check_command) return run_check(check_file);
    if (*infer_command) return run_infer(infer);
    return run_evaluate(evaluate);
  } catch (const std::exception &error) {
    // Running out of memory, say: a message rather than an abort.
    std::fprintf(stderr, "vel: %s\n", error.what());
    return 2;
  }
}
