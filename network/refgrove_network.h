/* The analyses of the citation network for C programs: ranking, distances,
 * neighbourhoods, similar papers and components, over the one loaded data
 * set (`refgrove_data`). Installed as <refgrove/network.h>.
 *
 * The citation graph has the documents with a graph record as its nodes and
 * one edge per distinct (citing, cited) pair of them; the co-author graph
 * links the authors of one graph record. What the analyses build is built
 * on the first call and released with the data set.
 *
 * Results are written to arrays the caller supplies with their room; the
 * operations return how many items exist (which may exceed the room: only
 * the room is written), or -1 for a DID without a graph record, an author id
 * outside the author table or another bad argument. Before any load the data
 * set is empty and every DID is unknown. */
#ifndef REFGROVE_NETWORK_REFGROVE_NETWORK_H_
#define REFGROVE_NETWORK_REFGROVE_NETWORK_H_

#ifndef REFGROVE_VISIBLE
#define REFGROVE_VISIBLE __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Rankings, similarity measures and walking directions. */
enum { REFGROVE_BY_CITATIONS = 0, REFGROVE_BY_PAGERANK = 1 };
enum { REFGROVE_BY_COCITATION = 0, REFGROVE_BY_COUPLING = 1 };
enum { REFGROVE_DIRECTION_OUT = 0, REFGROVE_DIRECTION_IN = 1, REFGROVE_DIRECTION_BOTH = 2 };

/* The number of documents citing `did` (1), or 0 when it has no record. */
REFGROVE_VISIBLE int refgrove_citation_count_1(int did, int* out);
/* Its PageRank score (damping 0.85, scores summing to 1). */
REFGROVE_VISIBLE int refgrove_pagerank_1(int did, double* out);
/* The best `room` documents by `by`, best first (ties by ascending DID),
 * among those with a year in year_from .. year_to (pass INT_MIN, INT_MAX for
 * all). Returns the number written, or -1 for a reversed range or unknown
 * `by`. */
REFGROVE_VISIBLE int refgrove_ranked_1(int by, int year_from, int year_to, int room, int* dids, double* scores);

/* The collaboration distance of authors a and b; -1 when unconnected or
 * unknown. */
REFGROVE_VISIBLE int refgrove_collaboration_distance_1(int a, int b);
/* A shortest collaboration path: author ids and DIDs alternating, a first
 * and b last (2 * distance + 1 items). */
REFGROVE_VISIBLE int refgrove_collaboration_path_1(int a, int b, int room, int* path);
/* The citation distance from `from` to `to` in `direction`; -1 when
 * unreachable or unknown. */
REFGROVE_VISIBLE int refgrove_citation_distance_1(int from, int to, int direction);

/* The documents within `hops` hops of `did` in `direction`, the centre
 * first, then the closest, then by citation count descending, then by DID,
 * at most `limit`: their DIDs and hop counts. */
REFGROVE_VISIBLE int refgrove_neighbourhood_1(int did, int hops, int direction, int limit, int room, int* dids,
                                              int* hop_counts);
/* The citations among those documents, by citing then cited DID. */
REFGROVE_VISIBLE int refgrove_neighbourhood_edges_1(int did, int hops, int direction, int limit, int room,
                                                    int* citing, int* cited);

/* The documents most similar to `did` by `by`, with their counts. */
REFGROVE_VISIBLE int refgrove_similar_1(int did, int by, int room, int* dids, int* counts);

/* Components, numbered from 0 by size descending: the number of weakly
 * connected components of the citation graph and of the co-author graph,
 * and the component (and its size) of a document or an author. */
REFGROVE_VISIBLE int refgrove_component_count_1(void);
REFGROVE_VISIBLE int refgrove_author_component_count_1(void);
REFGROVE_VISIBLE int refgrove_component_1(int did, int* id, int* size);
REFGROVE_VISIBLE int refgrove_author_component_1(int author_id, int* id, int* size);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_NETWORK_REFGROVE_NETWORK_H_ */
