/* The analyses of the citation network for C programs: ranking, distances,
 * neighbourhoods, similar papers and components, over the one loaded data
 * set (`refgrove_data`).
 *
 * The citation graph has the documents with a graph record as its nodes and
 * one edge per distinct (citing, cited) pair of them; the co-author graph
 * links the authors of one graph record. What the analyses build is built
 * on the first call and released with the data set.
 *
 * The answers follow the convention of refgrove.h: -1 for a DID without a
 * graph record, an author id outside the author table or another bad
 * argument; lists cut to the caller's capacity, with their total returned. */
#ifndef REFGROVE_NETWORK_H_
#define REFGROVE_NETWORK_H_

#include "refgrove/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Rankings, similarity measures and walking directions. */
enum { REFGROVE_BY_CITATIONS = 0, REFGROVE_BY_PAGERANK = 1 };
enum { REFGROVE_BY_COCITATION = 0, REFGROVE_BY_COUPLING = 1 };
enum { REFGROVE_DIRECTION_OUT = 0, REFGROVE_DIRECTION_IN = 1, REFGROVE_DIRECTION_BOTH = 2 };

/* The number of documents citing `did`. */
REFGROVE_EXPORT int refgrove_citation_count_1(int did, int* out);
/* Its PageRank score (damping 0.85, scores summing to 1). */
REFGROVE_EXPORT int refgrove_pagerank_1(int did, double* out);
/* The documents with a year in year_from .. year_to (INT_MIN, INT_MAX for
 * all) by `by`, best first (ties by ascending DID); -1 for a reversed range
 * or an unknown `by`. */
REFGROVE_EXPORT int refgrove_ranked_1(int by, int year_from, int year_to, int capacity, int* dids, double* scores);

/* The collaboration distance of two authors; -1 when unconnected or
 * unknown. */
REFGROVE_EXPORT int refgrove_collaboration_distance_1(int author_a, int author_b);
/* A shortest collaboration path: author ids and DIDs alternating, author_a
 * first and author_b last (2 * distance + 1 items). */
REFGROVE_EXPORT int refgrove_collaboration_path_1(int author_a, int author_b, int capacity, int* path);
/* The citation distance from `from` to `to` in `direction`; -1 when
 * unreachable or unknown. */
REFGROVE_EXPORT int refgrove_citation_distance_1(int from, int to, int direction);

/* The documents within `hops` hops of `did` in `direction`, the centre
 * first, then the closest, then by citation count descending, then by DID,
 * at most `limit`: their DIDs and hop counts. */
REFGROVE_EXPORT int refgrove_neighbourhood_1(int did, int hops, int direction, int limit, int capacity, int* dids,
                                             int* hop_counts);
/* The citations among those documents, by citing then cited DID. */
REFGROVE_EXPORT int refgrove_neighbourhood_edges_1(int did, int hops, int direction, int limit, int capacity,
                                                   int* citing, int* cited);

/* The documents most similar to `did` by `by`, with their counts. */
REFGROVE_EXPORT int refgrove_similar_1(int did, int by, int capacity, int* dids, int* counts);

/* Components, numbered from 0 by size descending: the number of weakly
 * connected components of the citation graph and of the co-author graph,
 * and the component (and its size) of a document or an author. */
REFGROVE_EXPORT int refgrove_component_count_1(void);
REFGROVE_EXPORT int refgrove_author_component_count_1(void);
REFGROVE_EXPORT int refgrove_component_1(int did, int* id, int* size);
REFGROVE_EXPORT int refgrove_author_component_1(int author_id, int* id, int* size);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_NETWORK_H_ */
