/* Ranked word search over the data set loaded by refgrove_load_1, a part of
 * refgrove.so's C interface.
 *
 * A query is a list of terms separated by white space; a term matches a
 * word when both are equal ignoring case, and a term ending in "*" matches
 * every word that starts with the rest. With `any` = 0 a document must hold
 * every term, otherwise at least one. Hits are ranked by BM25 over the title
 * words followed by the abstract words, best first, equal scores by
 * ascending DID. The index is built by the first search after a load.
 *
 * Like the other queries, searches may run on several threads at once, but
 * not during a load. The answers follow the convention of refgrove.h. */
#ifndef REFGROVE_SEARCH_H_
#define REFGROVE_SEARCH_H_

#include "refgrove/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the best min(capacity, total) hits of `query` to dids[] and
 * scores[] and returns the number of documents that match; -1 for a query
 * that cannot be run (null, no term, a lone "*", more than 1,024 distinct
 * terms). */
REFGROVE_EXPORT int refgrove_search_1(const char* query, int any, int capacity, int* dids, double* scores);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_SEARCH_H_ */
