// `refgrove import FORMAT DIR INPUT...`: works in a source's own format made
// into the data directory DIR, safely (import/import.h).
#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

#include "import/import.h"
#include "tools/commands.h"
#include "tools/safe_preprocess.h"

namespace refgrove {
namespace {

constexpr char kPrefix[] = "refgrove import: ";

const char kHelp[] =
    "Reads the works of the INPUTs, files or directories (walked, files in name\n"
    "order; names ending in .gz are read compressed), and makes the data\n"
    "directory DIR of them, as refgrove preprocess does of the dumps: staged\n"
    "beside DIR, checked, given a manifest and only then moved into place.\n"
    "\n"
    "FORMAT openalex: OpenAlex works as JSON Lines (the snapshot's part_*.gz)\n"
    "or API pages (an object with \"results\"); in directories, the files\n"
    "ending in .gz, .json, .jsonl and .ndjson. A work read again replaces the\n"
    "earlier record. Keys are the works' short ids (W2741809807).\n"
    "\n"
    "FORMAT s2: Semantic Scholar's dataset files (papers, abstracts,\n"
    "citations; JSON Lines, each record known by its fields); in directories,\n"
    "the files ending in .gz, .json, .jsonl and .ndjson. Keys are corpus ids.\n"
    "\n"
    "FORMAT arxiv: arXiv abstracts (.abs files: Paper:, Title:, Authors:,\n"
    "Date: and the abstract) and citation edge lists in SNAP's layout (other\n"
    "files: FromNodeId ToNodeId lines, cit-HepTh.txt); in directories, the\n"
    "files ending in .abs, .txt and those with .gz. Keys are arXiv ids.\n"
    "\n"
    "FORMAT csv: tables of works (a header with id and any of year, title,\n"
    "authors separated by ';', abstract) and of citations (citing, cited),\n"
    "comma-separated, tab-separated when the name ends in .tsv; in\n"
    "directories, the files ending in .csv, .tsv and those with .gz. Keys are\n"
    "the values of id. --columns id=paper_id,title=name reads other headers.\n"
    "\n"
    "DIDs are given from 1 in the order the works are first read; the works\n"
    "cited from outside the set get the DIDs after them, and their ids are\n"
    "kept in DIR/outside-keys. A summary ends the run.\n"
    "\n"
    "Exit status: 0 when done, 1 when an input cannot be used (the error names\n"
    "the file, the line and the field; DIR is left as it was), a write or the\n"
    "check failed, 2 on a usage error.";

struct ImportArgs {
  std::string format, target, years, columns;
  std::vector<std::string> inputs;
  bool skip_bad = false;
};

bool parse_years(const std::string& text, refgrove::YearRange* range) {
  std::size_t dash = text.find('-', 1);
  if (dash == std::string::npos) return false;
  try {
    std::size_t used = 0;
    range->from = std::stoi(text.substr(0, dash), &used);
    if (used != dash) return false;
    range->to = std::stoi(text.substr(dash + 1), &used);
    return used == text.size() - dash - 1 && range->from <= range->to;
  } catch (const std::exception&) {
    return false;
  }
}

void print_summary(std::ostream& out, const refgrove::ImportSummary& s) {
  out << "Made " << s.target << ":\n"
      << "  " << s.works.read << " works read, " << s.works.kept << " kept, " << s.works.replaced
      << " replaced by a later record, " << s.refused << " records refused\n"
      << "  " << s.works.citations_within << " citations within the set, " << s.works.citations_outside
      << " citations of " << s.works.outside_works << " works outside it\n";
  if (s.works.citations_unplaced > 0) {
    out << "  " << s.works.citations_unplaced << " citations by works not in the set left out\n";
  }
  if (s.works.citations_unknown > 0) {
    out << "  " << s.works.citations_unknown << " citations of works not known (no id) left out\n";
  }
  out << "  " << s.data.documents << " documents with abstracts, " << s.data.words << " distinct words, "
      << s.data.authors << " authors\n";
}

int run_import(const ImportArgs& args, std::ostream& out, std::ostream& err) {
  ToolRunHooks hooks(err, kPrefix);
  refgrove::ImportOptions options;
  options.skip_bad = args.skip_bad;
  if (!args.years.empty()) {
    refgrove::YearRange range;
    if (!parse_years(args.years, &range)) {
      err << kPrefix << "--years " << args.years << ": not FROM-TO, two years with FROM <= TO\n";
      return 2;
    }
    options.years = range;
  }
  std::string error;
  if (!args.columns.empty() && !parse_csv_columns(args.columns, &options.columns, &error)) {
    err << kPrefix << "--columns: " << error << "\n";
    return 2;
  }
  std::ostream quiet(nullptr);
  options.out = options.err = &quiet;
  try {
    const refgrove::ImportSummary summary = refgrove::import_works(
        args.format, args.inputs, args.target, options, hooks,
        [&err](const refgrove::ImportError& e) { err << kPrefix << "refused " << e.what() << "\n"; });
    print_summary(out, summary);
    return 0;
  } catch (const refgrove::ImportError& e) {
    err << kPrefix << e.what() << "\n" << kPrefix << "nothing was written\n";
  } catch (const StagedRunError& e) {
    err << kPrefix << e.what() << "\n";
    for (const std::string& problem : e.problems) err << "  " << problem << "\n";
  } catch (const std::exception& e) {
    err << kPrefix << e.what() << "\n";
  }
  return 1;
}

}  // namespace

void add_import_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("import", "make a data directory of works in a source's own format");
  cmd->footer(kHelp);
  auto args = std::make_shared<ImportArgs>();
  cmd->add_option("FORMAT", args->format, "the inputs' format: openalex, s2, arxiv or csv")->required();
  cmd->add_option("DIR", args->target, "the data directory to make")->required();
  cmd->add_option("INPUT", args->inputs, "input files or directories")->required();
  cmd->add_option("--years", args->years, "keep only the works of the years FROM-TO");
  cmd->add_option("--columns", args->columns, "csv: the headers that hold our columns, as id=paper_id,title=name");
  cmd->add_flag("--skip-bad", args->skip_bad, "skip bad records and count them instead of stopping");
  cmd->callback([&ctx, args] { ctx.status = run_import(*args, ctx.out, ctx.err); });
}

}  // namespace refgrove
