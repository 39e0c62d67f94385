// `refgrove preprocess IN_DIR OUT_DIR`: the text dumps of IN_DIR into the
// data directory OUT_DIR, exactly as refgrove_preproc_1 does it.
#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "core/refgrove.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace {

const char kHelp[] =
    "Reads the text dumps of IN_DIR, graph-data-aug-2002.txt and\n"
    "word-data{1,2,3}-mar-2002.txt, and writes the data directory OUT_DIR:\n"
    "word-data, word-idx, graph_data and word-table. OUT_DIR is created when\n"
    "missing; existing data files in it are replaced. Progress goes to\n"
    "standard output and standard error. A missing dump is reported (word\n"
    "dumps) or read as empty (graph dump); a word-dump line without a DID is\n"
    "reported and skipped.\n"
    "\n"
    "Exit status: 0 when done, 1 when a directory is unusable, 2 on a usage\n"
    "error, 3 when a dump does not parse (the parse error is written to\n"
    "standard error, and the data directory is left incomplete).";

struct PreprocessArgs {
  std::string in_dir, out_dir;
};

int preprocess_dirs(const PreprocessArgs& args, std::ostream& err) {
  const std::string in = as_dir(args.in_dir), out = as_dir(args.out_dir);
  std::error_code ec;
  if (!std::filesystem::is_directory(in, ec)) {
    err << "refgrove preprocess: " << args.in_dir << ": no such directory\n";
    return 1;
  }
  std::filesystem::create_directories(out, ec);
  if (!std::filesystem::is_directory(out, ec)) {
    err << "refgrove preprocess: cannot create " << args.out_dir << "\n";
    return 1;
  }
  refgrove_preproc_1(in.c_str(), out.c_str());  // ends the process with status 3 on a parse error
  return 0;
}

}  // namespace

void add_preprocess_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("preprocess", "turn the text dumps of a directory into a data directory");
  cmd->footer(kHelp);
  auto args = std::make_shared<PreprocessArgs>();
  cmd->add_option("IN_DIR", args->in_dir, "the directory of the text dumps")->required();
  cmd->add_option("OUT_DIR", args->out_dir, "the data directory to write")->required();
  cmd->callback([&ctx, args] { ctx.status = preprocess_dirs(*args, ctx.err); });
}
