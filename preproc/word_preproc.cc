#include "preproc/word_preproc.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "graph/did_index.h"
#include "graph/graph_file.h"
#include "graph/raw_graph.h"
#include "preproc/concurrent_graph_parse.h"
#include "preproc/concurrent_word_file.h"
#include "preproc/output_file.h"
#include "words/compacted_string_table.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

// Stands for every word holding a byte outside ASCII.
const std::string kForeignWord = "[foreign]";

// The low k bytes of an all-ones word (k <= 8); two shifts, none by 64.
std::uint64_t low_bytes_mask(std::size_t k) { return ~((~std::uint64_t{0} << (4 * k)) << (4 * k)); }

// Whether one of the n bytes at `word` is 128 or more, of which `readable`
// >= n may be read. A word of up to 16 bytes with 16 readable is tested
// with two loads and masks, without a loop that would end at a different
// point for every word.
bool is_foreign(const char* word, std::size_t n, std::size_t readable) {
  if (n <= 16 && readable >= 16) {
    std::uint64_t a, b;
    std::memcpy(&a, word, sizeof a);
    std::memcpy(&b, word + 8, sizeof b);
    const std::uint64_t mask_a = low_bytes_mask(n < 8 ? n : 8);
    const std::uint64_t mask_b = low_bytes_mask(n < 8 ? 0 : n - 8);
    return ((a & mask_a) | (b & mask_b)) & 0x8080808080808080u;
  }
  unsigned char all = 0;
  for (std::size_t i = 0; i < n; ++i) all |= static_cast<unsigned char>(word[i]);
  return all >= 128;
}

bool is_line_end(const std::string& token) { return token.size() == 1 && token[0] == '\n'; }

// The 3 bytes of word id `id` at `at`.
void put_word_id(char* at, int id) { store_word_id(at, WordId::from_id(static_cast<std::uint32_t>(id))); }

// Gives the words of dumps read aside their ids in `table`, in dump order;
// returns the dumps left to write, in order. Each dump's held ids are
// rewritten while the next one's words get their ids. A dump that must be
// read again is read here, once those before it are written.
std::vector<ConcurrentWordFile*> number_read_aside(const std::vector<std::unique_ptr<ConcurrentWordFile>>& dumps,
                                                   StringTable* table, std::ostream& data_out, std::ostream& idx_out) {
  std::vector<ConcurrentWordFile*> numbered;
  for (const std::unique_ptr<ConcurrentWordFile>& dump : dumps) {
    if (dump->number(table)) {
      numbered.push_back(dump.get());
      continue;
    }
    for (ConcurrentWordFile* before : numbered) before->write(data_out, idx_out);
    numbered.clear();
    dump->read_again(table, data_out, idx_out);
  }
  return numbered;
}

// Adds what a reader has read of its dump to the run's progress, from the
// position it has reached.
class ProgressNote {
 public:
  explicit ProgressNote(PreprocProgress* progress) : progress_(progress) {}
  void at(std::uint64_t position) {
    if (progress_ == nullptr || position <= noted_) return;
    progress_->bytes_read.fetch_add(position - noted_, std::memory_order_relaxed);
    noted_ = position;
  }

 private:
  PreprocProgress* progress_;
  std::uint64_t noted_ = 0;
};

}  // namespace

WordPreproc::WordLanguage::WordLanguage() {
  single_char_tokens.add_all(kSingleChars);
  // Every control character but the line end, then blank, 255, 127, 128.
  int n = 0;
  for (int c = 1; c < 32; ++c) {
    if (c != '\n') blanks[n++] = static_cast<char>(c);
  }
  for (const int c : {32, 255, 127, 128}) blanks[n++] = static_cast<char>(c);
  blanks[n] = '\0';
  space_chars.add_all(blanks);
  strings = 0;
  addSubLanguages(1);
  number_char = 0;
}

WordPreproc::WordTokenizer::WordTokenizer(std::istream* in) : StreamTokenizer(in, &language_) { select_language(0); }

WordPreproc::WordTokenizer::~WordTokenizer() = default;

WordPreproc::WordPreproc(const PreprocOptions& options)
    : files(std::begin(kWordDumpFiles), std::end(kWordDumpFiles)), options_(options) {}

void WordPreproc::check_limits(const RunSize& size) const {
  if (!options_.checked || within(options_.limits, size)) return;
  const char* file = size.word_data_bytes > options_.limits.word_data_bytes ? kWordDataFile : kWordTableFile;
  throw FormatLimitError(out_dir_ + file, format_limit_message(options_.limits, size));
}

PreprocSummary WordPreproc::preproc(const std::string& in_dir, const std::string& out_dir) {
  out_dir_ = out_dir;
  std::ostream& out = *options_.out;
  std::ostream& err = *options_.err;
  // Opened first, so that a directory that cannot be written is found
  // before anything is read.
  OutputFile data_out(out_dir + kWordDataFile, options_.checked);
  OutputFile idx_out(out_dir + kWordIdxFile, options_.checked);
  // The graph dump and every word dump but the first are read meanwhile,
  // each in threads of its own; see ConcurrentGraphParse and
  // ConcurrentWordFile. The table outlives them: the graph pass interns
  // title words in it until it finishes.
  StringTable table;
  ConcurrentGraphParse graph_parse(in_dir, options_);
  std::vector<std::unique_ptr<ConcurrentWordFile>> read_aside;
  for (std::size_t i = 1; i < files.size(); ++i) {
    read_aside.push_back(std::make_unique<ConcurrentWordFile>(this, in_dir + files[i]));
  }
  out << "Preproc word data ... \n";
  out << "1. Reading words ... \n";
  DumpCounts counts;
  if (!files.empty()) counts = preprocFile(&table, data_out, idx_out, (in_dir + files[0]).c_str(), out, err);
  const std::vector<ConcurrentWordFile*> to_write = number_read_aside(read_aside, &table, data_out, idx_out);
  // The title words get their ids after all words of the abstracts. Once
  // every word dump has parsed, nothing can keep the graph file from being
  // written: it is written while the abstracts are.
  if (std::all_of(to_write.begin(), to_write.end(), [](const ConcurrentWordFile* dump) { return dump->parsed(); })) {
    graph_parse.write_file(&table, out_dir);
  }
  for (ConcurrentWordFile* dump : to_write) dump->write(data_out, idx_out);
  for (const std::unique_ptr<ConcurrentWordFile>& dump : read_aside) counts += dump->counts();

  out << "2. Finalizing word-idx\n";
  const std::streamoff end = data_out.tellp();
  write_document_word_info(idx_out, DocumentWordInfo{-1, static_cast<std::int32_t>(end)});
  const std::streamoff headers = idx_out.tellp() / static_cast<std::streamoff>(kDocumentWordInfoBytes);
  idx_out.finish();
  data_out.finish();

  // The table is written only once the title words are in.
  out << "3. Preproc author\n";
  const GraphPassResult graph = graph_parse.finish(&table, out_dir);
  if (options_.checked) throw_if_failed(out_dir + kGraphFile, graph.write_error);
  // The title words are in the table now.
  check_limits(RunSize{end, static_cast<std::int64_t>(table.size()), headers - 1});

  out << "4. Writing word-table\n";
  OutputFile table_out(out_dir + kWordTableFile, options_.checked);
  CompactedStringTable(table).write(table_out);
  table_out.finish();
  out << "Done Preproc Word.\n";

  PreprocSummary summary;
  summary.documents = std::max<std::int64_t>(headers - 1, 0);
  summary.abstract_words = std::max<std::int64_t>(end, 0) / static_cast<std::int64_t>(kWordIdBytes);
  summary.words = table.size();
  summary.records = graph.counts.records;
  summary.authors = graph.counts.authors;
  summary.citations = graph.counts.citations;
  summary.lines_without_did = counts.lines_without_did;
  summary.values_out_of_range = counts.clamped_dids + graph.counts.clamped_values;
  const std::size_t limit = did_index_limit(static_cast<std::size_t>(graph.counts.records),
                                            static_cast<std::size_t>(std::max<std::streamoff>(headers, 0)) + 1);
  const auto unindexed = [limit](const std::vector<std::int32_t>& dids) {
    return std::count_if(dids.begin(), dids.end(), [limit](std::int32_t did) { return !did_indexable(did, limit); });
  };
  summary.unindexed = unindexed(counts.outlying_dids) + unindexed(graph.counts.outlying_dids);
  return summary;
}

WordPreproc::DumpCounts WordPreproc::preprocFile(StringTable* table, std::ostream& data_out, std::ostream& idx_out,
                                                 const char* path, std::ostream& out, std::ostream& err) try {
  DumpCounts counts;
  ProgressNote progress(options_.progress);
  std::ifstream in(path, std::ios::in | std::ios::binary);
  out << "  - Reading " << path << std::endl;
  if (!in.good()) err << "failed to open file ! \n";

  WordTokenizer t(&in);
  StringTable::Key foreign;
  table->makeKey(kForeignWord.data(), kForeignWord.size(), kForeignWord.size(), &foreign);
  // The put position of "word-data", kept here rather than asked of the
  // stream for every document (a failed stream reports -1).
  std::int64_t position = data_out.tellp();
  std::string ids;  // the document's word ids, 3 bytes each (a buffer that only grows)
  std::uint64_t documents = 0;
  while (t.has_more_tokens()) {
    int did = 0;
    if (!t.try_next_integer(&did)) {
      // The offending token is gone; echo the rest of its line.
      err << "no did at line " << t.token_line() << std::endl;
      for (;;) {
        const std::string& token = t.next_token();
        if (is_line_end(token)) break;
        err << token;
      }
      err << "\n ------------------------- \n";
      ++counts.lines_without_did;
      continue;
    }
    if (did == INT_MAX || did == INT_MIN) ++counts.clamped_dids;
    // Loading skips headers with DID -1, as it skips the end sentinel.
    if (did != -1 && did_may_be_unindexed(did)) counts.outlying_dids.push_back(did);

    const std::int32_t offset = data_out.fail() ? -1 : static_cast<std::int32_t>(position);
    write_document_word_info(idx_out, DocumentWordInfo{did, offset});
    if (did % 1000 == 0) out << '\r' << did;
    if (++documents % 1024 == 0) progress.at(static_cast<std::uint64_t>(std::max<std::streamoff>(in.tellg(), 0)));

    t.next_token();     // the field after the DID is not used
    std::size_t n = 0;  // bytes of `ids` in use
    // Where the next k ids go.
    const auto room_for = [&](std::size_t k) {
      if (ids.size() < n + k * kWordIdBytes) ids.resize(2 * ids.size() + k * kWordIdBytes);
      char* at = &ids[n];
      n += k * kWordIdBytes;
      return at;
    };
    const auto add_words = [&](const Tokenizer::PlainToken* words, std::size_t count) {
      StringTable::Key keys[Tokenizer::kPlainTokenRun];
      for (std::size_t i = 0; i < count; ++i) {
        const Tokenizer::PlainToken& w = words[i];
        if (is_foreign(w.text, w.size, w.readable)) {
          keys[i] = foreign;
        } else {
          table->makeKey(w.text, w.size, w.readable, &keys[i]);
        }
        table->prefetch(keys[i]);
      }
      char* at = room_for(count);
      for (std::size_t i = 0; i < count; ++i) put_word_id(at + i * kWordIdBytes, table->intern(keys[i]));
    };
    // The words up to the line end. Reading each token and comparing it
    // with the line end is what testing for the line end and then reading
    // it again would do: the word language has no elements, so a token
    // comes back from the pushback stack unchanged. Most of the line goes
    // through next_tokens_until, the rest token by token.
    while (!t.next_tokens_until('\n', add_words)) {
      const std::string& token = t.next_token();
      if (is_line_end(token)) break;
      put_word_id(room_for(1), is_foreign(token.data(), token.size(), token.capacity() + 1) ? table->intern(foreign)
                                                                                            : table->String2ID(token));
    }
    data_out.write(ids.data(), static_cast<std::streamsize>(n));
    position += static_cast<std::int64_t>(n);
    if (options_.checked &&
        (position > options_.limits.word_data_bytes || table->size() > options_.limits.distinct_words)) {
      check_limits(RunSize{position, static_cast<std::int64_t>(table->size()),
                           idx_out.tellp() / static_cast<std::streamoff>(kDocumentWordInfoBytes)});
    }
  }
  out << std::endl;
  std::error_code no_size;
  const std::uintmax_t size = std::filesystem::file_size(path, no_size);
  if (!no_size) progress.at(size);
  return counts;
} catch (const ParserError& e) {
  throw DumpParseError(e, path);
}

}  // namespace refgrove
