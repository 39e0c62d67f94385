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

#include "core/document_text.h"
#include "network/citation_graph.h"
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

// "1995" is that year, "1990-1999" those years and the ones between.
std::optional<YearRange> parse_years(const std::string& text) {
  if (text.empty()) return std::nullopt;
  const std::size_t dash = text.find('-', 1);
  const std::string from = text.substr(0, dash);
  const std::string to = dash == std::string::npos ? from : text.substr(dash + 1);
  std::int64_t first = 0, last = 0;
  if (!parse_decimal(from, INT32_MIN, INT32_MAX, &first).empty() ||
      !parse_decimal(to, INT32_MIN, INT32_MAX, &last).empty()) {
    throw NetworkArgumentError("--years takes YEAR or FROM-TO, as 1995 or 1990-1999, not \"" + text + "\"");
  }
  return YearRange{static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)};
}

// How many documents of the citation graph have a year in `years` (all of
// them when none is given).
std::int64_t documents_in(const RefgroveData& d, std::optional<YearRange> years) {
  const std::span<const std::int32_t> all = CitationGraph::of(d).years();
  if (!years) return static_cast<std::int64_t>(all.size());
  return std::count_if(all.begin(), all.end(), [&](std::int32_t y) { return y >= years->from && y <= years->to; });
}

// "the years run 1992-1996": the years of the data, to say where to look.
std::string year_span(const RefgroveData& d) {
  std::optional<YearRange> span;
  for (const std::int32_t y : CitationGraph::of(d).years()) {
    if (y == -1) continue;
    if (!span) span = YearRange{y, y};
    span->from = std::min(span->from, y);
    span->to = std::max(span->to, y);
  }
  if (!span) return "no document has a year";
  return "the years run " + std::to_string(span->from) + "-" + std::to_string(span->to);
}

int run_rank(const RankArgs& args, CommandContext& ctx) {
  return run_on("rank", args.dir, ctx, [&](const RefgroveData& d) {
    const RankBy by = rank_by_from_text(args.by);
    const std::optional<YearRange> years = parse_years(args.years);
    const std::vector<RankedDocument> top = ranked(d, by, all_if_zero(args.limit), years);
    const std::int64_t total = documents_in(d, years);
    if (total == 0 && years) {
      ctx.err << "refgrove rank: no documents in " << args.years << "; " << year_span(d) << "\n";
      return 1;
    }
    for (const RankedDocument& r : top) {
      ctx.out << r.did << "\t";
      if (by == RankBy::citations)
        ctx.out << static_cast<std::int64_t>(r.score);
      else
        ctx.out << std::fixed << std::setprecision(9) << r.score;  // scores are exact to 1e-9
      ctx.out << "\t" << title_text(d, r.did) << "\n";
    }
    ctx.out.flush();
    note_cut("rank", static_cast<std::int64_t>(top.size()), total, "documents", "--limit", ctx.err);
    return 0;
  });
}

const char kRankHelp[] =
    "Prints the best documents of DIR's citation graph, one per line:\n"
    "DID, score and title, tab-separated, best first, ties by ascending DID.\n"
    "By citations the score is the number of documents citing it; by\n"
    "pagerank its PageRank (damping 0.85, scores summing to 1).\n"
    "--years 1995 takes the documents of 1995, --years 1990-1999 those of\n"
    "the ten years. A list cut by --limit says so on standard error.\n"
    "Exit status: 0 ok, 1 bad data directory, reversed years or no\n"
    "document in the years, 2 usage error.";

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
        ctx.out << "document\t" << path->documents[i - 1] << "\t" << title_text(d, path->documents[i - 1]) << "\n";
      ctx.out << "author\t" << path->authors[i] << "\t" << author_name_text(d, path->authors[i]) << "\n";
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
    const Direction direction = direction_from_text(args.direction);
    const std::int64_t limit = all_if_zero(args.limit);
    const Neighbourhood n = neighbourhood(d, args.did, {args.hops, direction, limit});
    // The walk stops at the limit: only a full answer may have been cut.
    std::int64_t total = static_cast<std::int64_t>(n.nodes.size());
    if (total == limit)
      total = static_cast<std::int64_t>(
          neighbourhood(d, args.did, {args.hops, direction, all_if_zero(0), false}).nodes.size());
    const NetworkFile f = neighbourhood_file(d, n, total);
    if (args.format == "graphml") {
      write_graphml(f, ctx.out);
    } else if (args.format == "dot") {
      write_dot(f, ctx.out);
    } else if (args.format == "json") {
      write_json(d, f, ctx.out);
    } else {
      for (const NetworkNode& v : f.nodes)
        ctx.out << v.did << "\t" << *v.hops << "\t" << v.citations << "\t" << title_text(d, v.did) << "\n";
      for (const CitationEdge& e : f.edges) ctx.out << e.citing << "\tcites\t" << e.cited << "\n";
    }
    ctx.out.flush();
    note_cut("neighbourhood", static_cast<std::int64_t>(f.nodes.size()), total, "documents", "--limit", ctx.err);
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
    "json, graphml, dot: the same as a graph for drawing programs; json\n"
    "adds \"total\", the documents within reach, and \"truncated\", whether\n"
    "--limit kept fewer. A cut list says so on standard error too.\n"
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
    const std::vector<SimilarDocument> all =
        similar(d, args.did, similar_by_from_text(args.by), all_if_zero(0), measure);
    const std::int64_t shown = std::min(all_if_zero(args.limit), static_cast<std::int64_t>(all.size()));
    for (std::int64_t i = 0; i < shown; ++i) {
      const SimilarDocument& s = all[static_cast<std::size_t>(i)];
      ctx.out << s.did << "\t";
      if (measure == SimilarMeasure::count)
        ctx.out << s.count;
      else
        ctx.out << s.score;
      ctx.out << "\t" << title_text(d, s.did) << "\n";
    }
    ctx.out.flush();
    note_cut("similar", shown, static_cast<std::int64_t>(all.size()), "documents", "--limit", ctx.err);
    return 0;
  });
}

const char kSimilarHelp[] =
    "Prints the documents most like DID, one per line: DID, score and title,\n"
    "by score descending, then by DID. By cocitation the count is the number\n"
    "of documents citing both; by coupling the number of documents both cite.\n"
    "--measure cosine divides it by the square root of the product of the two\n"
    "documents' numbers of citations (of references, by coupling), jaccard by\n"
    "their sum less the count. A list cut by --limit says so on standard error.\n"
    "Exit status: 0 ok, 1 DID without a graph record, 2 usage error.";

// --- components

struct ComponentsArgs {
  DataDirArgs dir;
  std::int64_t largest = 5;
  bool all = false;
  bool nodes = false;
};

void print_sizes(const char* graph, const Components& c, std::int64_t largest, CommandContext& ctx) {
  const std::int64_t shown = std::min(largest, c.count());
  ctx.out << graph << "\tcomponents\t" << c.count() << "\n" << graph << "\tlargest";
  for (std::int64_t i = 0; i < shown; ++i) ctx.out << "\t" << c.sizes[static_cast<std::size_t>(i)];
  ctx.out << "\n";
  ctx.out.flush();
  note_cut("components", shown, c.count(), std::string(graph) + " component sizes", "--largest or use --all", ctx.err);
}

// A line per node: the graph, the node (DID or author id) and its component.
void print_nodes(const RefgroveData& d, CommandContext& ctx) {
  const CitationGraph& g = CitationGraph::of(d);
  const Components& citation = citation_components(d);
  for (std::int32_t v = 0; v < g.size(); ++v) {
    ctx.out << "citation\t" << g.did(v) << "\t" << citation.component_of[static_cast<std::size_t>(v)] << "\n";
  }
  const Components& coauthor = coauthor_components(d);
  for (std::size_t a = 0; a < coauthor.component_of.size(); ++a) {
    ctx.out << "co-author\t" << a << "\t" << coauthor.component_of[a] << "\n";
  }
}

int run_components(const ComponentsArgs& args, CommandContext& ctx) {
  return run_on("components", args.dir, ctx, [&](const RefgroveData& d) {
    if (args.nodes) {
      print_nodes(d, ctx);
      return 0;
    }
    const std::int64_t largest = args.all ? all_if_zero(0) : all_if_zero(args.largest);
    print_sizes("citation", citation_components(d), largest, ctx);
    print_sizes("co-author", coauthor_components(d), largest, ctx);
    return 0;
  });
}

const char kComponentsHelp[] =
    "Prints, for the citation graph (its weakly connected components) and\n"
    "the co-author graph, the number of components and the sizes of the\n"
    "largest ones (--largest of them, all with --all), tab-separated.\n"
    "--nodes: instead, a line per node: the graph (citation or co-author),\n"
    "the node (DID or author id) and its component, numbered from 0 by\n"
    "size descending, then by smallest member.\n"
    "Exit status: 0 ok, 1 bad data directory, 2 usage error.";

}  // namespace

void add_network_commands(CLI::App& app, CommandContext& ctx) {
  const CLI::Validator hops = decimal(0, kMaxLimit);

  auto rank = std::make_shared<RankArgs>();
  CLI::App* cmd = add_network_command(app, "rank", "rank documents by citations or PageRank", kRankHelp, &rank->dir);
  cmd->add_option("--by", rank->by)->check(CLI::IsMember({"citations", "pagerank"}))->capture_default_str();
  add_limit_option(cmd, "--limit", &rank->limit, "how many");
  cmd->add_option("--years", rank->years, "only documents of these years")->type_name("YEAR|FROM-TO");
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
  cmd->add_option("--hops", hood->hops, "how far")->transform(hops)->capture_default_str();
  cmd->add_option("--direction", hood->direction)->check(CLI::IsMember({"in", "out", "both"}))->capture_default_str();
  add_limit_option(cmd, "--limit", &hood->limit, "how many documents");
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
  add_limit_option(cmd, "--limit", &like->limit, "how many");
  cmd->callback([&ctx, like] { ctx.status = run_similar(*like, ctx); });

  auto components = std::make_shared<ComponentsArgs>();
  cmd = add_network_command(app, "components", "connected components of the citation and co-author graphs",
                            kComponentsHelp, &components->dir);
  CLI::Option* largest = add_limit_option(cmd, "--largest", &components->largest, "how many sizes to show");
  CLI::Option* all = cmd->add_flag("--all", components->all, "show all the sizes");
  cmd->add_flag("--nodes", components->nodes, "a line per node with its component")->excludes(largest)->excludes(all);
  all->excludes(largest);
  cmd->callback([&ctx, components] { ctx.status = run_components(*components, ctx); });
}

}  // namespace refgrove
