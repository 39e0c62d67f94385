// Clusters of a loaded set (research fronts): the Leiden algorithm
// (leiden.h) on one of the graphs of cluster_graphs.h, and what describes
// each cluster.
//
// Clusters are numbered from 0 by size (members) descending, then by their
// smallest member. A cluster's documents are its members for the document
// graphs and the documents of its authors for the co-author graph; from them
// come the years it spans, its most cited documents and its label: the title
// words most characteristic of it. Title words are folded (text_folding.h:
// case and accents); those of fewer than three characters, without a letter
// or digit, English function words ("the", "and", "with"...) and words in
// more than half of all titles are left out. A word's score in a cluster is
// p log(p / q), p the share of the cluster's documents whose title has it and
// q that share among all documents: frequent in the cluster, rare outside.
// Words scoring 0 or less are never chosen; ties go to the word first in
// byte order.
#ifndef REFGROVE_FRONTS_CLUSTERS_H_
#define REFGROVE_FRONTS_CLUSTERS_H_

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "fronts/author_impact.h"
#include "fronts/cluster_graphs.h"
#include "fronts/leiden.h"

namespace refgrove {

// The text of a quality ("modularity", "cpm") and back; from_text throws
// NetworkArgumentError for any other text.
const char* to_text(ClusterQuality quality);
ClusterQuality cluster_quality_from_text(const std::string& text);

struct ClusterOptions {
  ClusterGraphKind graph = ClusterGraphKind::citation;
  ClusterQuality quality = ClusterQuality::modularity;
  double resolution = 1.0;
  std::uint64_t seed = 1;
  std::int32_t min_citations = 1;  // cocitation and coupling
  std::int32_t min_weight = 1;     // cocitation and coupling
  // 0: until stable (leiden.h), which on large sets can take hundreds of
  // iterations that gain little; ten come close (docs/analyses.md).
  std::int32_t iterations = 10;
  friend bool operator==(const ClusterOptions&, const ClusterOptions&) = default;
};

struct Cluster {
  std::int32_t size = 0;         // members
  std::int32_t documents = 0;    // its documents
  double modularity = 0;         // its share of the clustering's modularity
  std::int32_t first_year = -1;  // of its documents with a year; -1 when none has one
  std::int32_t last_year = -1;
  std::vector<std::int32_t> top;   // DIDs of its most cited documents (at most 5), most cited first, ties by DID
  std::vector<std::string> label;  // its most characteristic title words (at most 3), best first
};

class Clustering {
 public:
  Clustering(const RefgroveData& d, const ClusterOptions& options);

  // Built on first use for each options (the last few are kept with the
  // set). Throws NetworkArgumentError for options out of their domain.
  static std::shared_ptr<const Clustering> of(const RefgroveData& d, const ClusterOptions& options);

  const ClusterOptions& options() const { return options_; }
  // The members: DIDs ascending for the document graphs, author ids for
  // coauthor; and each one's cluster.
  std::span<const std::int32_t> members() const { return members_; }
  std::span<const std::int32_t> cluster_of_members() const { return cluster_; }
  const std::vector<Cluster>& clusters() const { return clusters_; }
  // Modularity (resolution 1) and the quality optimised (by the options).
  double modularity() const { return modularity_; }
  double quality() const { return quality_; }
  std::int32_t iterations() const { return iterations_; }
  // Whether the last iteration moved nothing.
  bool stable() const { return stable_; }

  // The cluster of a member, -1 for an id that is none.
  std::int32_t cluster_of(std::int32_t id) const;
  // Throws NetworkArgumentError for an id that is no cluster.
  void require_cluster(std::int64_t id) const;
  // The citation-graph nodes of cluster c's documents, ascending.
  std::span<const std::int32_t> document_nodes(std::int32_t c) const { return documents_[c]; }

 private:
  void describe(const RefgroveData& d, const CitationGraph& g);

  ClusterOptions options_;
  std::vector<std::int32_t> members_;
  std::vector<std::int32_t> cluster_;
  std::vector<Cluster> clusters_;
  Adjacency documents_;
  double modularity_ = 0;
  double quality_ = 0;
  std::int32_t iterations_ = 0;
  bool stable_ = false;
};

// Citations received by a cluster's documents per year of the citing
// document, and its documents per year (documents without a year left out).
Timeline cluster_citations_by_year(const RefgroveData& d, const Clustering& c, std::int32_t cluster);
Timeline cluster_documents_by_year(const RefgroveData& d, const Clustering& c, std::int32_t cluster);

}  // namespace refgrove

#endif  // REFGROVE_FRONTS_CLUSTERS_H_
