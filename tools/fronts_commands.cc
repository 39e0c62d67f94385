// The subcommands over the network's structure in time: `main-path`,
// `authors` and `timeline`.
#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <string>

#include "fronts/author_impact.h"
#include "fronts/main_path.h"
#include "tools/commands.h"
#include "tools/network_command.h"
#include "tools/network_formats.h"
#include "tools/tool_support.h"

namespace refgrove {
namespace {

const char kMainPathHelp[] =
    "Prints the global main path of DIR's citation graph: the path from a\n"
    "document no one cites to one citing nothing with the largest sum of\n"
    "search path count weights, one document per line (DID, title), each\n"
    "citing the next. Documents that cite each other in a cycle are taken\n"
    "together, in ascending DID order, wherever the path passes through them.\n"
    "Exit status: 0 ok, 1 bad data directory, 2 usage error.";

struct AuthorsArgs {
  DataDirArgs dir;
  std::string by = "h-index";
  std::int64_t limit = 10;
};

const char kAuthorsHelp[] =
    "Prints the best authors of DIR, one per line: author id, value and name,\n"
    "tab-separated, best first, ties by ascending id. By documents the value\n"
    "is the number of graph records listing the author; by citations the\n"
    "citations these received within DIR; by h-index the largest h such that\n"
    "h of them have at least h citations each. A list cut by --limit says so\n"
    "on standard error.\n"
    "Exit status: 0 ok, 1 bad data directory, 2 usage error.";

int run_authors(const AuthorsArgs& args, CommandContext& ctx) {
  return run_on("authors", args.dir, ctx, [&](const RefgroveData& d) {
    const std::vector<RankedAuthor> top = ranked_authors(d, author_rank_by_from_text(args.by), all_if_zero(args.limit));
    for (const RankedAuthor& r : top) {
      const char* name = nullptr;
      id2author(d, r.author, &name);
      ctx.out << r.author << "\t" << r.value << "\t" << (name ? name : "") << "\n";
    }
    ctx.out.flush();
    const auto total = static_cast<std::int64_t>(author_impacts(d).size());
    note_cut("authors", static_cast<std::int64_t>(top.size()), total, "authors", "--limit", ctx.err);
    return 0;
  });
}

struct TimelineArgs {
  DataDirArgs dir;
  std::optional<std::int32_t> did;
  std::optional<std::int32_t> author;
};

const char kTimelineHelp[] =
    "Prints the citations a document (DID) or an author (--author ID)\n"
    "received per year of the citing document, as YEAR<TAB>COUNT lines by\n"
    "ascending year; citing documents without a year are left out.\n"
    "Exit status: 0 ok, 1 no graph record or unknown author, 2 usage error.";

int run_timeline(const TimelineArgs& args, CommandContext& ctx) {
  return run_on("timeline", args.dir, ctx, [&](const RefgroveData& d) {
    const Timeline t = args.did ? document_citations_by_year(d, *args.did) : author_citations_by_year(d, *args.author);
    for (const auto& [year, count] : t) ctx.out << year << "\t" << count << "\n";
    return 0;
  });
}

}  // namespace

void add_fronts_commands(CLI::App& app, CommandContext& ctx) {
  auto path = std::make_shared<DataDirArgs>();
  CLI::App* cmd =
      add_network_command(app, "main-path", "the main path of the citation graph", kMainPathHelp, path.get());
  cmd->callback([&ctx, path] {
    ctx.status = run_on("main-path", *path, ctx, [&](const RefgroveData& d) {
      for (const std::int32_t did : main_path_dids(d)) ctx.out << did << "\t" << title_of(d, did) << "\n";
      return 0;
    });
  });

  auto authors = std::make_shared<AuthorsArgs>();
  cmd = add_network_command(app, "authors", "rank authors by h-index, citations or documents", kAuthorsHelp,
                            &authors->dir);
  cmd->add_option("--by", authors->by)
      ->check(CLI::IsMember({"h-index", "citations", "documents"}))
      ->capture_default_str();
  add_limit_option(cmd, "--limit", &authors->limit, "how many");
  cmd->callback([&ctx, authors] { ctx.status = run_authors(*authors, ctx); });

  auto timeline = std::make_shared<TimelineArgs>();
  cmd = add_network_command(app, "timeline", "citations per year of a document or an author", kTimelineHelp,
                            &timeline->dir);
  CLI::Option* did = cmd->add_option("DID", timeline->did, "the document")->transform(decimal());
  CLI::Option* author = cmd->add_option("--author", timeline->author, "the author's id")->transform(decimal());
  did->excludes(author);
  cmd->callback([&ctx, timeline] {
    if (!timeline->did && !timeline->author) throw CLI::RequiredError("DID or --author");
    ctx.status = run_timeline(*timeline, ctx);
  });
}

}  // namespace refgrove
