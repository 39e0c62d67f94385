// The query operations over an explicit data set, for faces that serve
// several threads or keep more than one data set (the SWI-Prolog library,
// benchmarks). The C interface (refgrove.h) is these same operations applied
// to the one global data set `refgrove_data`.
//
// Each function has the name of its C operation without the "refgrove_"
// prefix and the "_1" suffix, and the same arguments and results. They only
// read the data set, so any number of threads may call them at once on one
// set; the reverse indexes (cited-by, author to documents, key to documents)
// are built by the first call that needs them, once, while concurrent
// callers wait for that build. Strings handed out are borrowed from `d` and
// stay valid as long as `d` lives.
#ifndef REFGROVE_CORE_DATA_VIEW_H_
#define REFGROVE_CORE_DATA_VIEW_H_

#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/data_set.h"
#include "core/data_set_slot.h"

namespace refgrove {

// Builds the data set of directory `path` (a prefix, as for refgrove_load_1)
// exactly as refgrove_load_1 does, writing its loading messages to `log`
// instead of standard error.
std::shared_ptr<RefgroveData> load_data_set(const std::string& path, std::ostream& log);

// "no such directory" or "not a directory" when `path` names no directory;
// empty when it does.
std::string directory_problem(const std::string& path);
// Why `path` cannot be loaded as a data directory, as a sentence naming it
// ("<path>: no such directory", "<path>/ is not a data directory:
// graph_data is missing (make one with refgrove preprocess)"); empty when
// it can. Loading itself takes a missing file for an empty one.
std::string data_dir_problem(const std::string& path);

void last_did(const RefgroveData& d, int* out);
int has_graph_info(const RefgroveData& d, int did);
int has_word_info(const RefgroveData& d, int did);

int get_key(const RefgroveData& d, int did, const char** out);
int get_year(const RefgroveData& d, int did, int* out);
int cite_count(const RefgroveData& d, int did, int* out);
int get_cite(const RefgroveData& d, int did, int i, int* cited, int* gid);
int title_length(const RefgroveData& d, int did, int* out);
int get_title_word(const RefgroveData& d, int did, int i, const char** out);
int author_count(const RefgroveData& d, int did, int* out);
int get_author_id(const RefgroveData& d, int did, int i, int* out);
int get_author(const RefgroveData& d, int did, int i, const char** out);
void get_authors(const RefgroveData& d, int did, int* out);

// The module's reading of the abstract (offsets taken as word counts).
int word_count(const RefgroveData& d, int did, int* out);
int get_word(const RefgroveData& d, int did, int i, const char** out);

int id2author(const RefgroveData& d, int author_id, const char** out);
int get_nb_authors(const RefgroveData& d);
// `d` may be null (no data set): all three are then 0.
void stats(const RefgroveData* d, int* docs, int* words, int* authors);
double author_distance(const RefgroveData& d, int a, int b);

// The reverse operations. Counts return 1 with a count > 0, or 0 with
// *out = 0; getters return 1 and set their output for 0 <= i < count, else
// return 0 and leave it untouched. Only the record that a DID's index entry
// names is seen, as by the forward operations.
//
// Records citing `did`, by ascending citing DID; a record citing it twice
// is listed twice.
int cited_by_count(const RefgroveData& d, int did, int* out);
int get_cited_by(const RefgroveData& d, int did, int i, int* citing);
// Documents listing `author_id`, by ascending DID, each once.
int author_doc_count(const RefgroveData& d, int author_id, int* out);
int get_author_doc(const RefgroveData& d, int author_id, int i, int* did);
// Documents whose key is `key`, by ascending DID; "-" and "" match nothing.
int key_doc_count(const RefgroveData& d, const char* key, int* out);
int get_key_doc(const RefgroveData& d, const char* key, int i, int* did);
// Authors by name, ignoring case and accents (author_names.h): those named `name`, by ascending id; those whose name
// starts with `prefix`, by name. A null text matches no author.
int author_named_count(const RefgroveData& d, const char* name, int* out);
int get_author_named(const RefgroveData& d, const char* name, int i, int* author_id);
int author_prefix_count(const RefgroveData& d, const char* prefix, int* out);
int get_author_prefix(const RefgroveData& d, const char* prefix, int i, int* author_id);
// The authors that a name typed by a person names: those named `text`; when
// none is, those whose name holds its words at word starts, spellings of one
// person together (author_names.h); when it ends in "*", those whose name
// starts with the rest (by name).
std::vector<std::int32_t> named_authors(const RefgroveData& d, std::string_view text);
// The authors whose name holds the words of `text` at word starts, spellings
// of one person together.
std::vector<std::int32_t> authors_with_words(const RefgroveData& d, std::string_view text);
// The abstract as preprocessing wrote it: its header's offset read as the
// byte position it is, up to the next header's offset (and no further than
// "word-data" reaches).
int abstract_length(const RefgroveData& d, int did, int* out);
int get_abstract_word(const RefgroveData& d, int did, int i, const char** out);

// refgrove_printdoc_1 and refgrove_print_author_1 with the streams given:
// what they write to standard output goes to `out`, to standard error to
// `err`.
void printdoc(const RefgroveData& d, int did, std::ostream& out, std::ostream& err);
void print_author(const RefgroveData& d, int author_id, std::ostream& out);

}  // namespace refgrove

#endif  // REFGROVE_CORE_DATA_VIEW_H_
