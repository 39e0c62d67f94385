// `refgrove generate`: synthetic text dumps for benchmarks and scale tests.
#include <CLI/CLI.hpp>

#include <filesystem>
#include <cinttypes>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "tools/commands.h"
#include "generate/dump_generator.h"
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

struct GenerateArgs {
  DumpGeneratorOptions options;
  std::string dir;
};

int generate(const GenerateArgs& args, std::ostream& out, std::ostream& err) {
  std::error_code ec;
  std::filesystem::create_directories(args.dir, ec);
  DumpGeneratorResult result;
  std::string error;
  if (!generate_dumps(as_dir(args.dir), args.options, &result, &error)) {
    err << "refgrove generate: " << error << "\n";
    return 1;
  }
  char line[160];
  std::snprintf(line, sizeof line, "wrote %" PRId64 " documents (largest DID %" PRId32 ", %" PRId64 " abstract words, %.1f MB) to ",
                args.options.docs, result.last_did, result.words, static_cast<double>(result.bytes) / 1e6);
  out << line << args.dir << "\n";
  return 0;
}

}  // namespace

void add_generate_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("generate", "write synthetic text dumps of any size");
  cmd->footer(kHelp);
  auto args = std::make_shared<GenerateArgs>();
  cmd->add_option("--docs", args->options.docs, "number of documents")
      ->required()
      ->type_name("N")
      ->transform(decimal(0, 100000000));
  cmd->add_option("--seed", args->options.seed, "seed of the generator")
      ->type_name("S")
      ->capture_default_str()
      ->transform(decimal(0, std::numeric_limits<std::int64_t>::max()));
  cmd->add_option("OUT_DIR", args->dir, "the directory to write")->required();
  cmd->callback([&ctx, args] { ctx.status = generate(*args, ctx.out, ctx.err); });
}

}  // namespace refgrove
