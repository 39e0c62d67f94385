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
#include <string>
#include <vector>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "tokenizer/stream_tokenizer.h"
#include "words/string_table.h"

namespace refgrove {

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
// the tables may then hold some of the line's strings.
RefgroveGraphData* parse_graph_record(Arena& arena, StringTable* words, StringTable* authors, Tokenizer& t);

// parse_graph_record for the lines of a dump, one after the other, keeping
// its buffers from line to line.
class GraphLineParser {
 public:
  GraphLineParser(Arena* arena, StringTable* words, StringTable* authors)
      : arena_(arena), words_(words), authors_(authors) {}

  RefgroveGraphData* parse(Tokenizer& t);

 private:
  // Strings gathered back to back and then interned together: the keys of
  // all of them are made and their slots prefetched before the first is
  // interned, so that the slot loads of a line's strings overlap instead of
  // stalling one after the other.
  class StringBatch {
   public:
    void clear();
    void add(const std::string& s);             // a new string
    void extend(char c, const std::string& s);  // appended to the last one
    // Calls use_id(id) with the id of each string, in order.
    template <class F>
    void intern(StringTable* table, F&& use_id);

   private:
    std::string text_;
    std::vector<std::size_t> ends_;
    std::vector<StringTable::Key> keys_;
  };

  Arena* arena_;
  StringTable* words_;
  StringTable* authors_;
  std::string key_;
  std::vector<CitationInfo> citations_;
  StringBatch title_words_, author_names_;
  std::vector<WordId> title_;
  std::vector<std::int32_t> author_ids_;
};

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_GRAPH_DUMP_H_
