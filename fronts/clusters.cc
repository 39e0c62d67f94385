#include "fronts/clusters.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

#include "core/lookup.h"
#include "core/text_folding.h"

namespace refgrove {
namespace {

constexpr std::size_t kTopDocuments = 5;
constexpr std::size_t kLabelWords = 3;
constexpr std::size_t kKeptClusterings = 8;

std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }

ClusterGraph cluster_graph(const RefgroveData& d, const ClusterOptions& o) {
  const CitationGraph& g = CitationGraph::of(d);
  switch (o.graph) {
    case ClusterGraphKind::citation:
      return citation_cluster_graph(g);
    case ClusterGraphKind::cocitation:
      return cocitation_cluster_graph(g, o.min_citations, o.min_weight);
    case ClusterGraphKind::coupling:
      return coupling_cluster_graph(g, o.min_citations, o.min_weight);
    case ClusterGraphKind::coauthor:
      break;
  }
  return coauthor_cluster_graph(CoauthorGraph::of(d));
}

// Whether a folded title word can label a cluster: at least three
// characters, a letter or digit among them, and not an English function
// word, which says nothing of what a cluster is about.
bool labels(const std::string& word) {
  static const std::unordered_set<std::string> function_words = {
      "about", "after",  "against", "all",     "also",  "among",   "and",     "any",     "are",   "because",
      "been",  "before", "being",   "between", "both",  "but",     "can",     "could",   "does",  "during",
      "each",  "for",    "from",    "had",     "has",   "have",    "how",     "into",    "its",   "may",
      "more",  "most",   "not",     "off",     "one",   "only",    "onto",    "other",   "our",   "out",
      "over",  "should", "some",    "such",    "than",  "that",    "the",     "their",   "them",  "then",
      "there", "these",  "they",    "this",    "those", "through", "toward",  "towards", "two",   "under",
      "upon",  "using",  "very",    "via",     "was",   "were",    "what",    "when",    "where", "which",
      "while", "who",    "why",     "will",    "with",  "within",  "without", "would",   "you",   "your"};
  std::size_t characters = 0;
  bool letter = false;
  for (const char c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xc0) != 0x80) ++characters;
    if (std::isalnum(byte) || byte >= 0x80) letter = true;
  }
  return characters >= 3 && letter && !function_words.contains(word);
}

// The distinct label words (folded, see labels()) of the title of every
// citation-graph node, and in how many titles each word is.
struct TitleWords {
  std::vector<std::string> text;     // term -> its folded text
  Adjacency terms;                   // node -> terms, ascending
  std::vector<std::int32_t> titles;  // term -> titles having it

  TitleWords(const RefgroveData& d, const CitationGraph& g) {
    std::unordered_map<std::uint32_t, std::int32_t> term_of_word;  // -1: no label word
    std::unordered_map<std::string, std::int32_t> term_of_text;
    std::vector<std::int32_t> ids;
    for (std::int32_t v = 0; v < g.size(); ++v) {
      ids.clear();
      if (const RefgroveGraphData* r = graph_record(d, g.did(v)))
        for (std::int32_t i = 0; i < r->title.size(); ++i) {
          const std::uint32_t word = r->title[i].id();
          auto [found, fresh] = term_of_word.try_emplace(word, -1);
          if (fresh) found->second = term(word_text(d, word), term_of_text);
          if (found->second >= 0) ids.push_back(found->second);
        }
      std::sort(ids.begin(), ids.end());
      ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
      for (const std::int32_t t : ids) ++titles[at(t)];
      terms.items.insert(terms.items.end(), ids.begin(), ids.end());
      terms.offsets.push_back(static_cast<std::int64_t>(terms.items.size()));
    }
  }

 private:
  std::int32_t term(const char* word, std::unordered_map<std::string, std::int32_t>& term_of_text) {
    if (!word) return -1;
    std::string folded = fold_text(word);
    if (!labels(folded)) return -1;
    const auto [found, fresh] = term_of_text.try_emplace(folded, static_cast<std::int32_t>(text.size()));
    if (fresh) {
      text.push_back(std::move(folded));
      titles.push_back(0);
    }
    return found->second;
  }
};

std::vector<std::string> label_of(const TitleWords& all, std::span<const std::int32_t> nodes) {
  std::unordered_map<std::int32_t, std::int32_t> in_cluster;
  for (const std::int32_t v : nodes)
    for (const std::int32_t t : all.terms[v]) ++in_cluster[t];
  const double documents = static_cast<double>(all.terms.size());
  struct Scored {
    double score;
    const std::string* word;
  };
  std::vector<Scored> scored;
  for (const auto& [t, count] : in_cluster) {
    const std::int32_t titles = all.titles[at(t)];
    if (2.0 * titles > documents) continue;
    const double p = count / static_cast<double>(nodes.size());
    const double score = p * std::log(p / (titles / documents));
    if (score > 0) scored.push_back({score, &all.text[at(t)]});
  }
  const auto better = [](const Scored& a, const Scored& b) {
    return a.score != b.score ? a.score > b.score : *a.word < *b.word;
  };
  const std::size_t keep = std::min(kLabelWords, scored.size());
  std::partial_sort(scored.begin(), scored.begin() + static_cast<std::ptrdiff_t>(keep), scored.end(), better);
  std::vector<std::string> label;
  for (std::size_t i = 0; i < keep; ++i) label.push_back(*scored[i].word);
  return label;
}

// The clusterings made, by options, the most recent last.
struct ClusteringCache {
  struct Slot {
    ClusterOptions options;
    std::once_flag once;
    std::shared_ptr<const Clustering> clustering;
  };
  // Behind pointers, so that the cache can be moved into its place.
  std::unique_ptr<std::mutex> mutex = std::make_unique<std::mutex>();
  mutable std::vector<std::shared_ptr<Slot>> slots;

  std::shared_ptr<Slot> slot(const ClusterOptions& options) const {
    std::lock_guard lock(*mutex);
    for (std::size_t i = 0; i < slots.size(); ++i) {
      if (!(slots[i]->options == options)) continue;
      std::shared_ptr<Slot> found = slots[i];
      slots.erase(slots.begin() + static_cast<std::ptrdiff_t>(i));
      slots.push_back(found);
      return found;
    }
    if (slots.size() == kKeptClusterings) slots.erase(slots.begin());
    slots.push_back(std::make_shared<Slot>());
    slots.back()->options = options;
    return slots.back();
  }
};

}  // namespace

const char* to_text(ClusterQuality quality) { return quality == ClusterQuality::modularity ? "modularity" : "cpm"; }

ClusterQuality cluster_quality_from_text(const std::string& text) {
  for (const ClusterQuality q : {ClusterQuality::modularity, ClusterQuality::cpm})
    if (text == to_text(q)) return q;
  throw NetworkArgumentError("unknown quality \"" + text + "\" (modularity or cpm)");
}

Clustering::Clustering(const RefgroveData& d, const ClusterOptions& options) : options_(options) {
  if (!std::isfinite(options.resolution) || options.resolution < 0)
    throw NetworkArgumentError("the resolution must be a number of at least 0");
  if (options.min_citations < 0 || options.min_weight < 1 || options.iterations < 0)
    throw NetworkArgumentError("min_citations and iterations must be at least 0, min_weight at least 1");
  const CitationGraph& g = CitationGraph::of(d);
  const ClusterGraph graph = cluster_graph(d, options);
  const LeidenResult r = leiden(graph.graph, {options.quality, options.resolution, options.seed, options.iterations});
  const bool authors = options.graph == ClusterGraphKind::coauthor;
  members_.reserve(graph.items.size());
  for (const std::int32_t item : graph.items) members_.push_back(authors ? item : g.did(item));
  cluster_ = r.cluster;
  iterations_ = r.iterations;
  stable_ = r.stable;
  quality_ = r.quality;
  std::vector<double> shares;
  modularity_ = refgrove::modularity(graph.graph, cluster_, &shares);
  clusters_.resize(at(r.clusters));
  for (std::int32_t c = 0; c < r.clusters; ++c) clusters_[at(c)].modularity = shares[at(c)];

  // Each cluster's documents, gathered per cluster.
  std::vector<std::vector<std::int32_t>> documents(at(r.clusters));
  for (std::size_t i = 0; i < graph.items.size(); ++i) {
    ++clusters_[at(cluster_[i])].size;
    std::vector<std::int32_t>& list = documents[at(cluster_[i])];
    if (!authors) {
      list.push_back(graph.items[i]);
      continue;
    }
    const auto written = CoauthorGraph::of(d).documents(graph.items[i]);
    list.insert(list.end(), written.begin(), written.end());
  }
  for (std::vector<std::int32_t>& list : documents) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    documents_.items.insert(documents_.items.end(), list.begin(), list.end());
    documents_.offsets.push_back(static_cast<std::int64_t>(documents_.items.size()));
  }
  describe(d, g);
}

void Clustering::describe(const RefgroveData& d, const CitationGraph& g) {
  const TitleWords titles(d, g);
  std::vector<std::int32_t> top;
  for (std::int32_t c = 0; c < static_cast<std::int32_t>(clusters_.size()); ++c) {
    Cluster& cluster = clusters_[at(c)];
    const std::span<const std::int32_t> nodes = documents_[c];
    cluster.documents = static_cast<std::int32_t>(nodes.size());
    for (const std::int32_t v : nodes) {
      if (g.year(v) < 0) continue;
      cluster.first_year = cluster.first_year < 0 ? g.year(v) : std::min(cluster.first_year, g.year(v));
      cluster.last_year = std::max(cluster.last_year, g.year(v));
    }
    top.assign(nodes.begin(), nodes.end());
    const std::size_t keep = std::min(kTopDocuments, top.size());
    std::partial_sort(
        top.begin(), top.begin() + static_cast<std::ptrdiff_t>(keep), top.end(), [&](std::int32_t a, std::int32_t b) {
          return g.citation_count(a) != g.citation_count(b) ? g.citation_count(a) > g.citation_count(b) : a < b;
        });
    for (std::size_t i = 0; i < keep; ++i) cluster.top.push_back(g.did(top[i]));
    cluster.label = label_of(titles, nodes);
  }
}

std::shared_ptr<const Clustering> Clustering::of(const RefgroveData& d, const ClusterOptions& options) {
  const std::shared_ptr<ClusteringCache::Slot> slot =
      d.derived().get<ClusteringCache>([] { return ClusteringCache(); }).slot(options);
  std::call_once(slot->once, [&] { slot->clustering = std::make_shared<const Clustering>(d, options); });
  return slot->clustering;
}

std::int32_t Clustering::cluster_of(std::int32_t id) const {
  if (options_.graph == ClusterGraphKind::coauthor) return id >= 0 && at(id) < cluster_.size() ? cluster_[at(id)] : -1;
  const auto found = std::lower_bound(members_.begin(), members_.end(), id);
  return found != members_.end() && *found == id ? cluster_[static_cast<std::size_t>(found - members_.begin())] : -1;
}

void Clustering::require_cluster(std::int64_t id) const {
  if (id < 0 || id >= static_cast<std::int64_t>(clusters_.size()))
    throw NetworkArgumentError("no cluster " + std::to_string(id) + " (there are " + std::to_string(clusters_.size()) +
                               ")");
}

Timeline cluster_citations_by_year(const RefgroveData& d, const Clustering& c, std::int32_t cluster) {
  c.require_cluster(cluster);
  return citations_by_year(CitationGraph::of(d), c.document_nodes(cluster));
}

Timeline cluster_documents_by_year(const RefgroveData& d, const Clustering& c, std::int32_t cluster) {
  c.require_cluster(cluster);
  const CitationGraph& g = CitationGraph::of(d);
  std::map<std::int32_t, std::int64_t> years;
  for (const std::int32_t v : c.document_nodes(cluster))
    if (g.year(v) >= 0) ++years[g.year(v)];
  return {years.begin(), years.end()};
}

}  // namespace refgrove
