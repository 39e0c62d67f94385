// `refgrove generate`: synthetic text dumps for benchmarks and scale tests.
#include <CLI/CLI.hpp>

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

#include "generate/dump_generator.h"
#ifdef REFGROVE_IMPORT
#include "generate/works_generator.h"
#endif
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

const char kHelp[] =
    "Writes synthetic text dumps of N documents into OUT_DIR (created when\n"
    "missing), under the names that refgrove preprocess reads. Documents have\n"
    "ascending DIDs, about 10 citations of earlier documents, 9 title words,\n"
    "2.5 authors and 120 abstract words drawn from a Zipf-distributed\n"
    "vocabulary; some keys and years are missing. The same N and S always\n"
    "give the same files. 200,000 documents take about 190 MB.";

// Where importing is built: the same documents as works.
const char kWorksHelp[] =
    "\n\n"
    "With --format, the same documents are written as works in a source's own\n"
    "format, for refgrove import: openalex (part_NNN.gz, 100,000 works each;\n"
    "keys W + the DID), s2 (papers, abstracts and citations .jsonl; keys the\n"
    "DIDs), arxiv (abs/NNNN/NNNNNNN.abs and cit-generated.txt; keys gen/ + the\n"
    "DID in seven digits) or csv (works.csv, citations.csv; keys W + the DID).";

struct GenerateArgs {
  DocumentGeneratorOptions options;
  std::string dir, format = "dumps";
};

// The summary line of a run, or empty with `error` set when the files
// cannot be written.
std::string write_dumps(const GenerateArgs& args, std::string* error) {
  DumpGeneratorResult result;
  if (!generate_dumps(as_dir(args.dir), args.options, &result, error)) return {};
  char line[160];
  std::snprintf(line, sizeof line,
                "wrote %" PRId64 " documents (largest DID %" PRId32 ", %" PRId64 " abstract words, %.1f MB) to ",
                args.options.docs, result.last_did, result.words, static_cast<double>(result.bytes) / 1e6);
  return line + args.dir;
}

#ifdef REFGROVE_IMPORT
std::string write_works(const GenerateArgs& args, std::string* error) {
  WorksGeneratorResult result;
  if (!generate_works(args.format, as_dir(args.dir), args.options, &result, error)) return {};
  char line[160];
  std::snprintf(line, sizeof line, "wrote %" PRId64 " works as %s (largest DID %" PRId32 ", %.1f MB) to ",
                args.options.docs, args.format.c_str(), result.last_did, static_cast<double>(result.bytes) / 1e6);
  return line + args.dir;
}
#endif

int generate(const GenerateArgs& args, std::ostream& out, std::ostream& err) {
  std::error_code ec;
  std::filesystem::create_directories(args.dir, ec);
  std::string error;
#ifdef REFGROVE_IMPORT
  const std::string line = args.format == "dumps" ? write_dumps(args, &error) : write_works(args, &error);
#else
  const std::string line = write_dumps(args, &error);
#endif
  if (line.empty()) {
    err << "refgrove generate: " << error << "\n";
    return 1;
  }
  out << line << "\n";
  return 0;
}

}  // namespace

void add_generate_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("generate", "write synthetic text dumps of any size");
#ifdef REFGROVE_IMPORT
  cmd->footer(std::string(kHelp) + kWorksHelp);
#else
  cmd->footer(kHelp);
#endif
  auto args = std::make_shared<GenerateArgs>();
  cmd->add_option("--docs", args->options.docs, "number of documents")
      ->required()
      ->type_name("N")
      ->transform(decimal(0, 100000000));
  cmd->add_option("--seed", args->options.seed, "seed of the generator")
      ->type_name("S")
      ->capture_default_str()
      ->transform(decimal(0, std::numeric_limits<std::int64_t>::max()));
#ifdef REFGROVE_IMPORT
  cmd->add_option("--format", args->format, "dumps (the default), or works as openalex, s2, arxiv or csv")
      ->check(CLI::IsMember({"dumps", "openalex", "s2", "arxiv", "csv"}));
#endif
  cmd->add_option("OUT_DIR", args->dir, "the directory to write")->required();
  cmd->callback([&ctx, args] { ctx.status = generate(*args, ctx.out, ctx.err); });
}

}  // namespace refgrove
