#include "generate/dump_generator.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <memory>
#include <vector>

namespace refgrove {

namespace {

// splitmix64: small, fast, and fully specified, unlike the library's
// distributions.
class Rng {
 public:
  explicit Rng(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // Uniform in [0, 1).
  double unit() { return static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0); }
  // Uniform in [0, n).
  std::int64_t below(std::int64_t n) { return static_cast<std::int64_t>(unit() * static_cast<double>(n)); }
  bool chance(double p) { return unit() < p; }

 private:
  std::uint64_t state_;
};

// Sampling ranks 0..n-1 with probability proportional to 1/(rank+1)^s, in
// constant time per draw (Vose's alias method).
class ZipfSampler {
 public:
  ZipfSampler(std::size_t n, double s) : prob_(n), alias_(n) {
    std::vector<double> p(n);
    double sum = 0;
    for (std::size_t r = 0; r < n; ++r) sum += p[r] = 1.0 / std::pow(static_cast<double>(r + 1), s);
    std::vector<std::size_t> small, large;
    for (std::size_t r = 0; r < n; ++r) {
      p[r] = p[r] * static_cast<double>(n) / sum;
      (p[r] < 1.0 ? small : large).push_back(r);
    }
    while (!small.empty() && !large.empty()) {
      const std::size_t a = small.back(), b = large.back();
      small.pop_back();
      prob_[a] = p[a];
      alias_[a] = static_cast<std::uint32_t>(b);
      p[b] -= 1.0 - p[a];
      if (p[b] < 1.0) {
        large.pop_back();
        small.push_back(b);
      }
    }
    for (std::size_t r : small) prob_[r] = 1.0;
    for (std::size_t r : large) prob_[r] = 1.0;
  }

  std::size_t sample(Rng& rng) const {
    const std::size_t r = static_cast<std::size_t>(rng.below(static_cast<std::int64_t>(prob_.size())));
    return rng.unit() < prob_[r] ? r : alias_[r];
  }

 private:
  std::vector<double> prob_;
  std::vector<std::uint32_t> alias_;
};

// The most frequent words of abstracts, most frequent first; the rest of
// the vocabulary is made of syllables.
const char* const kCommonWords[] = {
    "the", "of", "and", "a", "to", "in", "is", "we", "for", "that", "this", "on", "with", "are", "by", "as", "an",
    "be", "which", "from", "it", "can", "our", "paper", "these", "show", "results", "based", "method", "model",
    "data", "algorithm", "problem", "approach", "new", "using", "system", "time", "graph", "also", "two", "such",
    "networks", "performance", "present", "not", "or", "has", "have", "its", "between", "each", "than", "set",
    "structure", "analysis", "number", "proposed", "used", "when", "more", "one", "all", "first", "learning",
    "function", "given", "order", "linear", "large", "program", "language", "where", "how", "memory", "query",
    "complexity", "efficient", "distributed", "parallel", "search", "bounds", "optimal", "logic", "semantics"};

const char* const kSyllables[] = {"ka", "lo", "mi", "ter", "graph", "al", "gor", "ith", "tri", "ne", "son", "ve",
                                  "ra", "sta", "tion", "pro", "cess", "or", "di", "men", "sion", "par", "ti",
                                  "le", "ex", "con", "struc", "ture", "ma", "tic", "bi", "no", "mo", "de", "lu",
                                  "ser", "val", "red", "qua", "sim", "plex", "in", "ar", "cu", "pha", "se"};

const char* const kForeignWords[] = {"Erd\xc5\x91s", "na\xc3\xafve", "Poincar\xc3\xa9", "G\xc3\xb6" "del",
                                     "Schr\xc3\xb6" "dinger", "caf\xc3\xa9"};

const char* const kInitials = "ABCDEFGHIJKLMNOPRSTVWY";

constexpr std::size_t kVocabulary = 80000;
constexpr double kZipfExponent = 1.0;

std::string syllable_word(std::uint64_t rank, int min_syllables, int extra) {
  Rng rng(rank * 0x9E3779B97F4A7C15ull + 17);
  const int n = min_syllables + static_cast<int>(rng.below(extra + 1));
  std::string w;
  for (int i = 0; i < n; ++i) w += kSyllables[rng.below(std::size(kSyllables))];
  return w;
}

std::vector<std::string> make_vocabulary() {
  std::vector<std::string> words(std::begin(kCommonWords), std::end(kCommonWords));
  words.reserve(kVocabulary);
  for (std::uint64_t r = words.size(); words.size() < kVocabulary; ++r) words.push_back(syllable_word(r, 2, 1));
  return words;
}

std::string author_name(std::uint64_t a) {
  Rng rng(a * 0xD1B54A32D192ED03ull + 5);
  std::string name(1, kInitials[rng.below(22)]);
  name += ".";
  if (rng.chance(0.3)) {
    name += " ";
    name += kInitials[rng.below(22)];
    name += ".";
  }
  std::string surname = syllable_word(a + 1000003, 2, 1);
  surname[0] = static_cast<char>(surname[0] - 'a' + 'A');
  return name + " " + surname;
}

// A file written through a large buffer.
class Output {
 public:
  bool open(const std::string& name) {
    name_ = name;
    file_ = std::fopen(name.c_str(), "wb");
    return file_ != nullptr;
  }
  std::string& text() { return buffer_; }
  bool flush_if_full() { return buffer_.size() < (1u << 20) || flush(); }
  bool flush() {
    ok_ = ok_ && std::fwrite(buffer_.data(), 1, buffer_.size(), file_) == buffer_.size();
    bytes_ += static_cast<std::int64_t>(buffer_.size());
    buffer_.clear();
    return ok_;
  }
  bool close() {
    flush();
    ok_ = std::fclose(file_) == 0 && ok_;
    file_ = nullptr;
    return ok_;
  }
  ~Output() {
    if (file_ != nullptr) std::fclose(file_);
  }
  const std::string& name() const { return name_; }
  std::int64_t bytes() const { return bytes_; }

 private:
  std::string name_;
  std::FILE* file_ = nullptr;
  std::string buffer_;
  std::int64_t bytes_ = 0;
  bool ok_ = true;
};

void append_int(std::string& s, std::int64_t v) {
  char buf[24];
  const int n = std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(v));
  s.append(buf, static_cast<std::size_t>(n));
}

// The group id of a cited work: fixed per cited document.
std::int64_t group_of(std::int32_t did) { return 1000000 + (static_cast<std::int64_t>(did) * 2654435761ll) % 9000000; }

}  // namespace

bool generate_dumps(const std::string& dir, const DumpGeneratorOptions& options, DumpGeneratorResult* result,
                    std::string* error) {
  const char* word_names[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"};
  Output graph, word_files[3];
  if (!graph.open(dir + "graph-data-aug-2002.txt")) {
    *error = "cannot create " + graph.name();
    return false;
  }
  for (int f = 0; f < 3; ++f) {
    if (!word_files[f].open(dir + word_names[f])) {
      *error = "cannot create " + word_files[f].name();
      return false;
    }
  }

  Rng rng(options.seed);
  const std::vector<std::string> vocabulary = make_vocabulary();
  const ZipfSampler words(vocabulary.size(), kZipfExponent);
  // Prolific authors write much; most write little.
  const std::size_t nb_authors = static_cast<std::size_t>(std::max<std::int64_t>(500, options.docs / 2));
  const ZipfSampler authors(nb_authors, 0.8);

  const std::int64_t n = std::max<std::int64_t>(options.docs, 0);
  std::vector<std::int32_t> dids;
  dids.reserve(static_cast<std::size_t>(n));
  std::int32_t did = 0;
  DumpGeneratorResult r;
  std::vector<std::size_t> doc_authors;
  for (std::int64_t i = 0; i < n; ++i) {
    did += 1 + (rng.chance(0.1) ? static_cast<std::int32_t>(rng.below(4)) : 0);
    dids.push_back(did);

    doc_authors.clear();
    const double a = rng.unit();
    const int author_count = a < 0.25 ? 1 : a < 0.55 ? 2 : a < 0.80 ? 3 : a < 0.95 ? 4 : 5;
    for (int k = 0; k < author_count; ++k) doc_authors.push_back(authors.sample(rng));
    const int year = 1960 + static_cast<int>(42 * std::sqrt(rng.unit()));
    std::string key;
    if (!rng.chance(0.03)) {
      std::string surname = author_name(doc_authors[0]);
      surname = surname.substr(surname.rfind(' ') + 1);
      for (char& c : surname) c = static_cast<char>(c | 0x20);
      key = surname + std::to_string(year % 100 + 100).substr(1);
      if (rng.chance(0.2)) key += static_cast<char>('a' + rng.below(3));
    }

    // Graph line.
    std::string& g = graph.text();
    append_int(g, did);
    g += ' ';
    g += key.empty() ? "-" : key;
    g += ' ';
    if (rng.chance(0.04)) {
      g += '-';
    } else {
      append_int(g, year);
    }
    const int cites = i == 0 ? 0 : static_cast<int>(rng.below(21));
    std::int32_t cited[20];
    for (int k = 0; k < cites; ++k) cited[k] = dids[static_cast<std::size_t>(rng.below(i))];
    g += " GIDs:";
    for (int k = 0; k < cites; ++k) {
      g += ' ';
      append_int(g, group_of(cited[k]));
    }
    g += " DIDs:";
    for (int k = 0; k < cites; ++k) {
      g += ' ';
      append_int(g, cited[k]);
    }
    g += " Title:";
    const int title_words = 4 + static_cast<int>(rng.below(11));
    for (int k = 0; k < title_words; ++k) {
      g += ' ';
      // Titles lean to content words: the most common words are drawn less.
      std::size_t rank = words.sample(rng);
      if (rank < 25) rank = words.sample(rng);
      const std::string& w = vocabulary[rank];
      g += w;
      if (k == 0) g[g.size() - w.size()] = static_cast<char>(g[g.size() - w.size()] & ~0x20);
    }
    g += " Authors:";
    for (int k = 0; k < author_count; ++k) {
      g += k == 0 ? " " : " and ";
      g += author_name(doc_authors[static_cast<std::size_t>(k)]);
    }
    g += '\n';
    if (!graph.flush_if_full()) break;

    // Abstract, in the word dump of the document's third; a few documents
    // have none.
    if (rng.chance(0.02)) continue;
    Output& out = word_files[std::min<std::int64_t>(2, i * 3 / std::max<std::int64_t>(n, 1))];
    std::string& w = out.text();
    append_int(w, did);
    w += ' ';
    w += key.empty() ? "-" : key;
    const int length = 60 + static_cast<int>(rng.below(121));
    for (int k = 0; k < length; ++k) {
      w += ' ';
      const double p = rng.unit();
      if (p < 0.05) {
        w += ',';
      } else if (p < 0.09) {
        w += '.';
      } else if (p < 0.0905) {
        w += kForeignWords[rng.below(std::size(kForeignWords))];
      } else {
        w += vocabulary[words.sample(rng)];
      }
    }
    w += '\n';
    r.words += length;
    if (!out.flush_if_full()) break;
  }
  graph.text() += "xxxx\n";

  bool ok = graph.close();
  for (Output& out : word_files) ok = out.close() && ok;
  if (!ok) {
    *error = "write error in " + dir;
    return false;
  }
  r.bytes = graph.bytes();
  for (const Output& out : word_files) r.bytes += out.bytes();
  r.last_did = did;
  *result = r;
  return true;
}

}  // namespace refgrove
