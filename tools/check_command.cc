// `refgrove check DIR`: reports everything in a data directory that does not
// fit together, one finding per line, with the file and the byte offset.
#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/validate.h"
#include "preproc/manifest.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

const char kHelp[] =
    "Reads the data directory DIR (word-table, word-idx, word-data and\n"
    "graph_data) byte by byte and reports, one line each, what does not fit\n"
    "together: sizes that do not match their counts, records cut short, string\n"
    "offsets outside their tables, document offsets that go backwards or past\n"
    "the end of word-data, a missing end sentinel in word-idx, word and author\n"
    "ids outside their tables, graph records out of DID order. Each line names\n"
    "the file and the byte offset of the fault. At most 10 findings of one\n"
    "kind are listed, then their number. When DIR holds refgrove-manifest.json\n"
    "(written by refgrove preprocess and by refgrove_preproc/2 of the\n"
    "SWI-Prolog library), the files' sizes and checksums are compared with it:\n"
    "a file that differs comes from another run.\n"
    "\n"
    "Exit status: 0 when nothing was found, 1 when something was or DIR is\n"
    "not a directory, 2 on a usage error.";

int check_dir(const std::string& dir_arg, std::ostream& out, std::ostream& err) {
  if (const std::string problem = directory_problem(dir_arg); !problem.empty()) {
    err << "refgrove check: " << dir_arg << ": " << problem << "\n";
    return 1;
  }
  const std::string dir = as_dir(dir_arg);
  std::vector<Finding> findings = validate_data_dir(dir);
  for (ManifestMismatch& m : manifest_mismatches(dir)) {
    findings.push_back(Finding{std::move(m.file), -1, std::move(m.message)});
  }
  for (const Finding& f : findings) out << dir << f.text() << "\n";
  if (findings.empty()) {
    out << dir << ": no problems found.\n";
    return 0;
  }
  out << findings.size() << (findings.size() == 1 ? " problem" : " problems") << " found in " << dir << ".\n";
  return 1;
}

}  // namespace

void add_check_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd =
      app.add_subcommand("check", "report what is inconsistent in a data directory, with files and offsets");
  cmd->footer(kHelp);
  auto dir = std::make_shared<std::string>();
  cmd->add_option("DIR", *dir, "the data directory")
      ->required()
      ->check(CLI::Validator(
          [](const std::string& s) { return s.empty() ? std::string("an empty directory name") : std::string(); }, "",
          "non-empty"));
  cmd->callback([&ctx, dir] { ctx.status = check_dir(*dir, ctx.out, ctx.err); });
}

}  // namespace refgrove
