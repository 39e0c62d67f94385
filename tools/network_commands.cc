// The subcommands over the citation network: `rank`, `distance`,
// `neighbourhood`, `similar` and `components`. Lines about documents start
// with the DID and a tab; a bad argument of the analysis (a DID without a
// graph record, an unknown author) is a message and status 1.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <functional>
#include <iomanip>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "network/components.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"
#include "tools/commands.h"
#include "tools/network_command.h"
#include "tools/network_formats.h"
#include "tools/tool_support.h"

namespace refgrove {

int run_on(const char* command, const DataDirArgs& dir, CommandContext& ctx,
           const std::function<int(const RefgroveData&)>& body) {
  const DataSetPtr data = load_data_dir(command, dir, ctx.err);
  if (data == nullptr) return 1;
  try {
    return body(*data);
  } catch (const NetworkArgumentError& e) {
    ctx.out.flush();
    ctx.err << "refgrove " << command << ": " << e.what() << "\n";
    return 1;
  }
}

CLI::App* add_network_command(CLI::App& app, const char* name, const char* summary, const char* help,
                              DataDirArgs* dir) {
  CLI::App* cmd = app.add_subcommand(name, summary);
  cmd->footer(help);
  add_data_dir_args(cmd, dir);
  return cmd;
}

namespace {

// --- rank

struct RankArgs {
  DataDirArgs dir;
  std::string by = "citations";
  std::int64_t limit = 10;
  std::string years;  // FROM-TO, empty for all
};

std::optional<YearRange> parse_years(const std::string& text) {
  if (text.empty()) return std::nullopt;
  int from = 0, to = 0;
  char dash = 0, rest = 0;
  if (std::sscanf(text.c_str(), "%d%c%d%c", &from, &dash, &to, &rest) != 3 || dash != '-')
    throw NetworkArgumentError("--years takes FROM-TO, as 1990-1999, not \"" + text + "\"");
  return YearRange{from, to};
}

int run_rank(const RankArgs& args, CommandContext& ctx) {
  return run_on("rank", args.dir, ctx, [&](const RefgroveData& d) {
    const RankBy by = rank_by_from_text(args.by);
    for (const RankedDocument& r : ranked(d, by, args.limit, parse_years(args.years))) {
      ctx.out << r.did << "\t";
      if (by == RankBy::citations)
        ctx.out << static_cast<std::int64_t>(r.score);
      else
        ctx.out << std::fixed << std::setprecision(9) << r.score;  // scores are exact to 1e-9
      ctx.out << "\t" << title_of(d, r.did) << "\n";
    }
    return 0;
  });
}

const char kRankHelp[] =
    "Prints the best documents of DIR's citation graph, one per line:\n"
    "DID, score and title, tab-separated, best first, ties by ascending DID.\n"
    "By citations the score is the number of documents citing it; by\n"
    "pagerank its PageRank (damping 0.85, scores summing to 1).\n"
    "Exit status: 0 ok, 1 bad data directory or reversed years, 2 usage error.";

// --- distance

struct DistanceArgs {
  DataDirArgs dir;
  std::vector<std::string> authors;
  bool names = false;
};

// The id of the author named `name`: the exact name, else the only one
// that matches ignoring case.
std::int32_t author_by_name(const RefgroveData& d, const std::string& name) {
  int n = 0, id = 0;
  author_named_count(d, name.c_str(), &n);
  std::vector<std::int32_t> ids;
  for (int i = 0; i < n && get_author_named(d, name.c_str(), i, &id); ++i) {
    const char* text = nullptr;
    if (id2author(d, id, &text) && name == text) return id;
    ids.push_back(id);
  }
  if (ids.size() == 1) return ids.front();
  if (ids.empty()) throw NetworkArgumentError("no author named \"" + name + "\"");
  throw NetworkArgumentError(std::to_string(ids.size()) + " authors are named \"" + name +
                             "\" but for case: give the exact name or the id");
}

// An author id as given, or the reason it is not one.
std::string author_id_problem(const std::string& text, std::int64_t* id) {
  const std::string problem = parse_decimal(text, INT32_MIN, INT32_MAX, id);
  return problem.empty() ? problem : problem + " (use --names for names)";
}

// Author ids are checked with the other arguments, before any loading.
void check_author_ids(const DistanceArgs& args) {
  std::int64_t id = 0;
  for (const std::string& text : args.authors) {
    if (const std::string problem = author_id_problem(text, &id); !args.names && !problem.empty()) {
      throw CLI::ValidationError("AUTHOR", problem);
    }
  }
}

std::int32_t author_arg(const RefgroveData& d, const std::string& text, bool names) {
  if (names) return author_by_name(d, text);
  std::int64_t id = 0;
  author_id_problem(text, &id);
  return static_cast<std::int32_t>(id);
}

int run_distance(const DistanceArgs& args, CommandContext& ctx) {
  return run_on("distance", args.dir, ctx, [&](const RefgroveData& d) {
    const std::int32_t a = author_arg(d, args.authors[0], args.names);
    const std::int32_t b = author_arg(d, args.authors[1], args.names);
    const std::optional<CollaborationPath> path = collaboration_path(d, a, b);
    if (!path) {
      ctx.err << "refgrove distance: authors " << a << " and " << b << " are not connected\n";
      return 1;
    }
    ctx.out << "distance\t" << path->documents.size() << "\n";
    for (std::size_t i = 0; i < path->authors.size(); ++i) {
      if (i > 0)
        ctx.out << "document\t" << path->documents[i - 1] << "\t" << title_of(d, path->documents[i - 1]) << "\n";
      const char* name = nullptr;
      id2author(d, path->authors[i], &name);
      ctx.out << "author\t" << path->authors[i] << "\t" << (name ? name : "") << "\n";
    }
    return 0;
  });
}

const char kDistanceHelp[] =
    "Prints the collaboration distance between two authors (the links of a\n"
    "shortest path in the co-author graph, where two authors are linked when\n"
    "they share a graph record) and one such path: its authors, and between\n"
    "each two a document they wrote together, tab-separated with names and\n"
    "titles. Authors are given by id, or by name with --names.\n"
    "Exit status: 0 ok, 1 unknown author or unconnected authors, 2 usage error.";

// --- neighbourhood

struct NeighbourhoodArgs {
  DataDirArgs dir;
  std::int32_t did = 0;
  std::int64_t hops = 1;
  std::string direction = "both";
  std::int64_t limit = 100;
  std::string format = "tsv";
};

int run_neighbourhood(const NeighbourhoodArgs& args, CommandContext& ctx) {
  return run_on("neighbourhood", args.dir, ctx, [&](const RefgroveData& d) {
    const Neighbourhood n = neighbourhood(d, args.did, {args.hops, direction_from_text(args.direction), args.limit});
    const NetworkFile f = neighbourhood_file(d, n);
    if (args.format == "graphml") {
      write_graphml(f, ctx.out);
    } else if (args.format == "dot") {
      write_dot(f, ctx.out);
    } else if (args.format == "json") {
      write_json(d, f, ctx.out);
    } else {
      for (const NetworkNode& v : f.nodes)
        ctx.out << v.did << "\t" << *v.hops << "\t" << v.citations << "\t" << title_of(d, v.did) << "\n";
      for (const CitationEdge& e : f.edges) ctx.out << e.citing << "\tcites\t" << e.cited << "\n";
    }
    return 0;
  });
}

const char kNeighbourhoodHelp[] =
    "Prints the documents within --hops citations of DID (following them out\n"
    "to the cited, in to the citing, or both ways), DID first, then the\n"
    "closest, then by citation count descending, then by DID, at most\n"
    "--limit of them; and the citations among them.\n"
    "tsv: a line per document, DID, hops, citation count and title; then a\n"
    "line per citation, CITING, \"cites\" and CITED, tab-separated.\n"
    "json, graphml, dot: the same as a graph for drawing programs.\n"
    "Exit status: 0 ok, 1 DID without a graph record, 2 usage error.";

// --- similar

struct SimilarArgs {
  DataDirArgs dir;
  std::int32_t did = 0;
  std::string by = "cocitation";
  std::string measure = "count";
  std::int64_t limit = 10;
};

int run_similar(const SimilarArgs& args, CommandContext& ctx) {
  return run_on("similar", args.dir, ctx, [&](const RefgroveData& d) {
    const SimilarMeasure measure = similar_measure_from_text(args.measure);
    for (const SimilarDocument& s : similar(d, args.did, similar_by_from_text(args.by), args.limit, measure)) {
      ctx.out << s.did << "\t";
      if (measure == SimilarMeasure::count)
        ctx.out << s.count;
      else
        ctx.out << s.score;
      ctx.out << "\t" << title_of(d, s.did) << "\n";
    }
    return 0;
  });
}

const char kSimilarHelp[] =
    "Prints the documents most like DID, one per line: DID, score and title,\n"
    "by score descending, then by DID. By cocitation the count is the number\n"
    "of documents citing both; by coupling the number of documents both cite.\n"
    "--measure cosine divides it by the square root of the product of the two\n"
    "documents' numbers of citations (of references, by coupling), jaccard by\n"
    "their sum less the count.\n"
    "Exit status: 0 ok, 1 DID without a graph record, 2 usage error.";

// --- components

struct ComponentsArgs {
  DataDirArgs dir;
  std::int64_t largest = 5;
};

void print_components(const char* graph, const Components& c, std::int64_t largest, std::ostream& out) {
  out << graph << "\tcomponents\t" << c.count() << "\n" << graph << "\tlargest";
  for (std::int64_t i = 0; i < std::min(largest, c.count()); ++i) out << "\t" << c.sizes[static_cast<std::size_t>(i)];
  out << "\n";
}

int run_components(const ComponentsArgs& args, CommandContext& ctx) {
  return run_on("components", args.dir, ctx, [&](const RefgroveData& d) {
    print_components("citation", citation_components(d), args.largest, ctx.out);
    print_components("co-author", coauthor_components(d), args.largest, ctx.out);
    return 0;
  });
}

const char kComponentsHelp[] =
    "Prints, for the citation graph (its weakly connected components) and\n"
    "the co-author graph, the number of components and the sizes of the\n"
    "largest ones, tab-separated.\n"
    "Exit status: 0 ok, 1 bad data directory, 2 usage error.";

}  // namespace

void add_network_commands(CLI::App& app, CommandContext& ctx) {
  const CLI::Validator limit = decimal(0, 1000000000);

  auto rank = std::make_shared<RankArgs>();
  CLI::App* cmd = add_network_command(app, "rank", "rank documents by citations or PageRank", kRankHelp, &rank->dir);
  cmd->add_option("--by", rank->by)->check(CLI::IsMember({"citations", "pagerank"}))->capture_default_str();
  cmd->add_option("--limit", rank->limit, "how many")->transform(limit)->capture_default_str();
  cmd->add_option("--years", rank->years, "only documents of these years")->type_name("FROM-TO");
  cmd->callback([&ctx, rank] { ctx.status = run_rank(*rank, ctx); });

  auto distance = std::make_shared<DistanceArgs>();
  cmd = add_network_command(app, "distance", "collaboration distance and path between two authors", kDistanceHelp,
                            &distance->dir);
  cmd->add_option("AUTHOR", distance->authors, "two author ids (names with --names)")->required()->expected(2);
  cmd->add_flag("--names", distance->names, "the authors are given by name");
  cmd->callback([&ctx, distance] {
    check_author_ids(*distance);
    ctx.status = run_distance(*distance, ctx);
  });

  auto hood = std::make_shared<NeighbourhoodArgs>();
  cmd = add_network_command(app, "neighbourhood", "the documents around a document", kNeighbourhoodHelp, &hood->dir);
  cmd->add_option("DID", hood->did, "the document")->required()->transform(decimal());
  cmd->add_option("--hops", hood->hops, "how far")->transform(limit)->capture_default_str();
  cmd->add_option("--direction", hood->direction)->check(CLI::IsMember({"in", "out", "both"}))->capture_default_str();
  cmd->add_option("--limit", hood->limit, "how many documents")->transform(limit)->capture_default_str();
  cmd->add_option("--format", hood->format)
      ->check(CLI::IsMember({"tsv", "json", "graphml", "dot"}))
      ->capture_default_str();
  cmd->callback([&ctx, hood] { ctx.status = run_neighbourhood(*hood, ctx); });

  auto like = std::make_shared<SimilarArgs>();
  cmd = add_network_command(app, "similar", "documents like a document, by shared citations", kSimilarHelp, &like->dir);
  cmd->add_option("DID", like->did, "the document")->required()->transform(decimal());
  cmd->add_option("--by", like->by)->check(CLI::IsMember({"cocitation", "coupling"}))->capture_default_str();
  cmd->add_option("--measure", like->measure, "the count or the count normalised")
      ->check(CLI::IsMember({"count", "cosine", "jaccard"}))
      ->capture_default_str();
  cmd->add_option("--limit", like->limit, "how many")->transform(limit)->capture_default_str();
  cmd->callback([&ctx, like] { ctx.status = run_similar(*like, ctx); });

  auto components = std::make_shared<ComponentsArgs>();
  cmd = add_network_command(app, "components", "connected components of the citation and co-author graphs",
                            kComponentsHelp, &components->dir);
  cmd->add_option("--largest", components->largest, "how many sizes to show")->transform(limit)->capture_default_str();
  cmd->callback([&ctx, components] { ctx.status = run_components(*components, ctx); });
}

}  // namespace refgrove
