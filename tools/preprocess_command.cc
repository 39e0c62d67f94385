// `refgrove preprocess [-v] IN_DIR OUT_DIR`: the text dumps of IN_DIR into the
// data directory OUT_DIR, safely (see safe_preprocess.h).
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <memory>
#include <string>

#include "tools/commands.h"
#include "tools/safe_preprocess.h"

namespace refgrove {

namespace {

const char kHelp[] =
    "Reads the text dumps of IN_DIR, graph-data-aug-2002.txt and\n"
    "word-data{1,2,3}-mar-2002.txt, and makes the data directory OUT_DIR:\n"
    "word-data, word-idx, graph_data, word-table and refgrove-manifest.json\n"
    "(the files' sizes and checksums, compared by refgrove check).\n"
    "\n"
    "The run writes into a new directory beside OUT_DIR (.OUT_DIR.refgrove-tmp.PID)\n"
    "and moves the files into OUT_DIR only once they are complete and pass\n"
    "refgrove check: a run that fails or is interrupted leaves OUT_DIR as it was.\n"
    "Other files in OUT_DIR are not touched. A second run into the same OUT_DIR\n"
    "waits for the first (lock file .OUT_DIR.refgrove-lock beside it). What an\n"
    "interrupted run left behind is removed by the next run.\n"
    "\n"
    "IN_DIR holding a data directory rather than dumps is said so.\n"
    "Every dump must be a regular file. A word-dump line without a DID is\n"
    "skipped. Dumps that hold more than a data directory can (2^31 - 1 bytes\n"
    "of word-data, 2^24 distinct words) stop the run with a message that\n"
    "says so. At the end a summary says what was made and what was skipped\n"
    "or changed.\n"
    "\n"
    "On a terminal a progress line shows the share of the dumps read, the\n"
    "rate and the time left. When standard error is not a terminal, the\n"
    "module's messages are written without their running counters, and a\n"
    "line at the start, at each tenth of the dumps read and at the end of\n"
    "reading tells the same. -v (--verbose) writes the module's own messages\n"
    "instead, exactly as it writes them.\n"
    "\n"
    "Exit status: 0 when done, 1 when an input, a write or the check failed,\n"
    "2 on a usage error, 3 when a dump does not parse (the parse error is\n"
    "written to standard error, then the dump, the record's line and what it\n"
    "lacks), 130 and 143 when interrupted by SIGINT and\n"
    "SIGTERM.";

}  // namespace

void add_preprocess_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("preprocess", "turn the text dumps of a directory into a data directory");
  cmd->footer(kHelp);
  auto request = std::make_shared<PreprocessRequest>();
  cmd->add_flag("-v,--verbose", request->verbose, "the module's own messages instead of a progress line");
  cmd->add_option("IN_DIR", request->in_dir, "the directory of the text dumps")->required();
  cmd->add_option("OUT_DIR", request->out_dir, "the data directory to make")->required();
  cmd->callback([&ctx, request] {
    request->terminal = isatty(STDERR_FILENO) == 1;
    ctx.status = safe_preprocess(*request, ctx.out, ctx.err);
  });
}

}  // namespace refgrove
