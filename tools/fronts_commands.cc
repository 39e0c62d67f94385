// The subcommands over the network's structure in time: `clusters`,
// `main-path`, `authors` and `timeline`.
#include <CLI/CLI.hpp>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "core/document_text.h"
#include "core/json_fields.h"
#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "tools/commands.h"
#include "tools/network_command.h"
#include "tools/network_formats.h"
#include "tools/tool_support.h"

namespace refgrove {
namespace {

// The options of a clustering as given on the command line.
struct ClusterArgs {
  std::string graph = "citation";
  std::string quality = "modularity";
  double resolution = 1.0;
  std::int64_t seed = 1;
  std::int32_t min_citations = 1;
  std::int32_t min_weight = 1;
  std::int32_t iterations = ClusterOptions{}.iterations;

  void add_to(CLI::App* cmd) {
    cmd->add_option("--graph", graph, "the graph clustered")
        ->check(CLI::IsMember({"citation", "cocitation", "coupling", "coauthor"}))
        ->capture_default_str();
    cmd->add_option("--quality", quality, "what the clusters optimise")
        ->check(CLI::IsMember({"modularity", "cpm"}))
        ->capture_default_str();
    cmd->add_option("--resolution", resolution, "larger for more, smaller clusters")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    cmd->add_option("--seed", seed, "the same seed gives the same clusters")
        ->transform(decimal(0, INT64_MAX))
        ->capture_default_str();
    cmd->add_option("--min-citations", min_citations, "cocitation, coupling: the citations a document needs")
        ->transform(decimal(0, 1000000000))
        ->capture_default_str();
    cmd->add_option("--min-weight", min_weight, "cocitation, coupling: the weight a link needs")
        ->transform(decimal(1, 1000000000))
        ->capture_default_str();
    cmd->add_option("--iterations", iterations, "how many iterations; 0: until one moves nothing")
        ->transform(decimal(0, 1000000))
        ->capture_default_str();
  }
  std::shared_ptr<const Clustering> clustering(const RefgroveData& d) const {
    ClusterOptions o;
    o.graph = cluster_graph_from_text(graph);
    o.quality = cluster_quality_from_text(quality);
    o.resolution = resolution;
    o.seed = static_cast<std::uint64_t>(seed);
    o.min_citations = min_citations;
    o.min_weight = min_weight;
    o.iterations = iterations;
    return Clustering::of(d, o);
  }
};

struct ClustersArgs {
  DataDirArgs dir;
  ClusterArgs cluster;
  std::string format = "tsv";
  bool members = false;
};

const char kClustersHelp[] =
    "Finds the clusters of a graph of DIR by the Leiden algorithm and prints a\n"
    "line per cluster, largest first: id, size and label (its most\n"
    "characteristic title words), tab-separated. With --members, a line per\n"
    "document (DID) or, for the co-author graph, per author id instead:\n"
    "ID<TAB>CLUSTER. --format json gives the modularity and, per cluster, its\n"
    "size, documents, modularity share, years, most cited documents and label\n"
    "(or the members). The algorithm runs --iterations times (10); with 0 it\n"
    "repeats until one moves nothing (at most 1000), slow on large sets.\n"
    "Graphs: citation (citations taken both ways), cocitation and coupling\n"
    "(documents with --min-citations, links of --min-weight shared citations),\n"
    "coauthor (authors linked by their shared documents).\n"
    "Exit status: 0 ok, 1 bad data directory, 2 usage error.";

nlohmann::ordered_json cluster_json(std::int32_t id, const Cluster& c) {
  const auto year = [](std::int32_t y) { return y < 0 ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(y); };
  return {{field::id, id},
          {field::size, c.size},
          {field::documents, c.documents},
          {field::modularity, c.modularity},
          {field::first_year, year(c.first_year)},
          {field::last_year, year(c.last_year)},
          {field::top, c.top},
          {field::label, c.label}};
}

// The clustering as one JSON object: its options and figures, then its
// clusters or, with `members`, each member's cluster.
nlohmann::ordered_json clustering_json(const Clustering& c, bool members) {
  nlohmann::ordered_json j = {
      {field::graph, to_text(c.options().graph)},  {field::quality, to_text(c.options().quality)},
      {field::resolution, c.options().resolution}, {field::seed, c.options().seed},
      {field::modularity, c.modularity()},         {field::quality_value, c.quality()},
      {field::iterations, c.iterations()},         {field::stable, c.stable()},
      {field::total, c.clusters().size()}};
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  if (members) {
    const char* member = c.options().graph == ClusterGraphKind::coauthor ? field::author : field::did;
    for (std::size_t i = 0; i < c.members().size(); ++i)
      list.push_back({{member, c.members()[i]}, {field::cluster, c.cluster_of_members()[i]}});
    j[field::members] = std::move(list);
  } else {
    for (std::size_t i = 0; i < c.clusters().size(); ++i)
      list.push_back(cluster_json(static_cast<std::int32_t>(i), c.clusters()[i]));
    j[field::clusters] = std::move(list);
  }
  return j;
}

// Clusters that a further iteration could still change are what was asked
// for, but the user should know.
void note_unstable(const Clustering& c, CommandContext& ctx) {
  if (c.options().iterations == 0) {
    ctx.err << "refgrove clusters: still moving nodes after " << c.iterations()
            << " iterations, where the search stops; these are the clusters it reached\n";
  } else {
    ctx.err << "refgrove clusters: nodes were still moving after " << c.iterations()
            << " iterations; --iterations 0 repeats them until none moves\n";
  }
}

int run_clusters(const ClustersArgs& args, CommandContext& ctx) {
  return run_on("clusters", args.dir, ctx, [&](const RefgroveData& d) {
    const std::shared_ptr<const Clustering> c = args.cluster.clustering(d);
    if (!c->stable()) note_unstable(*c, ctx);
    if (args.format == "json") {
      ctx.out << clustering_json(*c, args.members).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    } else if (args.members) {
      for (std::size_t i = 0; i < c->members().size(); ++i)
        ctx.out << c->members()[i] << "\t" << c->cluster_of_members()[i] << "\n";
    } else {
      for (std::size_t i = 0; i < c->clusters().size(); ++i) {
        ctx.out << i << "\t" << c->clusters()[i].size << "\t";
        for (std::size_t w = 0; w < c->clusters()[i].label.size(); ++w)
          ctx.out << (w ? " " : "") << c->clusters()[i].label[w];
        ctx.out << "\n";
      }
    }
    return 0;
  });
}

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
    for (const RankedAuthor& r : top)
      ctx.out << r.author << "\t" << r.value << "\t" << author_name_text(d, r.author) << "\n";
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
  std::optional<std::int32_t> cluster;
  ClusterArgs clustering;
  bool documents = false;
};

const char kTimelineHelp[] =
    "Prints the citations a document (DID), an author (--author ID) or a\n"
    "cluster (--cluster ID, of the clustering the options of `clusters` give)\n"
    "received per year of the citing document, as YEAR<TAB>COUNT lines by\n"
    "ascending year; citing documents without a year are left out. With\n"
    "--documents, a cluster's documents per year instead.\n"
    "Exit status: 0 ok, 1 no graph record, unknown author or cluster, 2 usage\n"
    "error.";

Timeline timeline_of(const TimelineArgs& args, const RefgroveData& d) {
  if (args.did) return document_citations_by_year(d, *args.did);
  if (args.author) return author_citations_by_year(d, *args.author);
  const std::shared_ptr<const Clustering> c = args.clustering.clustering(d);
  return args.documents ? cluster_documents_by_year(d, *c, *args.cluster)
                        : cluster_citations_by_year(d, *c, *args.cluster);
}

int run_timeline(const TimelineArgs& args, CommandContext& ctx) {
  return run_on("timeline", args.dir, ctx, [&](const RefgroveData& d) {
    const Timeline t = timeline_of(args, d);
    for (const auto& [year, count] : t) ctx.out << year << "\t" << count << "\n";
    return 0;
  });
}

}  // namespace

void add_fronts_commands(CLI::App& app, CommandContext& ctx) {
  auto clusters = std::make_shared<ClustersArgs>();
  CLI::App* cmd = add_network_command(app, "clusters", "clusters (research fronts) by the Leiden algorithm",
                                      kClustersHelp, &clusters->dir);
  clusters->cluster.add_to(cmd);
  cmd->add_option("--format", clusters->format)->check(CLI::IsMember({"tsv", "json"}))->capture_default_str();
  cmd->add_flag("--members", clusters->members, "each member's cluster instead");
  cmd->callback([&ctx, clusters] { ctx.status = run_clusters(*clusters, ctx); });

  auto path = std::make_shared<DataDirArgs>();
  cmd = add_network_command(app, "main-path", "the main path of the citation graph", kMainPathHelp, path.get());
  cmd->callback([&ctx, path] {
    ctx.status = run_on("main-path", *path, ctx, [&](const RefgroveData& d) {
      for (const std::int32_t did : main_path_dids(d)) ctx.out << did << "\t" << title_text(d, did) << "\n";
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
  cmd = add_network_command(app, "timeline", "citations per year of a document, an author or a cluster", kTimelineHelp,
                            &timeline->dir);
  CLI::Option* did = cmd->add_option("DID", timeline->did, "the document")->transform(decimal());
  CLI::Option* author = cmd->add_option("--author", timeline->author, "the author's id")->transform(decimal());
  CLI::Option* cluster = cmd->add_option("--cluster", timeline->cluster, "the cluster's id")->transform(decimal());
  did->excludes(author)->excludes(cluster);
  author->excludes(cluster);
  timeline->clustering.add_to(cmd);
  cmd->add_flag("--documents", timeline->documents, "with --cluster: its documents per year");
  cmd->callback([&ctx, timeline] {
    if (!timeline->did && !timeline->author && !timeline->cluster)
      throw CLI::RequiredError("DID, --author or --cluster");
    ctx.status = run_timeline(*timeline, ctx);
  });
}

}  // namespace refgrove
