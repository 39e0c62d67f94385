#include "core/validate.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <sstream>
#include <utility>

#include "graph/graph_file.h"
#include "words/byte_io.h"
#include "words/mapped_file.h"
#include "words/word_files.h"

namespace refgrove {

std::string Finding::text() const {
  std::ostringstream out;
  out << file;
  if (offset >= 0) out << " at offset " << offset;
  out << ": " << message;
  return out.str();
}

namespace {

constexpr std::int64_t kWhole = -1;
constexpr std::int64_t kEntryBytes = 8;
constexpr std::int64_t kCitationBytes = 8;
constexpr std::int64_t kAuthorIdBytes = 4;

// Collects findings, keeping at most kMaxFindingsPerKind of each kind.
class Report {
 public:
  // Starts a finding of `kind`; the message is what is streamed into the
  // result (nothing is kept once the kind is full).
  std::ostream& add(const char* kind, const std::string& file, std::int64_t offset) {
    Kind& k = kinds_[file + ": " + kind];
    if (k.count++ == 0) k.file = file;
    if (k.count > kMaxFindingsPerKind) {
      discard_.str("");
      return discard_;
    }
    pending_.emplace_back(Pending{Finding{file, offset, ""}, std::make_unique<std::ostringstream>()});
    return *pending_.back().message;
  }

  std::vector<Finding> finish() {
    std::vector<Finding> out;
    for (Pending& p : pending_) {
      p.finding.message = p.message->str();
      out.push_back(std::move(p.finding));
    }
    for (const auto& [kind, k] : kinds_) {
      if (k.count <= kMaxFindingsPerKind) continue;
      std::ostringstream m;
      m << k.count - kMaxFindingsPerKind << " more findings of the same kind (" << kind.substr(k.file.size() + 2)
        << ") are not listed.";
      out.push_back(Finding{k.file, kWhole, m.str()});
    }
    return out;
  }

 private:
  struct Kind {
    int count = 0;
    std::string file;
  };
  struct Pending {
    Finding finding;
    std::unique_ptr<std::ostringstream> message;
  };
  std::map<std::string, Kind> kinds_;
  std::vector<Pending> pending_;
  std::ostringstream discard_;
};

// A data file mapped for reading, with its name for the findings.
struct DataFile {
  DataFile(const std::string& dir, const char* name_) : name(name_), map(dir + name_) {}
  bool missing() const { return map.fd() < 0; }
  std::int64_t size() const { return static_cast<std::int64_t>(map.size()); }
  const unsigned char* at(std::int64_t offset) const { return map.data() + offset; }
  std::int32_t int32_at(std::int64_t offset) const { return get_int32(at(offset)); }

  std::string name;
  MappedFile map;
};

// Reports a missing or empty file; true when there are bytes to check.
bool present(const DataFile& f, Report& report) {
  if (f.missing()) {
    report.add("missing file", f.name, kWhole) << "the file is missing or cannot be read.";
    return false;
  }
  if (f.size() == 0) {
    report.add("empty file", f.name, kWhole) << "the file is empty.";
    return false;
  }
  return true;
}

// Checks a compacted string table that starts at `start`. Returns the
// offset just behind it and sets *count, or returns -1 when the table's
// own sizes do not fit the file (nothing behind it can then be located).
std::int64_t check_string_table(const DataFile& f, std::int64_t start, const char* what, Report& report,
                                std::int32_t* count) {
  const std::int64_t size = f.size();
  if (size - start < 4) {
    report.add("table cut short", f.name, start) << "the file ends before the string count of the " << what << ".";
    return -1;
  }
  const std::int32_t n = f.int32_at(start);
  if (n < 0) {
    report.add("negative count", f.name, start) << "the " << what << " has a negative string count, " << n << ".";
    return -1;
  }
  const std::int64_t block_size_at = start + 4 + kEntryBytes * n;
  if (block_size_at + 4 > size) {
    report.add("table cut short", f.name, start)
        << "the " << what << " counts " << n << " strings, whose index and block size need "
        << block_size_at + 4 - start << " bytes, but only " << size - start << " bytes are left in the file.";
    return -1;
  }
  const std::int32_t block = f.int32_at(block_size_at);
  const std::int64_t block_at = block_size_at + 4;
  if (block < 0) {
    report.add("negative count", f.name, block_size_at)
        << "the character block of the " << what << " has a negative size, " << block << ".";
    return -1;
  }
  std::int64_t usable = block;
  if (block_at + block > size) {
    report.add("table cut short", f.name, block_size_at)
        << "the character block of the " << what << " is declared as " << block << " bytes, but only "
        << size - block_at << " bytes follow.";
    usable = size - block_at;
  }
  const unsigned char* chars = f.at(block_at);
  std::int64_t previous_end = 0;  // the first byte after the previous string's NUL
  for (std::int32_t i = 0; i < n; ++i) {
    const std::int64_t entry_at = start + 4 + kEntryBytes * i;
    const std::int32_t id = f.int32_at(entry_at);
    const std::int32_t offset = f.int32_at(entry_at + 4);
    if (id != i) {
      report.add("entry id", f.name, entry_at)
          << "entry " << i << " of the " << what << " has the id " << id << "; entries must be numbered in order.";
    }
    if (offset < 0 || offset >= usable) {
      report.add("string outside block", f.name, entry_at + 4)
          << "string " << i << " of the " << what << " starts at " << offset << ", outside its character block of "
          << usable << " bytes.";
      continue;
    }
    if (offset < previous_end) {
      report.add("string order", f.name, entry_at + 4)
          << "string " << i << " of the " << what << " starts at " << offset
          << ", before the end of the string ahead of it (" << previous_end << ").";
    }
    const void* nul = std::memchr(chars + offset, '\0', static_cast<std::size_t>(usable - offset));
    if (nul == nullptr) {
      report.add("string unterminated", f.name, block_at + offset)
          << "string " << i << " of the " << what << " has no terminating NUL before the end of the block.";
      previous_end = usable;
    } else {
      previous_end = static_cast<const unsigned char*>(nul) - chars + 1;
    }
  }
  *count = n;
  return block_at + usable;
}

void check_word_table(const DataFile& f, Report& report, std::int32_t* words) {
  if (!present(f, report)) return;
  std::int32_t n = 0;
  const std::int64_t end = check_string_table(f, 0, "word table", report, &n);
  if (end < 0) return;
  *words = n;
  if (end < f.size()) {
    report.add("trailing bytes", f.name, end) << f.size() - end << " bytes follow the end of the word table.";
  }
}

// Where to start looking for word ids at or above `words` in the `whole`
// bytes of f: the first block of ids that holds one, or `whole` when none
// does, which is the usual case. A block's largest id is found without a
// branch per id, four ids at a time.
std::int64_t first_block_outside(const DataFile& f, std::int64_t whole, std::uint32_t words) {
  constexpr std::int64_t kBlockBytes = kWordIdBytes * 4096;
  const auto id_at = [&f](std::int64_t p) { return read_word_id(f.at(p)).id(); };
  for (std::int64_t block = 0; block < whole; block += kBlockBytes) {
    const std::int64_t end = std::min(whole, block + kBlockBytes);
    std::uint32_t h[4] = {0, 0, 0, 0};
    std::int64_t p = block;
    for (; p + 4 * kWordIdBytes <= end; p += 4 * kWordIdBytes) {
      for (int k = 0; k < 4; ++k) h[k] = std::max(h[k], id_at(p + k * kWordIdBytes));
    }
    for (; p < end; p += kWordIdBytes) h[0] = std::max(h[0], id_at(p));
    if (std::max({h[0], h[1], h[2], h[3]}) >= words) return block;
  }
  return whole;
}

// The word ids of "word-data", against the word table's size (-1: unknown).
void check_word_data(const DataFile& f, std::int32_t words, Report& report) {
  if (f.missing()) {
    report.add("missing file", f.name, kWhole) << "the file is missing or cannot be read.";
    return;
  }
  const std::int64_t whole = f.size() / kWordIdBytes * kWordIdBytes;
  if (whole != f.size()) {
    report.add("partial item", f.name, whole) << "the size " << f.size() << " is not a multiple of " << kWordIdBytes
                                              << ": the last " << f.size() - whole << " bytes are not a whole word id.";
  }
  if (words < 0) return;
  for (std::int64_t p = first_block_outside(f, whole, static_cast<std::uint32_t>(words)); p < whole;
       p += kWordIdBytes) {
    const std::uint32_t id = read_word_id(f.at(p)).id();
    if (id >= static_cast<std::uint32_t>(words)) {
      report.add("word id outside table", f.name, p)
          << "word id " << id << " is outside the word table of " << words << " strings.";
    }
  }
}

// The document headers of "word-idx", against the size of "word-data"
// (-1: unknown).
void check_word_idx(const DataFile& f, std::int64_t data_size, Report& report) {
  if (!present(f, report)) return;
  const std::int64_t headers = f.size() / kDocumentWordInfoBytes;
  if (headers * kDocumentWordInfoBytes != f.size()) {
    report.add("partial item", f.name, headers * kDocumentWordInfoBytes)
        << "the size " << f.size() << " is not a multiple of " << kDocumentWordInfoBytes << ": the last "
        << f.size() - headers * kDocumentWordInfoBytes << " bytes are not a whole document header.";
  }
  if (headers == 0) {
    report.add("no sentinel", f.name, kWhole) << "the file holds no whole header, not even the end sentinel.";
    return;
  }
  const std::int64_t last_at = (headers - 1) * kDocumentWordInfoBytes;
  const DocumentWordInfo last = read_document_word_info(f.at(last_at));
  const bool has_sentinel = last.did == -1;
  if (!has_sentinel) {
    report.add("no sentinel", f.name, last_at)
        << "the last header has DID " << last.did
        << ", not the end sentinel's -1: the sentinel is missing or the file is cut short.";
  } else if (data_size >= 0 && last.offset != data_size) {
    report.add("sentinel offset", f.name, last_at + 4)
        << "the end sentinel gives " << last.offset << " as the size of word-data, but word-data has " << data_size
        << " bytes.";
  }
  const std::int64_t documents = has_sentinel ? headers - 1 : headers;
  std::int64_t previous = 0;
  for (std::int64_t j = 0; j < headers; ++j) {
    const std::int64_t at = j * kDocumentWordInfoBytes;
    const DocumentWordInfo h = read_document_word_info(f.at(at));
    if (j < documents && h.did < 0) {
      report.add("negative DID", f.name, at)
          << "header " << j << " has the DID " << h.did
          << (h.did == -1 ? ", which marks the end sentinel, but more headers follow." : ", which is negative.");
    }
    const char* who = j < documents ? "header " : "the end sentinel, header ";
    if (h.offset < previous) {
      report.add("offset backwards", f.name, at + 4)
          << who << j << " starts at byte " << h.offset << " of word-data, before the header ahead of it (" << previous
          << ").";
    } else if (h.offset % kWordIdBytes != 0) {
      report.add("offset not a word boundary", f.name, at + 4)
          << who << j << " starts at byte " << h.offset << " of word-data, which is not a multiple of " << kWordIdBytes
          << ".";
    }
    if (data_size >= 0 && h.offset > data_size && j < documents) {
      report.add("offset past end", f.name, at + 4) << "header " << j << " starts at byte " << h.offset
                                                    << ", past the end of word-data (" << data_size << " bytes).";
    }
    if (h.offset > previous) previous = h.offset;
  }
}

// The graph file: the author table, then the records.
void check_graph(const DataFile& f, std::int32_t words, Report& report) {
  if (!present(f, report)) return;
  std::int32_t authors = 0;
  std::int64_t p = check_string_table(f, 0, "author table", report, &authors);
  if (p < 0) return;
  const std::int64_t size = f.size();
  if (size - p < 4) {
    report.add("graph cut short", f.name, p) << "the file ends before the record count.";
    return;
  }
  const std::int32_t n = f.int32_at(p);
  if (n < 0) {
    report.add("negative count", f.name, p) << "the record count " << n << " is negative.";
    return;
  }
  p += 4;
  std::int64_t previous_did = -1;
  for (std::int32_t r = 0; r < n; ++r) {
    const std::int64_t record_at = p;
    // The fields in order; `need` bytes must be left for the next one.
    const auto cut_short = [&](const char* field) {
      report.add("graph cut short", f.name, record_at)
          << "record " << r << " of " << n << " is cut short: the file ends inside its " << field << ".";
    };
    if (size - p < 8) return cut_short("DID or key length");
    const std::int32_t did = f.int32_at(p);
    const std::int32_t key_length = f.int32_at(p + 4);
    p += 8;
    if (did < 0) {
      report.add("negative DID", f.name, record_at) << "record " << r << " has the negative DID " << did << ".";
    } else if (did < previous_did) {
      report.add("DID order", f.name, record_at) << "record " << r << " has DID " << did << ", after DID "
                                                 << previous_did << ": records must be in ascending DID order.";
    } else if (did == previous_did) {
      report.add("DID repeated", f.name, record_at)
          << "record " << r << " repeats DID " << did << " of the record before it.";
    }
    if (did > previous_did) previous_did = did;
    if (key_length < 0) {
      report.add("negative count", f.name, record_at + 4)
          << "record " << r << " (DID " << did << ") has a negative key length, " << key_length << ".";
      return;
    }
    if (size - p < key_length) return cut_short("key");
    p += key_length;
    if (size - p < 8) return cut_short("year or citation count");
    const std::int32_t nc = f.int32_at(p + 4);
    if (nc < 0) {
      report.add("negative count", f.name, p + 4)
          << "record " << r << " (DID " << did << ") has a negative citation count, " << nc << ".";
    }
    p += 8;
    if (size - p < kCitationBytes * std::max(nc, 0)) return cut_short("citations");
    p += kCitationBytes * std::max(nc, 0);
    if (size - p < 4) return cut_short("title length");
    const std::int32_t nt = f.int32_at(p);
    if (nt < 0) {
      report.add("negative count", f.name, p)
          << "record " << r << " (DID " << did << ") has a negative title length, " << nt << ".";
    }
    p += 4;
    if (size - p < kWordIdBytes * std::int64_t{std::max(nt, 0)}) return cut_short("title");
    for (std::int32_t i = 0; i < nt; ++i, p += kWordIdBytes) {
      const std::uint32_t id = read_word_id(f.at(p)).id();
      if (words >= 0 && id >= static_cast<std::uint32_t>(words)) {
        report.add("title word outside table", f.name, p)
            << "title word " << i << " of record " << r << " (DID " << did << ") has the id " << id
            << ", outside the word table of " << words << " strings.";
      }
    }
    if (size - p < 2) return cut_short("author count");
    const auto na = static_cast<std::int16_t>(get_uint16(f.at(p)));
    if (na < 0) {
      report.add("negative count", f.name, p) << "record " << r << " (DID " << did << ") has a negative author count, "
                                              << na << ": a list of 32768 authors or more was cut to 16 bits.";
    }
    p += 2;
    if (size - p < kAuthorIdBytes * std::max<std::int64_t>(na, 0)) return cut_short("author ids");
    for (std::int32_t k = 0; k < na; ++k, p += kAuthorIdBytes) {
      const std::int32_t id = f.int32_at(p);
      if (id < 0 || id >= authors) {
        report.add("author outside table", f.name, p)
            << "author " << k << " of record " << r << " (DID " << did << ") has the id " << id
            << ", outside the author table of " << authors << " names.";
      }
    }
  }
  if (p < size) {
    report.add("trailing bytes", f.name, p) << size - p << " bytes follow the last of the " << n << " records.";
  }
}

}  // namespace

std::vector<Finding> validate_data_dir(const std::string& dir) {
  Report report;
  std::int32_t words = -1;  // strings in the word table; -1 while unknown
  {
    const DataFile table(dir, kWordTableFile);
    check_word_table(table, report, &words);
  }
  std::int64_t data_size = -1;
  {
    const DataFile data(dir, kWordDataFile);
    check_word_data(data, words, report);
    if (!data.missing()) data_size = data.size();
  }
  check_word_idx(DataFile(dir, kWordIdxFile), data_size, report);
  check_graph(DataFile(dir, kGraphFile), words, report);
  return report.finish();
}

}  // namespace refgrove
