/* Loading a data directory, the query operations and printing: the part of
 * refgrove.so's C interface that the host engine's predicates call.
 *
 * Every operation reads the one loaded data set through `refgrove_data`.
 * Lookups return 1 when the document (or item) exists and 0 when it does not;
 * a DID, item index or author id outside the loaded data counts as absent.
 * Strings handed out are borrowed from the loaded data: they stay valid until
 * the next refgrove_load_1 and must not be freed.
 *
 * Queries may run on several threads at once; a load must not run while any
 * other call is in progress (core/data_set_slot.h serves threads that need
 * to replace the data set while others query). */
#ifndef REFGROVE_QUERY_H_
#define REFGROVE_QUERY_H_

#include "refgrove/export.h"

#ifdef __cplusplus
namespace refgrove {
class RefgroveData;
}
typedef refgrove::RefgroveData RefgroveData;
extern "C" {
#else
typedef struct RefgroveData RefgroveData;
#endif

/* The loaded data set, or null before the first successful load. */
extern REFGROVE_EXPORT RefgroveData* refgrove_data;

/* Replaces the loaded data set by the one in directory `path` (a prefix to
 * which the file names are appended, so it normally ends in "/"). */
REFGROVE_EXPORT void refgrove_load_1(const char* path);

/* One more than the largest DID of the loaded data (0 when empty). */
REFGROVE_EXPORT void refgrove_last_did_1(int* out);
REFGROVE_EXPORT int refgrove_has_graph_info_1(int did);
REFGROVE_EXPORT int refgrove_has_word_info_1(int did);

/* Graph record of a document. When absent, the outputs of get_year,
 * cite_count, title_length, author_count and get_cite are set to 0; the
 * others are left untouched. */
REFGROVE_EXPORT int refgrove_get_key_1(int did, const char** out);
REFGROVE_EXPORT int refgrove_get_year_1(int did, int* out);
REFGROVE_EXPORT int refgrove_cite_count_1(int did, int* out);
/* Note the order: `cited` receives the cited DID, `gid` its group id. */
REFGROVE_EXPORT int refgrove_get_cite_1(int did, int i, int* cited, int* gid);
REFGROVE_EXPORT int refgrove_title_length_1(int did, int* out);
REFGROVE_EXPORT int refgrove_get_title_word_1(int did, int i, const char** out);
REFGROVE_EXPORT int refgrove_author_count_1(int did, int* out);
REFGROVE_EXPORT int refgrove_get_author_id_1(int did, int i, int* out);
REFGROVE_EXPORT int refgrove_get_author_1(int did, int i, const char** out);
/* Copies the document's author ids to out[0..n-1], n from
 * refgrove_author_count_1; writes nothing when the document is absent. */
REFGROVE_EXPORT void refgrove_get_authors_1(int did, int* out);

/* Words of a document's abstract. */
REFGROVE_EXPORT int refgrove_word_count_1(int did, int* out);
REFGROVE_EXPORT int refgrove_get_word_1(int did, int i, const char** out);

/* The abstract as preprocessing wrote it: the header's offset read as the
 * byte position it is, ending at the next header's offset (also a byte
 * position). word_count and get_word above read both offsets as counts of
 * 3-byte word ids, as data directories in use expect. */
REFGROVE_EXPORT int refgrove_abstract_length_1(int did, int* out);
REFGROVE_EXPORT int refgrove_get_abstract_word_1(int did, int i, const char** out);

/* Reverse lookups, each backed by an index built on the first call and
 * released with the data set. Counts return 1 with the count (> 0), or 0
 * with *out = 0 when there is nothing; getters return 1 and set their output
 * for 0 <= i < count, else return 0 and leave it untouched. Only the record
 * that a DID's index entry names is seen, as by the queries above. */
/* Records citing `did`, by ascending citing DID; one citing it twice is
 * listed twice. */
REFGROVE_EXPORT int refgrove_cited_by_count_1(int did, int* out);
REFGROVE_EXPORT int refgrove_get_cited_by_1(int did, int i, int* citing);
/* Documents listing the author, by ascending DID, each once. */
REFGROVE_EXPORT int refgrove_author_doc_count_1(int author_id, int* out);
REFGROVE_EXPORT int refgrove_get_author_doc_1(int author_id, int i, int* did);
/* Documents with key `key`, by ascending DID; "-" and "" are no keys. */
REFGROVE_EXPORT int refgrove_key_doc_count_1(const char* key, int* out);
REFGROVE_EXPORT int refgrove_get_key_doc_1(const char* key, int i, int* did);

/* Author ids by name, ignoring case and accents: those named
 * `name`, by ascending id; those whose name starts with `prefix`, by name
 * (the empty prefix gives every author). Same conventions as the reverse
 * lookups above. */
REFGROVE_EXPORT int refgrove_author_named_count_1(const char* name, int* out);
REFGROVE_EXPORT int refgrove_get_author_named_1(const char* name, int i, int* author_id);
REFGROVE_EXPORT int refgrove_author_prefix_count_1(const char* prefix, int* out);
REFGROVE_EXPORT int refgrove_get_author_prefix_1(const char* prefix, int i, int* author_id);

/* Authors and the whole data set. */
REFGROVE_EXPORT int refgrove_id2author_1(int author_id, const char** out);
REFGROVE_EXPORT int refgrove_get_nb_authors_1(void);
/* Documents with word data, distinct words, authors; all 0 before a load. */
REFGROVE_EXPORT void refgrove_stats_1(int* docs, int* words, int* authors);
/* A placeholder: always 0.0. */
REFGROVE_EXPORT double refgrove_author_distance_1(int author_a, int author_b);

/* Printing to the standard streams. */
REFGROVE_EXPORT void refgrove_printdoc_1(int did);
REFGROVE_EXPORT void refgrove_print_author_1(int author_id);

#ifdef __cplusplus
}
#endif

#endif /* REFGROVE_QUERY_H_ */
