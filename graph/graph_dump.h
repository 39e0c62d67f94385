// The citation graph's text dump: its tokenizer language and the parser of
// one document line.
//
// One document is one line:
//
//   DID KEY|- YEAR|- GIDs: gid... DIDs: did... Title: word... Authors: names
//
// followed by a line end, e.g.
//
//   5 k5 1999 GIDs: 3 8 DIDs: 40 41 Title: a b Authors: X Y and Z
//
// Tokens are maximal runs of characters other than blank, tab, carriage
// return and line end; the line end is a token of its own. Punctuation and
// quotes belong to the token around them ("smith94-a", "Smith," and "(1998)"
// are single tokens; "-" is a token only where it stands alone). The DIDs
// list has exactly as many entries as the GIDs list and nothing marks its
// end. Author names are the tokens between "and"s, joined by single blanks.
#ifndef REFGROVE_GRAPH_GRAPH_DUMP_H_
#define REFGROVE_GRAPH_GRAPH_DUMP_H_

#include <istream>
#include <memory>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "tokenizer/stream_tokenizer.h"
#include "words/string_table.h"

inline constexpr char kGraphDumpFile[] = "graph-data-aug-2002.txt";

// The dump's language: the line end is a single-character token, blank, tab
// and carriage return are white space, number reading and quoted strings
// are off, and sub-language 0 holds the elements "Title:" and "Authors:".
class RefgroveGraphLanguage : public TokenizerLanguage {
 public:
  RefgroveGraphLanguage();
};

// A tokenizer over a dump stream that owns its language. The stream is not
// owned and must outlive the tokenizer.
class RefgroveGraphTokenizer : public StreamTokenizer {
 public:
  explicit RefgroveGraphTokenizer(std::istream& in);

 private:
  // Constructed after the base, which only stores its address.
  RefgroveGraphLanguage language_;
};

// A tokenizer for the dump in `in`, with sub-language 0 selected.
std::unique_ptr<RefgroveGraphTokenizer> create_refgrovegraph_tokenizer(std::istream& in);

// Reads one document line (through its line end) from `t` into a record
// built in `arena`. Title words are interned in `words`, author names in
// `authors`. A line that does not follow the grammar throws ParserError;
// whatever the tables interned before the fault stays in them.
RefgroveGraphData* parse_graph_record(Arena& arena, StringTable* words, StringTable* authors, Tokenizer& t);

#endif  // REFGROVE_GRAPH_GRAPH_DUMP_H_
