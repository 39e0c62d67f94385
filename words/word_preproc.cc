#include "words/word_preproc.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <string_view>
#include <vector>

#include "core/refgrove.h"
#include "graph/raw_graph.h"
#include "words/background_job.h"
#include "words/compacted_string_table.h"
#include "words/message_log.h"
#include "words/word_files.h"

namespace {

const char* const kWordDumpFiles[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt",
                                      "word-data3-mar-2002.txt"};

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

// The 3 bytes of a word id at `at`.
void put_word_id(char* at, int id) {
  const WordId w = WordId::from_id(static_cast<std::uint32_t>(id));
  at[0] = static_cast<char>(w.low & 0xFF);
  at[1] = static_cast<char>(w.low >> 8);
  at[2] = static_cast<char>(w.high);
}

// One word dump read in a thread of its own while the others are read, as
// ConcurrentGraphParse does for the graph dump. Its words get ids of a table
// of its own, and its two word files and its messages are held in memory;
// finish() writes them where preprocFile would have written them, with the
// ids that the caller's table gives those words in the order in which the
// dump first holds them: exactly what preprocFile on the caller's table
// writes.
class ConcurrentWordFile {
 public:
  ConcurrentWordFile(WordPreproc* preproc, const std::string& path)
      : preproc_(preproc), path_(path), read_([this] {
          preproc_->preprocFile(&words_, data_, idx_, path_.c_str(), messages_.out(), messages_.err());
        }) {}

  // Waits for the dump, then writes its messages and its documents; throws
  // what preprocFile threw, after writing what it had written by then.
  void finish(StringTable* table, std::ostream& data_out, std::ostream& idx_out);

 private:
  WordPreproc* preproc_;
  std::string path_;
  StringTable words_;
  std::ostringstream data_, idx_;
  MessageLog messages_;
  BackgroundJob read_;  // last: it runs while the others live
};

void ConcurrentWordFile::finish(StringTable* table, std::ostream& data_out, std::ostream& idx_out) {
  const std::exception_ptr error = read_.wait();
  // The held ids are 3 bytes and the held offsets 32 bits. Beyond that
  // many distinct words or bytes they cannot be told apart, and the dump is
  // read again on the caller's table.
  if (words_.size() > (1 << 24) || data_.tellp() > std::numeric_limits<std::int32_t>::max()) {
    preproc_->preprocFile(table, data_out, idx_out, path_.c_str());
    return;
  }
  messages_.replay();
  std::vector<int> ids;  // the caller's id of each of the dump's own ids
  ids.reserve(words_.by_id.size());
  for (const std::string& word : words_.by_id) ids.push_back(table->String2ID(word));
  // Each document as preprocFile writes it: its header, with the put
  // position of data_out, then its ids, which run up to the next header's.
  const std::string_view idx = idx_.view();
  const std::string_view data = data_.view();
  std::int64_t position = data_out.tellp();
  std::string words;
  const auto header_at = [&idx](std::size_t at) {
    return read_document_word_info(reinterpret_cast<const unsigned char*>(idx.data() + at));
  };
  for (std::size_t k = 0; k + kDocumentWordInfoBytes <= idx.size(); k += kDocumentWordInfoBytes) {
    const DocumentWordInfo doc = header_at(k);
    const std::size_t next = k + 2 * kDocumentWordInfoBytes <= idx.size()
                                 ? static_cast<std::size_t>(header_at(k + kDocumentWordInfoBytes).offset)
                                 : data.size();
    const std::int32_t offset = data_out.fail() ? -1 : static_cast<std::int32_t>(position);
    write_document_word_info(idx_out, DocumentWordInfo{doc.did, offset});
    words.assign(data.substr(static_cast<std::size_t>(doc.offset), next - static_cast<std::size_t>(doc.offset)));
    for (std::size_t i = 0; i + kWordIdBytes <= words.size(); i += kWordIdBytes) {
      const WordId own = read_word_id(reinterpret_cast<const unsigned char*>(&words[i]));
      put_word_id(&words[i], ids[own.id()]);
    }
    data_out.write(words.data(), static_cast<std::streamsize>(words.size()));
    position += static_cast<std::int64_t>(words.size());
  }
  if (error) std::rethrow_exception(error);
}

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

WordPreproc::WordTokenizer::WordTokenizer(std::istream* in) : StreamTokenizer(in, &language_) {
  select_language(0);
}

WordPreproc::WordTokenizer::~WordTokenizer() = default;

WordPreproc::WordPreproc() : files(std::begin(kWordDumpFiles), std::end(kWordDumpFiles)) {}

void WordPreproc::preproc(const std::string& in_dir, const std::string& out_dir) {
  // The graph dump and the last word dump are read meanwhile, each in a
  // thread of its own; see ConcurrentGraphParse and ConcurrentWordFile.
  ConcurrentGraphParse graph_parse(in_dir);
  std::unique_ptr<ConcurrentWordFile> last_file;
  std::size_t read_here = files.size();
  if (read_here > 1) {
    --read_here;
    last_file = std::make_unique<ConcurrentWordFile>(this, in_dir + files.back());
  }
  StringTable table;
  std::ofstream data_out(out_dir + kWordDataFile, std::ios::out | std::ios::trunc | std::ios::binary);
  std::ofstream idx_out(out_dir + kWordIdxFile, std::ios::out | std::ios::trunc | std::ios::binary);
  std::cout << "Preproc word data ... \n";
  std::cout << "1. Reading words ... \n";
  for (std::size_t i = 0; i < read_here; ++i) preprocFile(&table, data_out, idx_out, (in_dir + files[i]).c_str());
  if (last_file) last_file->finish(&table, data_out, idx_out);

  std::cout << "2. Finalizing word-idx\n";
  const std::streamoff end = data_out.tellp();
  write_document_word_info(idx_out, DocumentWordInfo{-1, static_cast<std::int32_t>(end)});
  idx_out.close();
  data_out.close();

  // The graph pass interns the title words in the same table, after the
  // abstracts' words; the table is written only once both are in.
  std::cout << "3. Preproc author\n";
  writeGraph(out_dir, *graph_parse.finish(&table));

  std::cout << "4. Writing word-table\n";
  std::ofstream table_out(out_dir + kWordTableFile, std::ios::out | std::ios::trunc | std::ios::binary);
  CompactedStringTable(table).write(table_out);
  table_out.close();
  std::cout << "Done Preproc Word.\n";
}

void WordPreproc::preprocFile(StringTable* table, std::ostream& data_out, std::ostream& idx_out, const char* path,
                              std::ostream& out, std::ostream& err) {
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
      continue;
    }

    const std::int32_t offset = data_out.fail() ? -1 : static_cast<std::int32_t>(position);
    write_document_word_info(idx_out, DocumentWordInfo{did, offset});
    if (did % 1000 == 0) out << '\r' << did;

    t.next_token();  // the field after the DID is not used
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
      put_word_id(room_for(1), is_foreign(token.data(), token.size(), token.capacity() + 1)
                                   ? table->String2ID(kForeignWord)
                                   : table->String2ID(token));
    }
    data_out.write(ids.data(), static_cast<std::streamsize>(n));
    position += static_cast<std::int64_t>(n);
  }
  out << std::endl;
}

void refgrove_preproc_1(const char* a, const char* b) {
  // The one place where a dump that does not parse ends the process: the
  // parsers below only throw.
  try {
    WordPreproc preproc;
    preproc.preproc(a, b);
  } catch (const ParserError& e) {
    e.write(std::cerr);
    std::cerr.flush();
    std::exit(3);
  }
}
