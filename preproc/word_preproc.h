// Word preprocessing: the three word dumps of an input directory turned into
// the word files of a data directory, with the graph preprocessing run in
// between on the same word table (so that one "word-table" serves the
// abstracts and the titles).
//
// A word dump holds one document per line: the DID, one more token (skipped,
// whatever it is), then the words of the abstract, then the line end. Words
// are cut by WordLanguage: every punctuation character is a word of its own
// and control characters are blanks. A word with any byte of 128 or more is
// stored as "[foreign]".
#ifndef REFGROVE_PREPROC_WORD_PREPROC_H_
#define REFGROVE_PREPROC_WORD_PREPROC_H_

#include <cstdint>
#include <fstream>
#include <iostream>
#include <istream>
#include <string>
#include <vector>

#include "preproc/preprocess.h"
#include "tokenizer/stream_tokenizer.h"
#include "words/string_table.h"

namespace refgrove {

// The three word dumps of an input directory, in the order they are read.
inline constexpr const char* kWordDumpFiles[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt",
                                                 "word-data3-mar-2002.txt"};

class WordPreproc {
 public:
  // The word dumps' language: the characters of kSingleChars are tokens of
  // their own (the line end among them, as the end of a document); the
  // bytes 1-9, 11-31, 32, 255, 127 and 128 are blanks; no strings, no
  // numbers; one empty sub-language.
  class WordLanguage : public TokenizerLanguage {
   public:
    static constexpr char kSingleChars[] = "\\=+-*/:;.,;~<>`'?[]{}^$#@!%&()|\"\n";

    WordLanguage();

    // The blank characters, NUL-terminated.
    char blanks[35];
  };

  // A tokenizer over a word dump that owns its language, with sub-language
  // 0 selected. The stream is not owned.
  class WordTokenizer : public StreamTokenizer {
   public:
    explicit WordTokenizer(std::istream* in);
    ~WordTokenizer() override;

   private:
    // Constructed after the base, which only stores its address.
    WordLanguage language_;
  };

  // What one word dump held beside its documents.
  struct DumpCounts {
    std::int64_t lines_without_did = 0;
    std::int64_t clamped_dids = 0;            // DIDs beyond the int32 range, clamped to it
    std::vector<std::int32_t> outlying_dids;  // those that did_may_be_unindexed, -1 left out

    DumpCounts& operator+=(const DumpCounts& other) {
      lines_without_did += other.lines_without_did;
      clamped_dids += other.clamped_dids;
      outlying_dids.insert(outlying_dids.end(), other.outlying_dids.begin(), other.outlying_dids.end());
      return *this;
    }
  };

  // Fills `files` with the three dump names, in processing order.
  explicit WordPreproc(const PreprocOptions& options = {});

  // Preprocesses the dumps of in_dir into out_dir (both plain prefixes: the
  // file names are appended without a separator). Writes "word-data",
  // "word-idx" and the graph file, then "word-table"; the graph file only
  // once every dump has parsed. Progress goes to the options' `out`; a dump
  // that does not parse throws DumpParseError.
  PreprocSummary preproc(const std::string& in_dir, const std::string& out_dir);

  // Processes one word dump: appends its documents' word ids to `data_out`
  // ("word-data") and one header per document to `idx_out` ("word-idx").
  // Progress goes to `out`. A line without a leading DID is reported on
  // `err` and skipped; a file that cannot be opened is reported and
  // contributes nothing; a dump that does not parse throws DumpParseError.
  DumpCounts preprocFile(StringTable* table, std::ostream& data_out, std::ostream& idx_out, const char* path,
                         std::ostream& out = std::cout, std::ostream& err = std::cerr);

  const PreprocOptions& options() const { return options_; }

  // Checked, throws FormatLimitError when a run of `size` is beyond the
  // options' limits, naming the file of preproc()'s output that cannot hold
  // it.
  void check_limits(const RunSize& size) const;

  std::vector<const char*> files;

 private:
  PreprocOptions options_;
  std::string out_dir_;  // of the run of preproc()
};

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_WORD_PREPROC_H_
