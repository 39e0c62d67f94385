/* The C interface of refgrove.so, for any C or C++ program that links the
 * module or loads it with dlopen:
 *
 *   refgrove/query.h       loading a data directory, the queries, printing
 *   refgrove/preprocess.h  text dumps into a data directory
 *   refgrove/search.h      ranked word search
 *   refgrove/network.h     the analyses of the citation network
 *   refgrove/fronts.h      clusters, the main path, author impact, timelines
 *
 * Every operation reads the one data set that refgrove_load_1 loaded.
 *
 * How the operations of search.h, network.h and fronts.h answer: each returns an int,
 * -1 when there is no answer (an argument that names nothing in the loaded
 * set, such as a DID without a graph record, or that is out of range, such
 * as an unknown direction, a query without a term or a negative capacity;
 * for a distance, also two nodes that are not connected), and then writes
 * nothing. Otherwise a list is written to arrays that the caller gives with
 * their capacity, the number of items each holds: the first
 * min(capacity, total) items are written and the total, the number of items
 * of the whole answer, is returned, so that a caller whose arrays were too
 * small learns their size and can ask again (with capacity 0 the arrays may
 * be null). An answer of one number (a distance, a count of components) is
 * the value returned; outputs through pointers (a citation count, a score, a
 * component) come with 1. Before any load the data set is empty: there are
 * no hits, and every DID and author id names nothing.
 *
 * The operations of query.h keep their own convention: 1 when the document
 * or item exists, 0 when it does not. */
#ifndef REFGROVE_REFGROVE_H_
#define REFGROVE_REFGROVE_H_

#include "refgrove/fronts.h"
#include "refgrove/network.h"
#include "refgrove/preprocess.h"
#include "refgrove/query.h"
#include "refgrove/search.h"

#endif /* REFGROVE_REFGROVE_H_ */
