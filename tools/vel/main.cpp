// vel: generate, check and evaluate the models of a model file or network,
// infer, and export networks.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "commands.h"

namespace {

constexpr const char *description =
    "Generates the tables of the nodes of a model file from their models.\n"
    "The expression language is described in docs/expressions.md.";

}  // namespace

int main(int argc, char **argv) {
  using namespace vel::cli;
  CLI::App app{description, "vel"};
  app.set_version_flag("--version", std::string("vel ") + vel_version());
  app.require_subcommand(1);

  const char *file_help = "Model file (.yaml, .yml, .json), BIF (.bif) or XMLBIF (.xml, .xmlbif) network";

  GenerateOptions generate;
  CLI::App *generate_command = app.add_subcommand("generate", "Generate tables and print them");
  generate_command->add_option("FILE", generate.file, file_help)->required();
  CLI::Option *node = generate_command
      ->add_option("--node", generate.nodes, "Generate this node (repeatable; default: every node with a model)")
      ->allow_extra_args(false);
  generate_command->add_flag("--all", generate.all, "Also print the literal tables (the whole network)")
      ->excludes(node);
  CLI::Option *format = generate_command->add_option("--format", generate.format, "Output format (default text)")
      ->check(CLI::IsMember({"text", "json", "csv", "none"}));
  generate_command->add_option("--output-dir", generate.output_dir, "With --format csv: one file DIR/NODE.csv per table")
      ->needs(format);
  CLI::Option *log = generate_command->add_option(
      "--log", generate.log, "Write every log line to PATH ('-': standard error)");
  CLI::Option *no_log = generate_command->add_flag("--no-log", generate.no_log, "Run without a log");
  log->excludes(no_log);
  generate_command->add_flag("--stats", generate.stats, "Report entries and time per table on standard error");
  generate_command->add_flag("--propagate", generate.propagate,
                             "Compile the domain and propagate the file's evidence first");

  CheckOptions check;
  CLI::App *check_command = app.add_subcommand("check", "Check every model without generating");
  check_command->add_option("FILE", check.file, file_help)->required();
  check_command->add_flag("--strict", check.strict, "Exit with status 1 on warnings too");
  check_command->add_option("--max-entries", check.max_entries, "Larger tables are reported, not generated (default 1e8)")
      ->check(CLI::NonNegativeNumber);

  EvaluateOptions evaluate;
  CLI::App *evaluate_command = app.add_subcommand("evaluate", "Compute a real-valued function node's value");
  evaluate_command->add_option("FILE", evaluate.file, file_help)->required();
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

  ExportOptions export_options;
  CLI::App *export_command = app.add_subcommand("export", "Generate the tables, then write the whole network");
  export_command->add_option("FILE", export_options.file, file_help)->required();
  export_command->add_option("--to", export_options.format, "Network format")
      ->required()
      ->check(CLI::IsMember({"bif", "xmlbif", "uai"}));
  export_command->add_option("-o", export_options.output, "Write to OUT (default: standard output)")
      ->type_name("OUT");
  export_command->add_flag("--chance-only", export_options.chance_only,
                           "Leave out utility, continuous and real-valued function nodes; "
                           "write decisions as chance nodes with their policies");

  try {
    app.parse(argc, argv);
    if (!generate.output_dir.empty() && generate.format != "csv")
      throw CLI::ValidationError("--output-dir", "needs --format csv");
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
    if (*check_command) return run_check(check);
    if (*export_command) return run_export(export_options);
    if (*infer_command) return run_infer(infer);
    return run_evaluate(evaluate);
  } catch (const std::exception &error) {
    // Running out of memory, say: a message rather than an abort.
    std::fprintf(stderr, "vel: %s\n", error.what());
    return 2;
  }
}
