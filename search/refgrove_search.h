/* Ranked word search over the data set loaded by refgrove_load_1, a part of
 * refgrove.so's plain C interface (installed as <refgrove/search.h>).
 *
 * A query is a list of terms separated by white space; a term matches a
 * word when both are equal ignoring case, and a term ending in "*" matches
 * every word that starts with the rest. With `any` = 0 a document must hold
 * every term, otherwise at least one. Hits are ranked by BM25 over the title
 * words followed by the abstract words, best first, equal scores by
 * ascending DID. The index is built by the first search after a load.
 *
 * Like the other queries, searches may run on several threads at once, but
 * not during a load. */
#ifndef REFGROVE_SEARCH_REFGROVE_SEARCH_H_
#define REFGROVE_SEARCH_REFGROVE_SEARCH_H_

#ifndef REFGROVE_VISIBLE
#define REFGROVE_VISIBLE __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Sets *out to the number of documents that match `query` and returns 1; for
 * a query that cannot be run (null, no term, a lone "*", more than 1,024
 * distinct terms) sets *out to 0 and returns 0. */
REFGROVE_VISIBLE int refgrove_search_count_1(const char* query, int any, int* out);

/* Writes the best min(n, count) hits of `query` to dids[0..] and
 * scores[0..] and returns how many it wrote; returns -1, writing nothing,
 * for a query that cannot be run. */
REFGROVE_VISIBLE int refgrove_search_1(const char* query, int any, int n, int* dids, double* scores);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_SEARCH_REFGROVE_SEARCH_H_ */
