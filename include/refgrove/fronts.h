/* The structure of a field for C programs: clusters, the main path, author
 * impact and citations per year, over the one loaded data set.
 *
 * The answers follow the convention of refgrove.h: -1 for a DID without a
 * graph record, an author id outside the author table or another bad
 * argument; lists cut to the caller's capacity, with their total returned.
 * What these build is built on the first call and released with the data
 * set. */
#ifndef REFGROVE_FRONTS_H_
#define REFGROVE_FRONTS_H_

#include "refgrove/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The graphs that clusters are found in, and what the clusters optimise. */
enum {
  REFGROVE_GRAPH_CITATION = 0,
  REFGROVE_GRAPH_COCITATION = 1,
  REFGROVE_GRAPH_COUPLING = 2,
  REFGROVE_GRAPH_COAUTHOR = 3
};
enum { REFGROVE_QUALITY_MODULARITY = 0, REFGROVE_QUALITY_CPM = 1 };
/* Author rankings. */
enum { REFGROVE_BY_H_INDEX = 0, REFGROVE_BY_AUTHOR_CITATIONS = 1, REFGROVE_BY_DOCUMENTS = 2 };

/* The options of a clustering (the Leiden algorithm); a null pointer stands
 * for the defaults that refgrove_cluster_defaults_1 writes: the citation
 * graph, modularity, resolution 1.0, seed 1, min_citations and min_weight
 * 1, 10 iterations (0: until one moves nothing). */
struct refgrove_cluster_options {
  int graph;
  int quality;
  double resolution;
  long long seed;
  int min_citations; /* cocitation and coupling */
  int min_weight;    /* cocitation and coupling */
  int iterations;
};
REFGROVE_EXPORT void refgrove_cluster_defaults_1(struct refgrove_cluster_options* options);

/* The members of the graph (DIDs ascending, or author ids for the co-author
 * graph) and each one's cluster; clusters are numbered from 0 by size,
 * largest first. Returns the number of members. */
REFGROVE_EXPORT int refgrove_clusters_1(const struct refgrove_cluster_options* options, int capacity, int* members,
                                        int* clusters);
/* The size (members) of each cluster, by cluster id; returns the number of
 * clusters. */
REFGROVE_EXPORT int refgrove_cluster_sizes_1(const struct refgrove_cluster_options* options, int capacity, int* sizes);

/* The global main path of the citation graph, source first: returns its
 * length. */
REFGROVE_EXPORT int refgrove_main_path_1(int capacity, int* dids);

/* An author's h-index. */
REFGROVE_EXPORT int refgrove_h_index_1(int author_id);
/* The authors by `by`, best first, ties by ascending id, and their values. */
REFGROVE_EXPORT int refgrove_author_ranked_1(int by, int capacity, int* author_ids, long long* values);

/* The citations received per year of the citing document (citing documents
 * without a year left out), by a document or by all documents of an
 * author: years ascending and their counts. Returns the number of years. */
REFGROVE_EXPORT int refgrove_citations_by_year_1(int did, int capacity, int* years, long long* counts);
REFGROVE_EXPORT int refgrove_author_citations_by_year_1(int author_id, int capacity, int* years, long long* counts);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_FRONTS_H_ */
